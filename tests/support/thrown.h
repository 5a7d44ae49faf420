// The text of the library's exception a call throws, for tests of failure texts.
#pragma once

#include <functional>

#include "qor/tools/exception.h"

namespace qor::tools::testing {

inline string Thrown(std::function<void()> const &call) {
    try {
        call();
    } catch (exception const &e) {
        return e.mMessage;
    }
    return u"(nothing thrown)";
}

}  // namespace qor::tools::testing
