// string::FormatD: edits a number into a picture such as "**,**9.99".
#include <cstring>

#include "format.h"
#include "qor/tools/string.h"

namespace qor::tools {

namespace {

constexpr int kPicture = 64;

constexpr bool IsDigit(char16_t c) { return c >= u'0' && c <= u'9'; }

int IndexOf(char16_t const *text, char16_t c) {
    for (int i = 0; text[i]; ++i) {
        if (text[i] == c) return i;
    }
    return -1;
}

// Prints `value` with "%.<d>f" into `number` (at most 63 characters).
void PrintNumber(char16_t (&number)[kPicture], double value, int d) {
    char16_t format[5] = {u'%', u'.', u'0', u'f', 0};
    format[2] = char16_t(u'0' + (d > 9 ? 9 : d));
    string printed;
    printed.Format(format, value);
    string::Copy(number, kPicture, printed.Left(kPicture - 1).Safe());
}

void CopyInteger(char16_t *picture, int separator, char16_t const *number, int point) {
    int i = separator >= 0 ? separator - 1 : string::Length(picture) - 1;
    for (int j = point - 1; i >= 0 && j >= 0; --i) {
        if (picture[i] == u',') continue;
        picture[i] = number[j--];
    }
}

void CopyFraction(char16_t *picture, int separator, char16_t const *fraction) {
    for (int i = separator + 1, j = 0; picture[i] && fraction[j]; ++i, ++j) {
        if (fraction[j] != u'0') picture[i] = fraction[j];
    }
}

void SuppressFraction(char16_t *picture, int separator, bool cut) {
    bool significant = false;
    for (int i = string::Length(picture) - 1; i > separator; --i) {
        char16_t &c = picture[i];
        if (c >= u'1' && c <= u'9') significant = true;
        if (c == u'*') c = significant ? u'0' : (cut ? u'\0' : u' ');
    }
    char16_t next = picture[separator + 1];
    if (next == 0 || next == u' ') picture[separator] = cut ? u'\0' : u' ';
}

void PlaceSign(char16_t *picture, bool negative) {
    for (int i = 0; picture[i] && !IsDigit(picture[i]); ++i) {
        char16_t &c = picture[i];
        if (c == u'*') c = u' ';
        else if (c == u'+') c = negative ? u'-' : u'+';
        else if (c == u'-') c = negative ? u'-' : u' ';
        else if (c == u'\\' && i > 0) picture[i - 1] = negative ? u'-' : u' ';
        if (picture[i + 1] == u',') picture[i + 1] = c;
    }
}

// Blanks repeated fill characters before the first digit; false when there is no digit.
bool FillLeading(char16_t *picture) {
    int i = 0;
    for (; picture[i] && !IsDigit(picture[i]); ++i) {
        if (picture[i] == picture[i + 1] || picture[i + 1] == 0) picture[i] = u' ';
    }
    return picture[i] != 0;
}

}  // namespace

string &string::FormatD(char16_t const *picture, double value, bool trim, bool cut) {
    char16_t edit[kPicture] = {};
    char16_t number[kPicture] = {};
    string source(picture, kPicture - 1);
    Copy(edit, kPicture, source.Safe());

    int separator = IndexOf(edit, u'.');
    if (separator < 0) separator = IndexOf(edit, u'|');
    char16_t separatorChar = separator >= 0 ? edit[separator] : 0;
    int d = separator >= 0 ? Length(edit) - separator - 1 : 1;
    PrintNumber(number, value, d);
    bool negative = value < 0.0;

    int point = IndexOf(number, u'.');
    if (point > 0) CopyInteger(edit, separator, number, point);
    if (separator >= 0) {
        if (point > 0) CopyFraction(edit, separator, number + point + 1);
        SuppressFraction(edit, separator, cut);
    }
    if (separatorChar == u'|') {
        // The tail is moved by its length in units counted as bytes: half of it moves.
        std::memmove(edit + separator, edit + separator + 1, std::size_t(Length(edit + separator + 1)) + 1);
    }
    PlaceSign(edit, negative);
    char16_t const *result = FillLeading(edit) ? edit : kEmpty;
    if (trim) {
        while (*result == u' ') ++result;
    }
    if (result != mText) _Copy(result);
    return *this;
}

}  // namespace qor::tools
