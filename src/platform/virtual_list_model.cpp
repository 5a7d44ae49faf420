#include "virtual_list_model.h"

#include <string>

#include "qor/tools/platform/list_control.h"
#include "utf8.h"

namespace qor::tools::platform {

namespace {

struct VirtualList {
    GObject parent;
    CListCtrl *owner;
    int rows;
    int columns;
    int stamp;
};

struct VirtualListClass {
    GObjectClass parent;
};

void Interface(GtkTreeModelIface *iface);

G_DEFINE_TYPE_WITH_CODE(VirtualList, virtual_list, G_TYPE_OBJECT,
                        G_IMPLEMENT_INTERFACE(GTK_TYPE_TREE_MODEL, Interface))

VirtualList *Self(GtkTreeModel *model) { return reinterpret_cast<VirtualList *>(model); }

void virtual_list_init(VirtualList *self) { self->stamp = g_random_int(); }
void virtual_list_class_init(VirtualListClass *) {}

bool Set(VirtualList *self, GtkTreeIter *iter, int row) {
    if (row < 0 || row >= self->rows) {
        iter->stamp = 0;
        return false;
    }
    iter->stamp = self->stamp;
    iter->user_data = GINT_TO_POINTER(row);
    return true;
}

int Row(GtkTreeIter *iter) { return GPOINTER_TO_INT(iter->user_data); }

GtkTreeModelFlags Flags(GtkTreeModel *) { return GtkTreeModelFlags(GTK_TREE_MODEL_LIST_ONLY | GTK_TREE_MODEL_ITERS_PERSIST); }
gint Columns(GtkTreeModel *model) { return Self(model)->columns; }
GType ColumnType(GtkTreeModel *, gint) { return G_TYPE_STRING; }

gboolean GetIter(GtkTreeModel *model, GtkTreeIter *iter, GtkTreePath *path) {
    if (gtk_tree_path_get_depth(path) != 1) return FALSE;
    return Set(Self(model), iter, gtk_tree_path_get_indices(path)[0]);
}

GtkTreePath *GetPath(GtkTreeModel *, GtkTreeIter *iter) { return gtk_tree_path_new_from_indices(Row(iter), -1); }

// The one place the view reads cells: the control is asked for the text.
void GetValue(GtkTreeModel *model, GtkTreeIter *iter, gint column, GValue *value) {
    g_value_init(value, G_TYPE_STRING);
    char16_t text[kListTextMax] = {};
    Self(model)->owner->CellText(Row(iter), column, text, kListTextMax);
    g_value_take_string(value, g_strdup(detail::ToUtf8(text).c_str()));
}

gboolean Next(GtkTreeModel *model, GtkTreeIter *iter) { return Set(Self(model), iter, Row(iter) + 1); }

gboolean Children(GtkTreeModel *model, GtkTreeIter *iter, GtkTreeIter *parent) {
    return parent ? FALSE : Set(Self(model), iter, 0);
}

gboolean HasChild(GtkTreeModel *, GtkTreeIter *) { return FALSE; }

gint ChildCount(GtkTreeModel *model, GtkTreeIter *iter) { return iter ? 0 : Self(model)->rows; }

gboolean NthChild(GtkTreeModel *model, GtkTreeIter *iter, GtkTreeIter *parent, gint n) {
    return parent ? FALSE : Set(Self(model), iter, n);
}

gboolean Parent(GtkTreeModel *, GtkTreeIter *, GtkTreeIter *) { return FALSE; }

void Interface(GtkTreeModelIface *iface) {
    iface->get_flags = Flags;
    iface->get_n_columns = Columns;
    iface->get_column_type = ColumnType;
    iface->get_iter = GetIter;
    iface->get_path = GetPath;
    iface->get_value = GetValue;
    iface->iter_next = Next;
    iface->iter_children = Children;
    iface->iter_has_child = HasChild;
    iface->iter_n_children = ChildCount;
    iface->iter_nth_child = NthChild;
    iface->iter_parent = Parent;
}

}  // namespace

GtkTreeModel *NewVirtualListModel(CListCtrl *owner) {
    auto *self = static_cast<VirtualList *>(g_object_new(virtual_list_get_type(), nullptr));
    self->owner = owner;
    return GTK_TREE_MODEL(self);
}

void SetVirtualListShape(GtkTreeModel *model, int rows, int columns) {
    VirtualList *self = Self(model);
    self->rows = rows < 0 ? 0 : rows;
    self->columns = columns;
    self->stamp = g_random_int();
}

}  // namespace qor::tools::platform
