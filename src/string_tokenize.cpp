// string::Tokenize: splits a text at any of a set of delimiters, with quotes.
#include "tokenize.h"

namespace qor::tools {

namespace detail {

namespace {

bool IsIn(char16_t c, char16_t const *set) {
    for (; *set; ++set) {
        if (*set == c) return true;
    }
    return c == u'"';
}

}  // namespace

string::tokens Tokenize(char16_t const *text, int length, char16_t const *delimiters) {
    string::tokens result;
    delimiters = string::Safe(delimiters);
    bool quoted = false;
    int start = 0;
    for (int i = 0; i < length; ++i) {
        char16_t c = text[i];
        if (!IsIn(c, delimiters)) continue;
        if (c == u'"') {
            quoted = !quoted;
            continue;
        }
        if (quoted) continue;
        int n = i - start;
        if (n >= 2 && text[start] == u'"' && text[i - 1] == u'"') {
            result.Add(string(text + start + 1, n - 2));
        } else {
            result.Add(string(text + start, n));
        }
        start = i + 1;
    }
    if (start < length) result.Add(string(text + start, length - start));
    return result;
}

}  // namespace detail

string::tokens string::Tokenize(char16_t const *text, char16_t const *delimiters) {
    return detail::Tokenize(text, Length(text), delimiters);
}

string::tokens string::Tokenize(char16_t const *delimiters) const {
    return detail::Tokenize(mText, Length(), delimiters);
}

}  // namespace qor::tools
