// two<A, B>: a plain pair; empty: the absence of a target object
// (as in thread::worker::functionT<empty>).
#pragma once

#include "qor/tools/export.h"

namespace qor::tools::container {

template <typename A, typename B>
struct two {
    A mFirst;   // the first value
    B mSecond;  // the second value
};

struct QOR_TOOLS_API empty {};

}  // namespace qor::tools::container
