// A GtkTreeModel of a given number of rows and string columns that holds no
// data: each value is asked of the list control when the view needs it. Rows
// are identified by their index; changing the count resets the model.
#pragma once

#include <gtk/gtk.h>

namespace qor::tools {
class CListCtrl;
}

namespace qor::tools::platform {

GtkTreeModel *NewVirtualListModel(CListCtrl *owner);
void SetVirtualListShape(GtkTreeModel *model, int rows, int columns);

}  // namespace qor::tools::platform
