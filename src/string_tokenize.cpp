// string::Tokenize: splits a text at any of a set of delimiters, with quotes.
#include "tokenize.h"

namespace qor::tools {

namespace detail {

string::tokens Tokenize(char16_t const *text, int length, char16_t const *delimiters) {
    string::tokens result;
    delimiters = string::Safe(delimiters);
    Split(text, length, delimiters, [&](int from, int count) { result.Add(string(text + from, count)); });
    return result;
}

void TokenizeInto(string::tokens &cells, char16_t const *text, int length, char16_t const *delimiters) {
    int count = 0;
    Split(text, length, delimiters, [&](int, int) { ++count; });
    cells.Size(count);
    int i = 0;
    Split(text, length, delimiters, [&](int from, int n) { cells[i++] = string(text + from, n); });
}

}  // namespace detail

string::tokens string::Tokenize(char16_t const *text, char16_t const *delimiters) {
    return detail::Tokenize(text, Length(text), delimiters);
}

string::tokens string::Tokenize(char16_t const *delimiters) const {
    return detail::Tokenize(mText, Length(), delimiters);
}

}  // namespace qor::tools
