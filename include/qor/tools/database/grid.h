// database::grid: a list control bound to a command. It shows the records of
// one query in report form as a virtual list: the control holds no text and
// asks for each visible cell, which the grid answers from its record set.
// A column shows a field through a FormatD picture (any field as a number),
// or without one a wide-text field as it stands (other fields stay blank).
//
//   database::grid photos;
//   photos.Open(db, u"photos", false);
//   photos.InsertColumn(0, u"名前", LVCFMT_LEFT, u"name", nullptr, 200);
//   photos.InsertColumn(1, u"幅", LVCFMT_RIGHT, u"width", u"#,##0", 80);
//   gtk_container_add(GTK_CONTAINER(window), photos.Widget());
//   photos.RecordSet(u"select name, width from photos order by name");
#pragma once

#include "qor/tools/export.h"

#include "qor/tools/container/array.h"
#include "qor/tools/database/command.h"
#include "qor/tools/platform/list_control.h"

namespace qor::tools::database {

class QOR_TOOLS_API grid : public CListCtrl, public command {
public:
    // A shown column: the field it shows and its number picture (empty: text).
    struct QOR_TOOLS_API info {
        string mField;   // the field's name
        string mFormat;  // the picture for FormatD, or empty
    };

    grid() : mRecords(100) {}
    ~grid() override;

    // The list column, and the field and picture its cells show; columns are
    // looked up in the order of these calls, whatever `column` says.
    int InsertColumn(int column, char16_t const *heading, int format, char16_t const *field, char16_t const *picture,
                     int width);
    // Runs the query into the record set and shows its rows; the count, 0
    // (an empty list) when it fails.
    int RecordSet(char16_t const *format, ...);
    // Answers one cell of an LVN_GETDISPINFOW notification.
    long long GetDispInfo(tagNMHDR *header, long long *result);

    container::array<info, container::pif::array::object> mColumns;  // the shown columns, in order
    rset mRecords;                                                  // the shown rows

protected:
    void PreSubclassWindow() override;
    bool OnChildNotify(UINT message, WPARAM wParam, LPARAM lParam, LRESULT *result) override;
};

}  // namespace qor::tools::database
