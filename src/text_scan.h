// Scans of NUL-terminated UTF-16 text, eight units at a time. The loads are
// aligned 16-byte blocks, which never cross a page, so a scan may look at
// the units of a block beyond the terminator (as the C library's own strlen
// does) but never at memory that is not there.
#pragma once

#include <cstddef>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

// The scans read whole aligned blocks, so they may read units past the
// terminator inside the terminator's block: the sanitizers are told so.
#define QOR_SCAN __attribute__((no_sanitize_address, no_sanitize("thread")))

namespace qor::tools::detail {

#if defined(__SSE2__)

namespace scan {

constexpr std::uintptr_t kBlock = 16;

// Bits of the units of the block at `block` that equal `c`, two bits a unit.
QOR_SCAN inline unsigned Equal(char16_t const *block, __m128i c) noexcept {
    __m128i units = _mm_load_si128(reinterpret_cast<__m128i const *>(block));
    return unsigned(_mm_movemask_epi8(_mm_cmpeq_epi16(units, c)));
}

// The block that holds `s`, and the bits of the units before `s` to ignore.
inline char16_t const *BlockOf(char16_t const *s, unsigned &skip) noexcept {
    auto address = reinterpret_cast<std::uintptr_t>(s);
    auto block = address & ~(kBlock - 1);
    skip = ~0u << (address - block);
    return reinterpret_cast<char16_t const *>(block);
}

inline int FirstBit(unsigned bits) noexcept { return __builtin_ctz(bits); }

}  // namespace scan

using namespace scan;

QOR_SCAN inline std::size_t ScanLength(char16_t const *s) noexcept {
    if (reinterpret_cast<std::uintptr_t>(s) & 1) {  // not even 2-aligned: no blocks of units
        std::size_t n = 0;
        while (s[n]) ++n;
        return n;
    }
    __m128i zero = _mm_setzero_si128();
    unsigned skip;
    char16_t const *block = BlockOf(s, skip);
    for (unsigned bits = Equal(block, zero) & skip;; bits = Equal(block, zero)) {
        if (bits) return std::size_t(block + FirstBit(bits) / 2 - s);
        block += 8;
    }
}

QOR_SCAN inline std::size_t ScanLength(char16_t const *s, std::size_t limit) noexcept {
    if (reinterpret_cast<std::uintptr_t>(s) & 1) {
        std::size_t n = 0;
        while (n < limit && s[n]) ++n;
        return n;
    }
    __m128i zero = _mm_setzero_si128();
    unsigned skip;
    char16_t const *block = BlockOf(s, skip);
    for (unsigned bits = Equal(block, zero) & skip;; bits = Equal(block, zero)) {
        if (bits) {
            std::size_t n = std::size_t(block + FirstBit(bits) / 2 - s);
            return n < limit ? n : limit;
        }
        block += 8;
        if (std::size_t(block - s) >= limit) return limit;
    }
}

QOR_SCAN inline char16_t const *ScanUnit(char16_t const *s, char16_t c) noexcept {
    if (reinterpret_cast<std::uintptr_t>(s) & 1) {
        for (; *s; ++s) {
            if (*s == c) return s;
        }
        return nullptr;
    }
    __m128i zero = _mm_setzero_si128(), wanted = _mm_set1_epi16(short(c));
    unsigned skip;
    char16_t const *block = BlockOf(s, skip);
    for (unsigned mask = skip;; mask = ~0u) {
        unsigned ends = Equal(block, zero) & mask, hits = Equal(block, wanted) & mask;
        if (ends | hits) {
            // A hit before the first terminator counts; the terminator ends it.
            if (hits && (!ends || FirstBit(hits) < FirstBit(ends))) return block + FirstBit(hits) / 2;
            return nullptr;
        }
        block += 8;
    }
}

QOR_SCAN inline char16_t const *ScanUnitBack(char16_t const *s, std::size_t n, char16_t c) noexcept {
    char16_t const *end = s + n;
    __m128i wanted = _mm_set1_epi16(short(c));
    // Whole unaligned blocks from the end; the few units at the front one by one.
    while (end - s >= 8) {
        end -= 8;
        __m128i units = _mm_loadu_si128(reinterpret_cast<__m128i const *>(end));
        unsigned hits = unsigned(_mm_movemask_epi8(_mm_cmpeq_epi16(units, wanted)));
        if (hits) return end + (31 - __builtin_clz(hits)) / 2;
    }
    while (end > s) {
        if (*--end == c) return end;
    }
    return nullptr;
}

// ScanPair from the 2-aligned `s` in aligned blocks: the pairs that straddle
// two blocks are found by carrying the last unit's result of one block into
// the next.
QOR_SCAN inline char16_t const *ScanPairAligned(char16_t const *s, __m128i a, __m128i b) noexcept {
    __m128i zero = _mm_setzero_si128();
    unsigned skip;
    char16_t const *block = BlockOf(s, skip);
    unsigned carried = 0;  // the bits of unit 0 when the last unit of the block before was `a`
    for (unsigned mask = skip;; mask = ~0u, block += 8) {
        unsigned firsts = Equal(block, a) & mask, ends = Equal(block, zero) & mask;
        unsigned seconds = Equal(block, b) & ((firsts << 2) | carried);  // each `b` right behind an `a`
        if (ends) seconds &= (1u << FirstBit(ends)) - 1;  // only before the terminator
        if (seconds) return block + FirstBit(seconds) / 2 - 1;
        if (ends) return nullptr;
        carried = (firsts >> 14) & 3;
    }
}

// Bits of the units at `p` (eight, unaligned) that are `a` followed by `b`,
// and in `ends` the bits of the terminators among them.
QOR_SCAN inline unsigned PairBits(char16_t const *p, __m128i a, __m128i b, unsigned &ends) noexcept {
    __m128i units = _mm_loadu_si128(reinterpret_cast<__m128i const *>(p));
    __m128i following = _mm_loadu_si128(reinterpret_cast<__m128i const *>(p + 1));
    ends = unsigned(_mm_movemask_epi8(_mm_cmpeq_epi16(units, _mm_setzero_si128())));
    return unsigned(_mm_movemask_epi8(_mm_and_si128(_mm_cmpeq_epi16(units, a), _mm_cmpeq_epi16(following, b))));
}

// The first place where `a` is followed by `b`, or null when the terminator
// comes first (neither may be 0). Two units are compared at once, so that a
// common first unit does not stop the scan at every turn. Sixteen units a
// round are loaded where `s` stands (a search that resumes right behind a
// match costs no setting up); the loads never cross a page, and near a
// page's end the scan goes on in aligned blocks.
QOR_SCAN inline char16_t const *ScanPair(char16_t const *s, char16_t a, char16_t b) noexcept {
    constexpr std::uintptr_t kPage = 4096;
    if (reinterpret_cast<std::uintptr_t>(s) & 1) {  // not even 2-aligned: no blocks of units
        for (; *s; ++s) {
            if (s[0] == a && s[1] == b) return s;
        }
        return nullptr;
    }
    __m128i first = _mm_set1_epi16(short(a)), second = _mm_set1_epi16(short(b));
    for (char16_t const *p = s;; p += 16) {
        if ((reinterpret_cast<std::uintptr_t>(p) & (kPage - 1)) > kPage - 34) return ScanPairAligned(p, first, second);
        for (int i = 0; i < 16; i += 8) {
            unsigned ends, hits = PairBits(p + i, first, second, ends);
            if (ends) hits &= (1u << FirstBit(ends)) - 1;  // only before the terminator
            if (hits) return p + i + FirstBit(hits) / 2;
            if (ends) return nullptr;
        }
    }
}

#else

inline std::size_t ScanLength(char16_t const *s) noexcept {
    std::size_t n = 0;
    while (s[n]) ++n;
    return n;
}

inline std::size_t ScanLength(char16_t const *s, std::size_t limit) noexcept {
    std::size_t n = 0;
    while (n < limit && s[n]) ++n;
    return n;
}

inline char16_t const *ScanUnit(char16_t const *s, char16_t c) noexcept {
    for (; *s; ++s) {
        if (*s == c) return s;
    }
    return nullptr;
}

inline char16_t const *ScanUnitBack(char16_t const *s, std::size_t n, char16_t c) noexcept {
    while (n > 0) {
        if (s[--n] == c) return s + n;
    }
    return nullptr;
}

inline char16_t const *ScanPair(char16_t const *s, char16_t a, char16_t b) noexcept {
    for (; s[0]; ++s) {
        if (s[0] == a && s[1] == b) return s;
    }
    return nullptr;
}

#endif

}  // namespace qor::tools::detail
