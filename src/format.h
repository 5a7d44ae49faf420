// The library's printf engine for UTF-16 text, with the meaning the Windows
// wide printf gives the conversions: %s and %ls take a char16_t string, %hs and
// %S an 8-bit string (in the current locale), %c a char16_t, %hc and %C an
// 8-bit character; d i u x X o f F e E g G a A p n %; the sizes h hh l ll L I
// I32 I64 j z t w; the flags - + space # 0; widths, precisions and *.
// Used by string::Format, exception and everything that builds messages or SQL.
#pragma once

#include <cstdarg>
#include <cstddef>

namespace qor::tools::detail {

// A growing UTF-16 buffer with room for short texts inside the object.
class format_buffer {
public:
    format_buffer() noexcept : mData(mInline) { mInline[0] = 0; }
    format_buffer(format_buffer const &) = delete;
    format_buffer &operator=(format_buffer const &) = delete;
    ~format_buffer();

    void Put(char16_t const *s, std::size_t n);
    void Fill(char16_t c, std::size_t n);
    char16_t const *Data() const noexcept { return mData; }
    std::size_t Size() const noexcept { return mSize; }

private:
    void Reserve(std::size_t extra);

    char16_t *mData;
    std::size_t mSize = 0;
    std::size_t mCapacity = kInline - 1;
    static constexpr std::size_t kInline = 256;
    char16_t mInline[kInline];
};

// Formats into `out` (which stays terminated) and returns the number of units
// written, or -1 for a null format.
int FormatV(format_buffer &out, char16_t const *format, va_list args);

}  // namespace qor::tools::detail
