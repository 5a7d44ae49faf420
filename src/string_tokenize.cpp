// string::Tokenize: splits a text at any of a set of delimiters, with quotes.
#include "tokenize.h"

#include <vector>

namespace qor::tools {

namespace detail {

string::tokens Tokenize(char16_t const *text, int length, char16_t const *delimiters) {
    string::tokens result;
    delimiters = string::Safe(delimiters);
    Split(text, length, delimiters, [&](int from, int count) { result.Add(string(text + from, count)); });
    return result;
}

void TokenizeInto(string::tokens &cells, char16_t const *text, int length, char16_t const *delimiters) {
    // The cells' places are noted first (the first few without an
    // allocation), so that the array is sized once.
    struct place {
        int mFrom, mCount;
    };
    place inline_places[32];
    std::vector<place> more;
    int count = 0;
    Split(text, length, delimiters, [&](int from, int n) {
        if (count < 32) inline_places[count] = {from, n};
        else more.push_back({from, n});
        ++count;
    });
    cells.Size(count);
    for (int i = 0; i < count; ++i) {
        place const &p = i < 32 ? inline_places[i] : more[std::size_t(i - 32)];
        cells[i] = string(text + p.mFrom, p.mCount);
    }
}

}  // namespace detail

string::tokens string::Tokenize(char16_t const *text, char16_t const *delimiters) {
    return detail::Tokenize(text, Length(text), delimiters);
}

string::tokens string::Tokenize(char16_t const *delimiters) const {
    return detail::Tokenize(mText, Length(), delimiters);
}

}  // namespace qor::tools
