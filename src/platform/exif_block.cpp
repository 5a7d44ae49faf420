#include "exif_block.h"

#include <cstring>
#include <set>
#include <vector>

namespace qor::tools::platform::exif {

namespace {

constexpr char kHeader[] = {'E', 'x', 'i', 'f', 0, 0};
constexpr std::uint16_t kThumbnailOffset = 513, kThumbnailLength = 514;
constexpr std::size_t kMaxEntries = 1000;  // more than any real directory holds

// The TIFF structure of a block being read, in its own byte order.
class reader {
public:
    reader(unsigned char const *data, std::size_t size) : mData(data), mSize(size) {}

    bool Start() {
        if (mSize < 8) return false;
        if (mData[0] == 'I' && mData[1] == 'I') mBig = false;
        else if (mData[0] == 'M' && mData[1] == 'M') mBig = true;
        else return false;
        return U16(2) == 42;
    }
    bool Has(std::size_t at, std::size_t n) const { return at <= mSize && n <= mSize - at; }
    std::uint16_t U16(std::size_t at) const {
        if (!Has(at, 2)) return 0;
        return mBig ? std::uint16_t(mData[at] << 8 | mData[at + 1]) : std::uint16_t(mData[at] | mData[at + 1] << 8);
    }
    std::uint32_t U32(std::size_t at) const {
        if (!Has(at, 4)) return 0;
        std::uint32_t a = U16(at), b = U16(at + 2);
        return mBig ? a << 16 | b : b << 16 | a;
    }
    // `n` elements of `size` bytes at `at`, each turned little-endian.
    std::string Elements(std::size_t at, std::uint16_t type, std::uint32_t n) const {
        std::size_t size = ElementSize(type);
        std::string out(reinterpret_cast<char const *>(mData + at), size * n);
        if (!mBig || size == 1) return out;
        std::size_t part = type == kRational || type == kSRational ? 4 : size;  // a rational is two longs
        for (std::size_t i = 0; i + part <= out.size(); i += part) {
            for (std::size_t k = 0; k < part / 2; ++k) std::swap(out[i + k], out[i + part - 1 - k]);
        }
        return out;
    }
    unsigned char const *Data() const { return mData; }

private:
    unsigned char const *mData;
    std::size_t mSize;
    bool mBig = false;
};

// Appends little-endian numbers to a string.
void Put16(std::string &out, std::uint32_t v) {
    out += char(v & 0xff);
    out += char((v >> 8) & 0xff);
}
void Put32(std::string &out, std::uint32_t v) {
    Put16(out, v & 0xffff);
    Put16(out, v >> 16);
}
void Patch32(std::string &out, std::size_t at, std::uint32_t v) {
    for (int i = 0; i < 4; ++i) out[at + std::size_t(i)] = char((v >> (8 * i)) & 0xff);
}

// The first element of a SHORT or LONG field as a number; 0 for any other.
std::uint32_t Whole(field const &f) {
    if (f.mCount < 1) return 0;
    auto byte = [&](std::size_t i) { return std::uint32_t(static_cast<unsigned char>(f.mData[i])); };
    if (f.mType == kShort) return byte(0) | byte(1) << 8;
    if (f.mType == kLong || f.mType == kSLong) return byte(0) | byte(1) << 8 | byte(2) << 16 | byte(3) << 24;
    return 0;
}

}  // namespace

std::size_t ElementSize(std::uint16_t t) {
    switch (t) {
        case kByte: case kAscii: case kSByte: case kUndefined: return 1;
        case kShort: case kSShort: return 2;
        case kLong: case kSLong: case kFloat: return 4;
        case kRational: case kSRational: case kDouble: return 8;
        default: return 0;
    }
}

bool block::Parse(unsigned char const *data, std::size_t size) {
    mIfds.clear();
    mThumbnail.clear();
    if (!data || size < sizeof kHeader + 8 || std::memcmp(data, kHeader, sizeof kHeader) != 0) return false;
    reader tiff(data + sizeof kHeader, size - sizeof kHeader);
    if (!tiff.Start()) return false;
    std::set<std::uint32_t> seen;  // a directory met twice is a loop
    auto read = [&](std::uint16_t id, std::uint32_t at) -> std::uint32_t {
        if (at < 8 || !seen.insert(at).second || !tiff.Has(at, 2)) return 0;
        std::size_t entries = tiff.U16(at);
        if (entries > kMaxEntries || !tiff.Has(at + 2, entries * 12 + 4)) return 0;
        directory &d = mIfds[id];
        for (std::size_t i = 0; i < entries; ++i) {
            std::size_t e = at + 2 + i * 12;
            std::uint16_t tag = tiff.U16(e), type = tiff.U16(e + 2);
            std::uint32_t count = tiff.U32(e + 4);
            std::size_t element = ElementSize(type);
            if (!element || count > (1u << 30) / element) continue;
            std::size_t bytes = element * count;
            std::size_t where = bytes <= 4 ? e + 8 : tiff.U32(e + 8);
            if (!tiff.Has(where, bytes)) continue;
            d[tag] = field{type, count, tiff.Elements(where, type, count)};
        }
        return tiff.U32(at + 2 + entries * 12);
    };
    std::uint32_t next = read(kIfd0, tiff.U32(4));
    if (field const *f = Find(kIfd0, kExifIfd)) read(kExifIfd, Whole(*f));
    if (next) read(kIfd1, next);
    // Pointers mean nothing once the block is rebuilt: the writer makes its own.
    Remove(kIfd0, kExifIfd);
    Remove(kIfd0, 34853);  // GPS, not kept
    Remove(kExifIfd, 40965);  // interoperability, not kept
    field const *offset = Find(kIfd1, kThumbnailOffset), *length = Find(kIfd1, kThumbnailLength);
    if (offset && length) {
        std::uint32_t at = Whole(*offset), n = Whole(*length);
        if (tiff.Has(at, n)) mThumbnail.assign(reinterpret_cast<char const *>(tiff.Data() + at), n);
    }
    Remove(kIfd1, kThumbnailOffset);
    return true;
}

field const *block::Find(std::uint16_t ifd, std::uint16_t tag) const {
    auto d = mIfds.find(ifd);
    if (d == mIfds.end()) return nullptr;
    auto f = d->second.find(tag);
    return f == d->second.end() ? nullptr : &f->second;
}

void block::Set(std::uint16_t ifd, std::uint16_t tag, std::uint16_t type, std::uint32_t count, std::string data) {
    mIfds[ifd][tag] = field{type, count, std::move(data)};
}

bool block::Remove(std::uint16_t ifd, std::uint16_t tag) {
    auto d = mIfds.find(ifd);
    return d != mIfds.end() && d->second.erase(tag) > 0;
}

std::vector<std::uint16_t> block::Tags(std::uint16_t ifd) const {
    std::vector<std::uint16_t> tags;
    auto d = mIfds.find(ifd);
    if (d == mIfds.end()) return tags;
    for (auto const &entry : d->second) tags.push_back(entry.first);
    return tags;
}

std::string block::Build() const {
    std::string out(kHeader, sizeof kHeader);
    std::size_t base = out.size();  // offsets count from the TIFF header
    out += "II";
    Put16(out, 42);
    Put32(out, 8);
    directory none;
    auto of = [&](std::uint16_t id) -> directory const & {
        auto d = mIfds.find(id);
        return d == mIfds.end() ? none : d->second;
    };
    directory ifd0 = of(kIfd0), sub = of(kExifIfd), ifd1 = of(kIfd1);
    bool hasSub = !sub.empty(), hasIfd1 = !ifd1.empty() || !mThumbnail.empty();
    if (hasSub) ifd0[kExifIfd] = field{kLong, 1, std::string(4, '\0')};
    if (hasIfd1) {
        ifd1[kThumbnailOffset] = field{kLong, 1, std::string(4, '\0')};
        std::string n;
        Put32(n, std::uint32_t(mThumbnail.size()));
        if (!ifd1.count(kThumbnailLength)) ifd1[kThumbnailLength] = field{kLong, 1, n};
    }
    // Writes a directory and its long values; answers where the "next" link and
    // each field's value slot are, to be filled in once known.
    auto write = [&](directory const &d, std::map<std::uint16_t, std::size_t> &slots) {
        Put16(out, std::uint32_t(d.size()));
        std::vector<std::pair<std::size_t, field const *>> later;
        for (auto const &[tag, f] : d) {
            Put16(out, tag);
            Put16(out, f.mType);
            Put32(out, f.mCount);
            slots[tag] = out.size();
            std::string inline4 = f.mData.size() <= 4 ? f.mData : std::string();
            inline4.resize(4, '\0');
            out += inline4;
            if (f.mData.size() > 4) later.emplace_back(out.size() - 4, &f);
        }
        std::size_t next = out.size();
        Put32(out, 0);
        for (auto const &[slot, f] : later) {
            if ((out.size() - base) % 2) out += '\0';  // values start at even offsets
            Patch32(out, slot, std::uint32_t(out.size() - base));
            out += f->mData;
        }
        if ((out.size() - base) % 2) out += '\0';
        return next;
    };
    std::map<std::uint16_t, std::size_t> slots0, slotsSub, slots1;
    std::size_t next0 = write(ifd0, slots0);
    if (hasSub) {
        Patch32(out, slots0[kExifIfd], std::uint32_t(out.size() - base));
        write(sub, slotsSub);
    }
    if (hasIfd1) {
        Patch32(out, next0, std::uint32_t(out.size() - base));
        write(ifd1, slots1);
        Patch32(out, slots1[kThumbnailOffset], std::uint32_t(out.size() - base));
        out += mThumbnail;
    }
    return out;
}

}  // namespace qor::tools::platform::exif

namespace qor::tools::platform::exif {

std::string_view FindInJpeg(unsigned char const *data, std::size_t size) {
    if (!data || size < 4 || data[0] != 0xff || data[1] != 0xd8) return {};
    std::size_t at = 2;
    // Markers up to the start of scan; each but the standalone ones carries its length.
    while (at + 4 <= size && data[at] == 0xff) {
        unsigned marker = data[at + 1];
        if (marker == 0xff) {  // fill byte
            ++at;
            continue;
        }
        if (marker == 0xda || marker == 0xd9) break;
        std::size_t length = std::size_t(data[at + 2]) << 8 | data[at + 3];
        if (length < 2 || at + 2 + length > size) break;
        char const *payload = reinterpret_cast<char const *>(data + at + 4);
        if (marker == 0xe1 && length - 2 >= sizeof kHeader && std::memcmp(payload, kHeader, sizeof kHeader) == 0) {
            return {payload, length - 2};
        }
        at += 2 + length;
    }
    return {};
}

}  // namespace qor::tools::platform::exif
