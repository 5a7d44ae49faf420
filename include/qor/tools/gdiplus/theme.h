// gdiplus::theme: draws a part of a control in the desktop theme, with a
// default part and state so that the common call is short. An unknown class
// (or no display) gives a theme that tests false and draws nothing, so a
// caller that must draw tests it and has its own plain drawing. A copy
// shares the handle: keep copies within one paint.
//
//   gdiplus::theme button(widget, cr, u"BUTTON", BP_PUSHBUTTON, PBS_HOT);
//   if (button) {
//       button.DrawBackground(rect, nullptr);
//       button.DrawTextW(u"OK", DT_CENTER | DT_VCENTER | DT_SINGLELINE, rect);
//   }
#pragma once

#include "qor/tools/export.h"

#include "qor/tools/platform/uxtheme.h"
#include "qor/tools/string.h"

namespace qor::tools::gdiplus {

class QOR_TOOLS_API theme {
public:
    // Opens the theme data of `classList` (such as u"BUTTON") for drawing on
    // `context`, with the part and state later calls use by default; copies
    // share the handle (closed once).
    theme(HWND window, HDC context, char16_t const *classList);
    theme(HWND window, HDC context, char16_t const *classList, int part, int state);
    theme(theme const &) = default;
    theme &operator=(theme const &) = default;
    virtual ~theme();

    // The theme handle; null when the theme could not be opened.
    operator void *() const { return mHandle; }

    // Draws the part's background, or its text (a negative length takes the
    // whole text), in the default or the given part and state.
    void DrawBackground(tagRECT const &rect, tagRECT const *clip);
    void DrawBackground(int part, int state, tagRECT const &rect, tagRECT const *clip);
    void DrawTextW(string const &text, unsigned long flags, tagRECT const &rect);
    void DrawTextW(int part, int state, string const &text, unsigned long flags, tagRECT const &rect);
    void DrawTextW(int part, int state, char16_t const *text, int length, unsigned long flags, tagRECT const &rect);
    // Measures the text; draws nothing.
    void DrawTextExtent(string const &text, unsigned long flags, tagRECT const &bounds, tagRECT &extent);
    void DrawTextExtent(int part, int state, string const &text, unsigned long flags, tagRECT const &bounds,
                        tagRECT &extent);
    void DrawTextExtent(int part, int state, char16_t const *text, int length, unsigned long flags,
                        tagRECT const &bounds, tagRECT &extent);
    // The caller owns the region; null on any failure.
    HRGN BackgroundRegion(int part, int state, tagRECT const &rect);

    HTHEME mHandle;  // the theme data
    HDC mDc;         // the context drawn on
    int mPart;       // the default part
    int mState;      // the default state
};

}  // namespace qor::tools::gdiplus
