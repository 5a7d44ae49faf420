// The platform's buffered paint and visual styles, with the Windows names and
// numbers: a buffered paint is an off-screen picture of a rectangle, painted
// onto its context when it ends; a theme handle draws the parts of a class of
// controls ("BUTTON", "EDIT", ...) in the desktop theme through GTK 3 style
// contexts. Theme handles need a display that the application has opened
// with GTK; without one OpenThemeData answers null.
//
//   HTHEME theme = OpenThemeData(widget, u"BUTTON");
//   DrawThemeBackground(theme, cr, BP_PUSHBUTTON, PBS_HOT, &rect, nullptr);
//   CloseThemeData(theme);
#pragma once

#include "qor/tools/export.h"

#include "qor/tools/platform/handles.h"
#include "qor/tools/platform/region.h"
#include "qor/tools/platform/types.h"

namespace qor::tools {

struct paint_buffer;
using HPAINTBUFFER = paint_buffer *;

enum _BP_BUFFERFORMAT { BPBF_COMPATIBLEBITMAP = 0, BPBF_DIB = 1, BPBF_TOPDOWNDIB = 2, BPBF_TOPDOWNMONODIB = 3 };
using BP_BUFFERFORMAT = _BP_BUFFERFORMAT;

struct BP_PAINTPARAMS {
    DWORD cbSize;
    DWORD dwFlags;
    tagRECT const *prcExclude;
    void const *pBlendFunction;
};

// A buffer of `target`'s rectangle, in the same coordinates: `*dc` draws on
// it. Null (and a null `*dc`) for an empty rectangle or no context.
QOR_TOOLS_API HPAINTBUFFER BeginBufferedPaint(HDC target, tagRECT const *rect, BP_BUFFERFORMAT format,
                                              BP_PAINTPARAMS const *params, HDC *dc);
// Paints the buffer over its target when `update` is true, and frees it.
QOR_TOOLS_API HRESULT EndBufferedPaint(HPAINTBUFFER buffer, int update);
QOR_TOOLS_API HRESULT BufferedPaintInit();
QOR_TOOLS_API HRESULT BufferedPaintUnInit();

struct theme_data;
using HTHEME = theme_data *;

// DrawText's flags, as DrawThemeText and GetThemeTextExtent read them.
inline constexpr DWORD DT_LEFT = 0x0000;
inline constexpr DWORD DT_CENTER = 0x0001;
inline constexpr DWORD DT_RIGHT = 0x0002;
inline constexpr DWORD DT_VCENTER = 0x0004;
inline constexpr DWORD DT_BOTTOM = 0x0008;
inline constexpr DWORD DT_WORDBREAK = 0x0010;
inline constexpr DWORD DT_SINGLELINE = 0x0020;
inline constexpr DWORD DT_NOCLIP = 0x0100;
inline constexpr DWORD DT_CALCRECT = 0x0400;
inline constexpr DWORD DT_NOPREFIX = 0x0800;
inline constexpr DWORD DT_END_ELLIPSIS = 0x8000;

// Parts and states of the classes known to OpenThemeData.
enum BUTTONPARTS { BP_PUSHBUTTON = 1, BP_RADIOBUTTON = 2, BP_CHECKBOX = 3, BP_GROUPBOX = 4 };
enum PUSHBUTTONSTATES { PBS_NORMAL = 1, PBS_HOT = 2, PBS_PRESSED = 3, PBS_DISABLED = 4, PBS_DEFAULTED = 5 };
enum CHECKBOXSTATES {
    CBS_UNCHECKEDNORMAL = 1, CBS_UNCHECKEDHOT = 2, CBS_UNCHECKEDPRESSED = 3, CBS_UNCHECKEDDISABLED = 4,
    CBS_CHECKEDNORMAL = 5, CBS_CHECKEDHOT = 6, CBS_CHECKEDPRESSED = 7, CBS_CHECKEDDISABLED = 8,
};
enum RADIOBUTTONSTATES {
    RBS_UNCHECKEDNORMAL = 1, RBS_UNCHECKEDHOT = 2, RBS_UNCHECKEDPRESSED = 3, RBS_UNCHECKEDDISABLED = 4,
    RBS_CHECKEDNORMAL = 5, RBS_CHECKEDHOT = 6, RBS_CHECKEDPRESSED = 7, RBS_CHECKEDDISABLED = 8,
};
enum EDITPARTS { EP_EDITTEXT = 1 };
enum EDITTEXTSTATES { ETS_NORMAL = 1, ETS_HOT = 2, ETS_SELECTED = 3, ETS_DISABLED = 4, ETS_FOCUSED = 5, ETS_READONLY = 6 };
enum COMBOBOXPARTS { CP_DROPDOWNBUTTON = 1 };
enum COMBOBOXSTYLESTATES { CBXS_NORMAL = 1, CBXS_HOT = 2, CBXS_PRESSED = 3, CBXS_DISABLED = 4 };
enum LISTVIEWPARTS { LVP_LISTITEM = 1 };
enum LISTITEMSTATES { LISS_NORMAL = 1, LISS_HOT = 2, LISS_SELECTED = 3, LISS_DISABLED = 4, LISS_SELECTEDNOTFOCUS = 5, LISS_HOTSELECTED = 6 };
enum HEADERPARTS { HP_HEADERITEM = 1 };
enum HEADERITEMSTATES { HIS_NORMAL = 1, HIS_HOT = 2, HIS_PRESSED = 3 };
enum PROGRESSPARTS { PP_BAR = 1, PP_CHUNK = 3 };
enum TABPARTS { TABP_TABITEM = 1, TABP_PANE = 9 };
enum TABITEMSTATES { TIS_NORMAL = 1, TIS_HOT = 2, TIS_SELECTED = 3, TIS_DISABLED = 4, TIS_FOCUSED = 5 };
enum TREEVIEWPARTS { TVP_TREEITEM = 1 };
enum TREEITEMSTATES { TREIS_NORMAL = 1, TREIS_HOT = 2, TREIS_SELECTED = 3, TREIS_DISABLED = 4, TREIS_SELECTEDNOTFOCUS = 5, TREIS_HOTSELECTED = 6 };
enum SCROLLBARPARTS { SBP_ARROWBTN = 1, SBP_THUMBBTNHORZ = 2, SBP_THUMBBTNVERT = 3, SBP_LOWERTRACKHORZ = 4, SBP_UPPERTRACKHORZ = 5, SBP_LOWERTRACKVERT = 6, SBP_UPPERTRACKVERT = 7 };
enum SCROLLBARSTYLESTATES { SCRBS_NORMAL = 1, SCRBS_HOT = 2, SCRBS_PRESSED = 3, SCRBS_DISABLED = 4 };
enum TOOLBARPARTS { TP_BUTTON = 1 };
enum TOOLBARSTYLESTATES { TS_NORMAL = 1, TS_HOT = 2, TS_PRESSED = 3, TS_DISABLED = 4, TS_CHECKED = 5 };
enum STATUSPARTS { SP_PANE = 1, SP_GRIPPERPANE = 2, SP_GRIPPER = 3 };
enum WINDOWPARTS { WP_CAPTION = 1, WP_DIALOG = 29 };
enum CAPTIONSTATES { CS_ACTIVE = 1, CS_INACTIVE = 2, CS_DISABLED = 3 };

// The first class of the semicolon-separated list that is known (upper or
// lower case), or null. The window is not read.
QOR_TOOLS_API HTHEME OpenThemeData(HWND window, char16_t const *classList);
QOR_TOOLS_API HRESULT CloseThemeData(HTHEME theme);
QOR_TOOLS_API HRESULT DrawThemeBackground(HTHEME theme, HDC dc, int part, int state, tagRECT const *rect,
                                          tagRECT const *clip);
// A length of -1 takes the text to its terminator.
QOR_TOOLS_API HRESULT DrawThemeText(HTHEME theme, HDC dc, int part, int state, char16_t const *text, int length,
                                    DWORD flags, DWORD flags2, tagRECT const *rect);
QOR_TOOLS_API HRESULT GetThemeTextExtent(HTHEME theme, HDC dc, int part, int state, char16_t const *text, int length,
                                         DWORD flags, tagRECT const *bounds, tagRECT *extent);
// The rectangle the part's background covers inside `rect` (the part's CSS
// margin left out); the caller owns the region.
QOR_TOOLS_API HRESULT GetThemeBackgroundRegion(HTHEME theme, HDC dc, int part, int state, tagRECT const *rect,
                                               HRGN *region);

}  // namespace qor::tools
