// CListCtrl: the report-style list control of the platform, as the library
// stands it in on GTK 3: a GtkTreeView in fixed-height mode in a scrolled
// window, over a virtual model that holds no text. Each cell the view draws
// is asked for with an LVN_GETDISPINFOW notification, which the control
// hands to OnChildNotify (the framework's reflected notification), so that a
// derived class answers it. Widget() makes the widgets (GTK must be
// initialised) for the application to put in a window.
//
//   class names : public CListCtrl {
//       BOOL OnChildNotify(UINT message, WPARAM, LPARAM notice, LRESULT *result) override;   // fills the text
//   };
//   names list;
//   list.InsertColumn(0, u"Name", LVCFMT_LEFT, 160, -1);
//   gtk_container_add(GTK_CONTAINER(window), list.Widget());
//   list.SetItemCount(1000000);
#pragma once

#include "qor/tools/export.h"

#include <cstdint>

#include "qor/tools/platform/handles.h"

namespace qor::tools {

using UINT = unsigned;
using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;
using LRESULT = std::intptr_t;

struct tagNMHDR {
    HWND hwndFrom;
    std::uintptr_t idFrom;
    UINT code;
};
using NMHDR = tagNMHDR;

struct LVITEMW {
    UINT mask;
    int iItem;
    int iSubItem;
    UINT state;
    UINT stateMask;
    char16_t *pszText;
    int cchTextMax;
    int iImage;
    LPARAM lParam;
};

struct NMLVDISPINFOW {
    NMHDR hdr;
    LVITEMW item;
};

inline constexpr UINT LVIF_TEXT = 0x0001;
inline constexpr UINT LVN_GETDISPINFOW = 0xFFFFFF4Fu;  // LVN_FIRST - 77
inline constexpr UINT WM_NOTIFY = 0x004E;
inline constexpr UINT WM_REFLECT_NOTIFY = 0xBC4E;  // a WM_NOTIFY reflected to the control
inline constexpr UINT LVM_SETITEMCOUNT = 0x102F;
inline constexpr unsigned long LVS_OWNERDATA = 0x1000;
inline constexpr int LVCFMT_LEFT = 0;
inline constexpr int LVCFMT_RIGHT = 1;
inline constexpr int LVCFMT_CENTER = 2;
// The text buffer a cell notification offers, in characters with the terminator.
inline constexpr int kListTextMax = 260;

class QOR_TOOLS_API CListCtrl {
public:
    CListCtrl() = default;
    CListCtrl(CListCtrl const &) = delete;
    CListCtrl &operator=(CListCtrl const &) = delete;
    virtual ~CListCtrl();

    // The scrolled window holding the view, made at the first call.
    GtkWidget *Widget();
    // The tree view itself (null before Widget()).
    GtkWidget *View() const { return mView; }
    // A column of `width` pixels at `column` (clamped to the columns there);
    // `format` an LVCFMT_ alignment. The index it went to.
    int InsertColumn(int column, char16_t const *heading, int format, int width, int subItem);
    int GetColumnCount() const { return mColumnCount; }
    void SetItemCount(int count);
    int GetItemCount() const { return mCount; }
    // LVM_SETITEMCOUNT is the one message the control takes.
    LRESULT SendMessageW(UINT message, WPARAM wParam, LPARAM lParam);
    bool ModifyStyle(unsigned long remove, unsigned long add);
    unsigned long GetStyle() const { return mStyle; }

    // The text of one cell, asked of OnChildNotify; empty when it answers nothing.
    void CellText(int row, int column, char16_t *text, int room);

protected:
    // Called once the widgets exist, as the framework does before a window is used.
    virtual void PreSubclassWindow() {}
    // A reflected notification; true when handled.
    virtual bool OnChildNotify(UINT message, WPARAM wParam, LPARAM lParam, LRESULT *result);

private:
    GtkWidget *mScrolled = nullptr;
    GtkWidget *mView = nullptr;
    void *mModel = nullptr;
    int mCount = 0;
    int mColumnCount = 0;
    unsigned long mStyle = 0;
};

}  // namespace qor::tools
