// The tokenizer behind string::Tokenize and the CSV loaders, over a span.
#pragma once

#include <cstdint>

#include "qor/tools/container/array.h"
#include "qor/tools/string.h"

namespace qor::tools::detail {

// Calls `cell(from, count)` for each token of the `length` units of `text`,
// split at any unit of `delimiters` outside quotes; a token that begins and
// ends with a quote loses them, except the last, which is taken as it stands.
template <typename Cell>
void Split(char16_t const *text, int length, char16_t const *delimiters, Cell &&cell) {
    // Delimiters below 128 are looked up in a bit set, the others in the list.
    std::uint64_t low[2] = {0, 0};
    bool high = false;
    for (char16_t const *d = delimiters; *d; ++d) {
        if (*d < 128) low[*d >> 6] |= std::uint64_t(1) << (*d & 63);
        else high = true;
    }
    auto isDelimiter = [&](char16_t c) {
        if (c < 128) return ((low[c >> 6] >> (c & 63)) & 1) != 0;
        if (!high) return false;
        for (char16_t const *d = delimiters; *d; ++d) {
            if (*d == c) return true;
        }
        return false;
    };
    bool quoted = false;
    int start = 0;
    for (int i = 0; i < length; ++i) {
        char16_t c = text[i];
        if (c == u'"') {
            quoted = !quoted;
            continue;
        }
        if (quoted || !isDelimiter(c)) continue;
        int n = i - start;
        if (n >= 2 && text[start] == u'"' && text[i - 1] == u'"') {
            cell(start + 1, n - 2);
        } else {
            cell(start, n);
        }
        start = i + 1;
    }
    if (start < length) cell(start, length - start);
}

string::tokens Tokenize(char16_t const *text, int length, char16_t const *delimiters);

// The tokens of `text` into `cells`, sized once to their number.
void TokenizeInto(string::tokens &cells, char16_t const *text, int length, char16_t const *delimiters);

}  // namespace qor::tools::detail
