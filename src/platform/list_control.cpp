// The list control over GTK: columns are text renderers of a fixed width in
// a fixed-height view, so that the view asks only for the cells it shows.
#include "qor/tools/platform/list_control.h"

#include <gtk/gtk.h>

#include <algorithm>

#include "utf8.h"
#include "virtual_list_model.h"

namespace qor::tools {

namespace {

GtkTreeModel *Model(void *model) { return static_cast<GtkTreeModel *>(model); }

}  // namespace

CListCtrl::~CListCtrl() {
    if (mView) {
        gtk_tree_view_set_model(GTK_TREE_VIEW(mView), nullptr);
        g_object_unref(mView);
    }
    if (mScrolled) g_object_unref(mScrolled);
    if (mModel) g_object_unref(Model(mModel));
}

GtkWidget *CListCtrl::Widget() {
    if (mScrolled) return mScrolled;
    mModel = platform::NewVirtualListModel(this);
    mView = GTK_WIDGET(g_object_ref_sink(gtk_tree_view_new()));  // kept past the window's end
    gtk_tree_view_set_fixed_height_mode(GTK_TREE_VIEW(mView), TRUE);
    mScrolled = gtk_scrolled_window_new(nullptr, nullptr);
    g_object_ref_sink(mScrolled);  // the control keeps it, whoever else holds it
    gtk_container_add(GTK_CONTAINER(mScrolled), mView);
    PreSubclassWindow();
    return mScrolled;
}

int CListCtrl::InsertColumn(int column, char16_t const *heading, int format, int width, int) {
    Widget();
    int at = std::clamp(column, 0, mColumnCount);
    GtkCellRenderer *renderer = gtk_cell_renderer_text_new();
    float align = format == LVCFMT_RIGHT ? 1.0f : format == LVCFMT_CENTER ? 0.5f : 0.0f;
    g_object_set(renderer, "xalign", align, nullptr);
    // The model's column is the order of insertion, as the owner's cells are.
    GtkTreeViewColumn *view = gtk_tree_view_column_new_with_attributes(
        detail::ToUtf8(heading ? heading : u"").c_str(), renderer, "text", mColumnCount, nullptr);
    gtk_tree_view_column_set_sizing(view, GTK_TREE_VIEW_COLUMN_FIXED);
    gtk_tree_view_column_set_fixed_width(view, std::max(1, width));
    gtk_tree_view_column_set_resizable(view, TRUE);
    gtk_tree_view_column_set_alignment(view, align);
    gtk_tree_view_insert_column(GTK_TREE_VIEW(mView), view, at);
    ++mColumnCount;
    SetItemCount(mCount);
    return at;
}

// The view takes the model again: it forgets its rows and asks afresh.
void CListCtrl::SetItemCount(int count) {
    Widget();
    mCount = std::max(0, count);
    gtk_tree_view_set_model(GTK_TREE_VIEW(mView), nullptr);
    platform::SetVirtualListShape(Model(mModel), mCount, mColumnCount);
    gtk_tree_view_set_model(GTK_TREE_VIEW(mView), Model(mModel));
}

LRESULT CListCtrl::SendMessageW(UINT message, WPARAM wParam, LPARAM) {
    if (message != LVM_SETITEMCOUNT) return 0;
    SetItemCount(int(wParam));
    return 1;
}

bool CListCtrl::ModifyStyle(unsigned long remove, unsigned long add) {
    mStyle = (mStyle & ~remove) | add;
    return true;
}

bool CListCtrl::OnChildNotify(UINT, WPARAM, LPARAM, LRESULT *) { return false; }

void CListCtrl::CellText(int row, int column, char16_t *text, int room) {
    NMLVDISPINFOW notice{};
    notice.hdr = {mView, 0, LVN_GETDISPINFOW};
    notice.item.mask = LVIF_TEXT;
    notice.item.iItem = row;
    notice.item.iSubItem = column;
    notice.item.pszText = text;
    notice.item.cchTextMax = room;
    LRESULT result = 0;
    OnChildNotify(WM_REFLECT_NOTIFY, 0, reinterpret_cast<LPARAM>(&notice), &result);
}

}  // namespace qor::tools
