// Column sets built by hand for the database tests.
#pragma once

#include "qor/tools/database/column.h"
#include "support/counted_unknown.h"

namespace qor::tools::testing {

class layout : public database::column {
public:
    layout &Add(char16_t const *name, unsigned short type, unsigned long size = 0,
                unsigned long flags = DBCOLUMNFLAGS_WRITE) {
        _Add(name, Columns(), type, size, flags, 0, 0);
        return *this;
    }
    layout &Bookmark() {
        _Add(nullptr, 0, DBTYPE_UI4, 4, DBCOLUMNFLAGS_ISBOOKMARK | DBCOLUMNFLAGS_ISFIXEDLENGTH, 10, 255);
        return *this;
    }
};


}  // namespace qor::tools::testing
