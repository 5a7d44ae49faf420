// The width tables. They follow the platform's LCMapStringW with
// LCMAP_FULLWIDTH / LCMAP_HALFWIDTH, which does not depend on the locale:
// ASCII and the space, the half-width katakana block U+FF61..U+FF9F with voiced
// and semi-voiced composition, and the half-width/full-width symbol forms.
// U+005C and U+FF3C are left as they are, as the current platform does.
#include "width_tables.h"

namespace qor::tools::detail {

namespace {

// U+FF61..U+FF9F to their full-width forms (the two marks as combining marks).
constexpr char16_t kHalfKana[] = {
    0x3002, 0x300C, 0x300D, 0x3001, 0x30FB, 0x30F2, 0x30A1, 0x30A3, 0x30A5, 0x30A7, 0x30A9, 0x30E3, 0x30E5,
    0x30E7, 0x30C3, 0x30FC, 0x30A2, 0x30A4, 0x30A6, 0x30A8, 0x30AA, 0x30AB, 0x30AD, 0x30AF, 0x30B1, 0x30B3,
    0x30B5, 0x30B7, 0x30B9, 0x30BB, 0x30BD, 0x30BF, 0x30C1, 0x30C4, 0x30C6, 0x30C8, 0x30CA, 0x30CB, 0x30CC,
    0x30CD, 0x30CE, 0x30CF, 0x30D2, 0x30D5, 0x30D8, 0x30DB, 0x30DE, 0x30DF, 0x30E0, 0x30E1, 0x30E2, 0x30E4,
    0x30E6, 0x30E8, 0x30E9, 0x30EA, 0x30EB, 0x30EC, 0x30ED, 0x30EF, 0x30F3, 0x3099, 0x309A,
};

// Symbols: half-width <-> full-width.
struct pair {
    char16_t half, full;
};
constexpr pair kSymbols[] = {
    {0x00A2, 0xFFE0}, {0x00A3, 0xFFE1}, {0x00AC, 0xFFE2}, {0x00AF, 0xFFE3},
    {0x00A6, 0xFFE4}, {0x00A5, 0xFFE5}, {0x20A9, 0xFFE6},
};

constexpr char16_t kVoiced = 0xFF9E, kSemiVoiced = 0xFF9F;

// The full-width kana that takes a voiced mark: K, S, T and H rows, ウ, ワ, ヲ.
bool TakesVoiced(char16_t c) {
    return (c >= 0x30AB && c <= 0x30C2 && (c - 0x30AB) % 2 == 0) || c == 0x30C4 || c == 0x30C6 ||
           c == 0x30C8 || (c >= 0x30CF && c <= 0x30DB && (c - 0x30CF) % 3 == 0) || c == 0x30A6 || c == 0x30EF ||
           c == 0x30F2;
}

bool TakesSemiVoiced(char16_t c) { return c >= 0x30CF && c <= 0x30DB && (c - 0x30CF) % 3 == 0; }

char16_t Voiced(char16_t c) {
    switch (c) {
        case 0x30A6: return 0x30F4;  // ヴ
        case 0x30EF: return 0x30F7;  // ヷ
        case 0x30F2: return 0x30FA;  // ヺ
        default: return char16_t(c + 1);
    }
}

// The half-width form of a full-width katakana (or 0), with its mark (or 0).
struct half {
    char16_t base, mark;
};

half HalfOf(char16_t c) {
    for (int i = 0; i < int(sizeof kHalfKana / sizeof *kHalfKana) - 2; ++i) {
        if (kHalfKana[i] == c) return {char16_t(0xFF61 + i), 0};
    }
    for (int i = 0x15; i <= 0x2D; ++i) {  // ｶ .. ﾎ
        char16_t base = kHalfKana[i];
        if (TakesVoiced(base) && Voiced(base) == c) return {char16_t(0xFF61 + i), kVoiced};
        if (TakesSemiVoiced(base) && base + 2 == c) return {char16_t(0xFF61 + i), kSemiVoiced};
    }
    switch (c) {
        case 0x30F4: return {0xFF73, kVoiced};  // ヴ
        case 0x30F7: return {0xFF9C, kVoiced};  // ヷ
        case 0x30FA: return {0xFF66, kVoiced};  // ヺ
        case 0x30FE: return {0x30FD, kVoiced};  // ヾ: ヽ has no half-width form
        case 0x3099: case 0x309B: return {kVoiced, 0};
        case 0x309A: case 0x309C: return {kSemiVoiced, 0};
        default: return {0, 0};
    }
}

}  // namespace

std::u16string ToFullWidth(char16_t const *text, std::size_t n) {
    std::u16string out;
    out.reserve(n);
    for (std::size_t i = 0; i < n; ++i) {
        char16_t c = text[i];
        if (c == 0x20) {
            out.push_back(0x3000);
        } else if (c >= 0x21 && c <= 0x7E && c != 0x5C) {
            out.push_back(char16_t(c + 0xFEE0));
        } else if (c >= 0xFF61 && c <= 0xFF9F) {
            char16_t full = kHalfKana[c - 0xFF61];
            char16_t next = i + 1 < n ? text[i + 1] : 0;
            if (next == kVoiced && TakesVoiced(full)) {
                full = Voiced(full);
                ++i;
            } else if (next == kSemiVoiced && TakesSemiVoiced(full)) {
                full = char16_t(full + 2);
                ++i;
            }
            out.push_back(full);
        } else if (c == 0x309B || c == 0x309C) {
            out.push_back(char16_t(c - 2));
        } else {
            char16_t mapped = c;
            for (auto const &p : kSymbols) {
                if (p.half == c) mapped = p.full;
            }
            out.push_back(mapped);
        }
    }
    return out;
}

std::u16string ToHalfWidth(char16_t const *text, std::size_t n) {
    std::u16string out;
    out.reserve(n * 2);
    for (std::size_t i = 0; i < n; ++i) {
        char16_t c = text[i];
        if (c == 0x3000) {
            out.push_back(0x20);
        } else if (c >= 0xFF01 && c <= 0xFF5E && c != 0xFF3C) {
            out.push_back(char16_t(c - 0xFEE0));
        } else if (c == 0x2019) {
            out.push_back(u'\'');
        } else if (c == 0x201D) {
            out.push_back(u'"');
        } else if (half h = HalfOf(c); h.base) {
            out.push_back(h.base);
            if (h.mark) out.push_back(h.mark);
        } else {
            char16_t mapped = c;
            for (auto const &p : kSymbols) {
                if (p.full == c) mapped = p.half;
            }
            out.push_back(mapped);
        }
    }
    return out;
}

}  // namespace qor::tools::detail
