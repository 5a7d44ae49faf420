// The EXIF block of a JPEG's APP1 segment ("Exif\0\0" and a TIFF structure),
// as the library reads and writes it: IFD0, the EXIF sub-IFD reached from it
// (tag 34665), and IFD1 with its JPEG thumbnail. Values are kept as TIFF
// fields (type, count, bytes in little-endian order, whatever the order of
// the file they came from); the metadata reader and writer of the imaging
// layer map query paths and value types onto them.
//
//   exif::block b;
//   b.Parse(app1, size);                        // false: not an EXIF block
//   exif::field const *make = b.Find(exif::kIfd0, 271);
//   b.Set(exif::kIfd0, 271, exif::kAscii, 6, "Maker");
//   std::string payload = b.Build();          // for codec::options::mApp1
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace qor::tools::platform::exif {

// The directories a field may stand in, named by the tag that leads to them.
inline constexpr std::uint16_t kIfd0 = 0;
inline constexpr std::uint16_t kIfd1 = 1;
inline constexpr std::uint16_t kExifIfd = 34665;

// TIFF field types.
enum type : std::uint16_t {
    kByte = 1, kAscii = 2, kShort = 3, kLong = 4, kRational = 5, kSByte = 6, kUndefined = 7,
    kSShort = 8, kSLong = 9, kSRational = 10, kFloat = 11, kDouble = 12
};

// Bytes of one element of `t`, 0 for a type this block does not know.
std::size_t ElementSize(std::uint16_t t);

struct field {
    std::uint16_t mType = kUndefined;
    std::uint32_t mCount = 0;
    std::string mData;  // mCount elements, little-endian
};

class block {
public:
    // Reads an APP1 payload; false (and an empty block) when it is not EXIF
    // or its structure cannot be followed. Fields of unknown types, and
    // directories other than the three above, are left out.
    bool Parse(unsigned char const *data, std::size_t size);
    // The APP1 payload: "Exif\0\0", a little-endian TIFF header, IFD0, the
    // EXIF sub-IFD when it has fields, and IFD1 with the thumbnail when IFD1
    // has fields or there is a thumbnail.
    std::string Build() const;

    field const *Find(std::uint16_t ifd, std::uint16_t tag) const;
    void Set(std::uint16_t ifd, std::uint16_t tag, std::uint16_t type, std::uint32_t count, std::string data);
    bool Remove(std::uint16_t ifd, std::uint16_t tag);
    // The tags of a directory in ascending order (empty for one without fields).
    std::vector<std::uint16_t> Tags(std::uint16_t ifd) const;
    std::string const &Thumbnail() const noexcept { return mThumbnail; }
    void Thumbnail(std::string jpeg) { mThumbnail = std::move(jpeg); }
    bool IsEmpty() const noexcept { return mIfds.empty() && mThumbnail.empty(); }

private:
    using directory = std::map<std::uint16_t, field>;  // sorted by tag, as TIFF wants
    std::map<std::uint16_t, directory> mIfds;
    std::string mThumbnail;
};

// The payload of a JPEG's EXIF APP1 segment (from "Exif\0\0" on), or an
// empty view when the JPEG has none before its image data.
std::string_view FindInJpeg(unsigned char const *data, std::size_t size);

}  // namespace qor::tools::platform::exif
