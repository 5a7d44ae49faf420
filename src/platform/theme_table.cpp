#include "theme_table.h"

#include <glib.h>

#include <iterator>

#include "qor/tools/platform/uxtheme.h"

namespace qor::tools::platform::theme {

namespace {

constexpr GtkStateFlags kNormal = GTK_STATE_FLAG_NORMAL;
constexpr GtkStateFlags kHot = GTK_STATE_FLAG_PRELIGHT;
constexpr GtkStateFlags kPressed = GtkStateFlags(GTK_STATE_FLAG_ACTIVE | GTK_STATE_FLAG_PRELIGHT);
constexpr GtkStateFlags kDisabled = GTK_STATE_FLAG_INSENSITIVE;
constexpr GtkStateFlags kSelected = GTK_STATE_FLAG_SELECTED;
constexpr GtkStateFlags kFocused = GTK_STATE_FLAG_FOCUSED;
constexpr GtkStateFlags kChecked = GTK_STATE_FLAG_CHECKED;

template <std::size_t N>
GtkStateFlags Pick(GtkStateFlags const (&flags)[N], int state) {
    return state >= 1 && std::size_t(state) <= N ? flags[state - 1] : kNormal;
}

// Push buttons, combo box buttons, header items, scroll bar parts.
GtkStateFlags ButtonState(int, int state) {
    static constexpr GtkStateFlags kFlags[] = {kNormal, kHot, kPressed, kDisabled, kFocused};
    return Pick(kFlags, state);
}

// Buttons: check boxes and radio buttons count unchecked 1-4, checked 5-8.
GtkStateFlags ButtonPartState(int part, int state) {
    if (part != BP_CHECKBOX && part != BP_RADIOBUTTON) return ButtonState(part, state);
    if (state < 1 || state > 8) return kNormal;
    GtkStateFlags base = ButtonState(part, (state - 1) % 4 + 1);
    return state > 4 ? GtkStateFlags(base | kChecked) : base;
}

GtkStateFlags EditState(int, int state) {
    static constexpr GtkStateFlags kFlags[] = {kNormal, kHot, kSelected, kDisabled, kFocused, kNormal};
    return Pick(kFlags, state);
}

// Items of list and tree views.
GtkStateFlags ItemState(int, int state) {
    static constexpr GtkStateFlags kFlags[] = {kNormal,   kHot, GtkStateFlags(kSelected | kFocused),
                                               kDisabled, kSelected, GtkStateFlags(kSelected | kHot)};
    return Pick(kFlags, state);
}

GtkStateFlags TabState(int, int state) {
    static constexpr GtkStateFlags kFlags[] = {kNormal, kHot, kChecked, kDisabled, kFocused};
    return Pick(kFlags, state);
}

GtkStateFlags ToolbarState(int, int state) {
    static constexpr GtkStateFlags kFlags[] = {kNormal, kHot, kPressed, kDisabled, kChecked};
    return Pick(kFlags, state);
}

GtkStateFlags CaptionState(int, int state) {
    static constexpr GtkStateFlags kFlags[] = {kNormal, GTK_STATE_FLAG_BACKDROP, kDisabled};
    return Pick(kFlags, state);
}

GtkStateFlags NoState(int, int) { return kNormal; }

using shape = part::shape;

constexpr part kButton[] = {
    {BP_PUSHBUTTON, {"button.text-button"}, shape::box},
    {BP_RADIOBUTTON, {"radiobutton", "radio"}, shape::radio},
    {BP_CHECKBOX, {"checkbutton", "check"}, shape::check},
    {BP_GROUPBOX, {"frame", "border"}, shape::box},
};
constexpr part kEdit[] = {{EP_EDITTEXT, {"entry"}, shape::box}};
constexpr part kCombo[] = {{CP_DROPDOWNBUTTON, {"combobox", "box.linked", "button.combo"}, shape::box}};
constexpr part kList[] = {{LVP_LISTITEM, {"treeview.view"}, shape::box}};
constexpr part kHeader[] = {{HP_HEADERITEM, {"treeview.view", "header", "button"}, shape::box}};
constexpr part kProgress[] = {
    {PP_BAR, {"progressbar.horizontal", "trough"}, shape::box},
    {PP_CHUNK, {"progressbar.horizontal", "trough", "progress"}, shape::box},
};
constexpr part kTab[] = {
    {TABP_TABITEM, {"notebook", "header.top", "tabs", "tab"}, shape::box},
    {TABP_PANE, {"notebook.frame"}, shape::box},
};
constexpr part kTree[] = {{TVP_TREEITEM, {"treeview.view"}, shape::box}};
constexpr part kScrollbar[] = {
    {SBP_ARROWBTN, {"scrollbar.vertical", "button"}, shape::box},
    {SBP_THUMBBTNHORZ, {"scrollbar.horizontal", "contents", "trough", "slider"}, shape::box},
    {SBP_THUMBBTNVERT, {"scrollbar.vertical", "contents", "trough", "slider"}, shape::box},
    {SBP_LOWERTRACKHORZ, {"scrollbar.horizontal", "contents", "trough"}, shape::box},
    {SBP_UPPERTRACKHORZ, {"scrollbar.horizontal", "contents", "trough"}, shape::box},
    {SBP_LOWERTRACKVERT, {"scrollbar.vertical", "contents", "trough"}, shape::box},
    {SBP_UPPERTRACKVERT, {"scrollbar.vertical", "contents", "trough"}, shape::box},
};
constexpr part kToolbar[] = {{TP_BUTTON, {"toolbar", "toolbutton", "button.flat"}, shape::box}};
constexpr part kStatus[] = {
    {SP_PANE, {"statusbar"}, shape::box},
    {SP_GRIPPERPANE, {"statusbar"}, shape::box},
    {SP_GRIPPER, {"statusbar"}, shape::box},
};
constexpr part kWindow[] = {
    {WP_CAPTION, {"window.background.csd", "headerbar.titlebar"}, shape::box},
    {WP_DIALOG, {"window.background.dialog"}, shape::box},
};

template <std::size_t N>
constexpr theme_class Entry(char const *name, part const (&parts)[N], GtkStateFlags (*state)(int, int)) {
    return {name, parts, int(N), state};
}

constexpr theme_class kClasses[] = {
    Entry("BUTTON", kButton, ButtonPartState),  Entry("EDIT", kEdit, EditState),
    Entry("COMBOBOX", kCombo, ButtonState),     Entry("LISTVIEW", kList, ItemState),
    Entry("HEADER", kHeader, ButtonState),      Entry("PROGRESS", kProgress, NoState),
    Entry("TAB", kTab, TabState),               Entry("TREEVIEW", kTree, ItemState),
    Entry("SCROLLBAR", kScrollbar, ButtonState), Entry("TOOLBAR", kToolbar, ToolbarState),
    Entry("STATUS", kStatus, NoState),          Entry("WINDOW", kWindow, CaptionState),
};

}  // namespace

theme_class const *FindClass(char const *name, std::size_t length) {
    for (theme_class const &entry : kClasses) {
        if (std::char_traits<char>::length(entry.mName) == length && g_ascii_strncasecmp(entry.mName, name, length) == 0) {
            return &entry;
        }
    }
    return nullptr;
}

part const *FindPart(theme_class const &entry, int id) {
    for (int i = 0; i < entry.mPartCount; ++i) {
        if (entry.mParts[i].mId == id) return &entry.mParts[i];
    }
    return nullptr;
}

}  // namespace qor::tools::platform::theme
