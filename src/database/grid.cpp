#include "qor/tools/database/grid.h"

#include <algorithm>
#include <cstdarg>

namespace qor::tools::database {

grid::~grid() { mRecords.Clear(); }

void grid::PreSubclassWindow() {
    ModifyStyle(0, LVS_OWNERDATA);
    CListCtrl::PreSubclassWindow();
}

int grid::InsertColumn(int column, char16_t const *heading, int format, char16_t const *field, char16_t const *picture,
                       int width) {
    int at = CListCtrl::InsertColumn(column, heading, format, width, -1);
    mColumns.Add(info{string(field), string(picture)});
    return at;
}

int grid::RecordSet(char16_t const *format, ...) {
    va_list args;
    va_start(args, format);
    int count = RecordSetV(mRecords, format, args);
    va_end(args);
    SendMessageW(LVM_SETITEMCOUNT, WPARAM(count < 0 ? 0 : count), 0);
    return count;
}

// The reflected LVN_GETDISPINFOW goes to GetDispInfo, and the parent sees it too.
bool grid::OnChildNotify(UINT message, WPARAM, LPARAM lParam, LRESULT *result) {
    auto *header = reinterpret_cast<tagNMHDR *>(lParam);
    if (message != WM_REFLECT_NOTIFY || !header || header->code != LVN_GETDISPINFOW) return false;
    long long answer = 0;
    GetDispInfo(header, &answer);
    if (result) *result = LRESULT(answer);
    return false;
}

// A text longer than the buffer is cut at the buffer's end.
long long grid::GetDispInfo(tagNMHDR *header, long long *result) {
    LVITEMW &item = reinterpret_cast<NMLVDISPINFOW *>(header)->item;
    if (item.mask == LVIF_TEXT && item.pszText && item.cchTextMax > 0) {
        string text;
        if (item.iSubItem >= 0 && item.iSubItem < mColumns.Size()) {
            info const &column = mColumns[item.iSubItem];
            field &cell = mRecords[item.iItem][column.mField];
            if (!column.mFormat.IsEmpty()) {
                text.FormatD(column.mFormat, double(cell), false, false);
            } else if (cell.Type() == DBTYPE_WSTR && cell.Address()) {
                text = static_cast<char16_t const *>(cell);
            }
        }
        int length = std::min(text.Length(), item.cchTextMax - 1);
        std::char_traits<char16_t>::copy(item.pszText, text.IsEmpty() ? u"" : static_cast<char16_t const *>(text),
                                         std::size_t(length));
        item.pszText[length] = u'\0';
    }
    *result = 0;
    return 0;
}

}  // namespace qor::tools::database
