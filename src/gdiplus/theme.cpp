#include "qor/tools/gdiplus/theme.h"

namespace qor::tools::gdiplus {

namespace {

// An empty text goes to the platform as a null text of length 0.
char16_t const *TextOf(string const &text) { return text.IsEmpty() ? nullptr : static_cast<char16_t const *>(text); }

}  // namespace

theme::theme(HWND window, HDC context, char16_t const *classList) : theme(window, context, classList, 0, 0) {}

theme::theme(HWND window, HDC context, char16_t const *classList, int part, int state)
    : mHandle(OpenThemeData(window, classList)), mDc(context), mPart(part), mState(state) {}

theme::~theme() { CloseThemeData(mHandle); }

void theme::DrawBackground(tagRECT const &rect, tagRECT const *clip) { DrawBackground(mPart, mState, rect, clip); }

void theme::DrawBackground(int part, int state, tagRECT const &rect, tagRECT const *clip) {
    DrawThemeBackground(mHandle, mDc, part, state, &rect, clip);
}

void theme::DrawTextW(string const &text, unsigned long flags, tagRECT const &rect) {
    DrawTextW(mPart, mState, text, flags, rect);
}

void theme::DrawTextW(int part, int state, string const &text, unsigned long flags, tagRECT const &rect) {
    DrawTextW(part, state, TextOf(text), text.Length(), flags, rect);
}

void theme::DrawTextW(int part, int state, char16_t const *text, int length, unsigned long flags, tagRECT const &rect) {
    DrawThemeText(mHandle, mDc, part, state, text, length, DWORD(flags), 0, &rect);
}

void theme::DrawTextExtent(string const &text, unsigned long flags, tagRECT const &bounds, tagRECT &extent) {
    DrawTextExtent(mPart, mState, text, flags, bounds, extent);
}

void theme::DrawTextExtent(int part, int state, string const &text, unsigned long flags, tagRECT const &bounds,
                           tagRECT &extent) {
    DrawTextExtent(part, state, TextOf(text), text.Length(), flags, bounds, extent);
}

void theme::DrawTextExtent(int part, int state, char16_t const *text, int length, unsigned long flags,
                           tagRECT const &bounds, tagRECT &extent) {
    GetThemeTextExtent(mHandle, mDc, part, state, text, length, DWORD(flags), &bounds, &extent);
}

HRGN theme::BackgroundRegion(int part, int state, tagRECT const &rect) {
    HRGN region = nullptr;
    GetThemeBackgroundRegion(mHandle, mDc, part, state, &rect, &region);
    return region;
}

}  // namespace qor::tools::gdiplus
