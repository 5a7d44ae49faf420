#include "qor/tools/exception.h"

namespace qor::tools {

exception::exception(char16_t const *format, ...) {
    va_list args;
    va_start(args, format);
    mMessage.FormatV(format, args);
    va_end(args);
}

}  // namespace qor::tools
