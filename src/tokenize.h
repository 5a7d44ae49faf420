// The tokenizer behind string::Tokenize and the CSV loaders, over a span.
#pragma once

#include "qor/tools/container/array.h"
#include "qor/tools/string.h"

namespace qor::tools::detail {

string::tokens Tokenize(char16_t const *text, int length, char16_t const *delimiters);

}  // namespace qor::tools::detail
