// Little-endian reading of a block of bytes with bounds, and writing into a
// string: what the library's own BMP and icon codecs parse and build with;
// and a source of bytes for the read callbacks of the codec libraries.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>

namespace qor::tools::platform::codec {

struct bytes {
    unsigned char const *mData;
    std::size_t mSize;

    bool Has(std::size_t at, std::size_t n) const noexcept { return at <= mSize && n <= mSize - at; }
    unsigned U16(std::size_t at) const noexcept { return Has(at, 2) ? unsigned(mData[at] | mData[at + 1] << 8) : 0; }
    std::uint32_t U32(std::size_t at) const noexcept {
        if (!Has(at, 4)) return 0;
        return std::uint32_t(mData[at]) | std::uint32_t(mData[at + 1]) << 8 | std::uint32_t(mData[at + 2]) << 16 |
               std::uint32_t(mData[at + 3]) << 24;
    }
};

// Bytes handed out in order to a codec library's read callback.
struct source {
    unsigned char const *mData;
    std::size_t mSize;
    std::size_t mAt = 0;

    // Copies up to `n` bytes into `out`; the count copied.
    std::size_t Take(void *out, std::size_t n) {
        std::size_t count = std::min(n, mSize - mAt);
        std::memcpy(out, mData + mAt, count);
        mAt += count;
        return count;
    }
};

class writer {
public:
    explicit writer(std::string &out) : mOut(out) {}
    void U16(unsigned v) {
        mOut += char(v & 0xff);
        mOut += char((v >> 8) & 0xff);
    }
    void U32(std::uint32_t v) {
        U16(v & 0xffff);
        U16(v >> 16);
    }
    void Zeros(std::size_t n) { mOut.append(n, '\0'); }

private:
    std::string &mOut;
};

}  // namespace qor::tools::platform::codec
