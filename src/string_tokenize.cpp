// string::Tokenize: splits a text at any of a set of delimiters, with quotes.
#include "qor/tools/container/array.h"
#include "qor/tools/string.h"

namespace qor::tools {

namespace {

bool IsIn(char16_t c, string const &set) { return string::Find(set, c, 0) >= 0; }

}  // namespace

string::tokens string::Tokenize(char16_t const *text, char16_t const *delimiters) {
    tokens result;
    string set(delimiters);
    set += u'"';
    int length = Length(text);
    bool quoted = false;
    int start = 0;
    for (int i = 0; i < length; ++i) {
        char16_t c = text[i];
        if (!IsIn(c, set)) continue;
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
    if (start < length) result.Add(string(text + start));
    return result;
}

string::tokens string::Tokenize(char16_t const *delimiters) const { return Tokenize(mText, delimiters); }

}  // namespace qor::tools
