// qor::tools::exception: the one failure type the library throws, by value.
//
// A plain carrier of a numeric code and a text. Library code throws it with
// code 0 and a short English text naming the module and the operation
// ("file MoveFileEx", "OLD DB Insert"); the fields are public and read directly.
//
//   try { ... } catch (qor::tools::exception const &e) { use(e.mCode, e.mMessage); }
#pragma once

#include "qor/tools/export.h"

#include "qor/tools/string.h"

namespace qor::tools {

class QOR_TOOLS_API exception {
public:
    // A code alone.
    explicit exception(int code) : mCode(code) {}
    // The text is made by string::FormatV, so '%' in it is active.
    explicit exception(char16_t const *format, ...);
    // The text is taken as it stands.
    exception(int code, char16_t const *message) : mCode(code), mMessage(message) {}
    exception(exception const &other) = default;
    exception &operator=(exception const &other) = default;
    virtual ~exception() = default;

    // A place to hook diagnostics; does nothing.
    void Trace() {}

    int mCode = 0;    // the code (0 for the library's own texts)
    string mMessage;  // the text, such as "OLD DB Insert"
};

}  // namespace qor::tools
