// Fuzzes the EXIF block reader, in a JPEG and on its own; what it reads is
// written again, and the written block must read back to the same block.
#include <cstdint>
#include <string>

#include "platform/exif_block.h"

using namespace qor::tools::platform;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
    std::string_view app1 = exif::FindInJpeg(data, size);
    if (!app1.empty()) {
        data = reinterpret_cast<std::uint8_t const *>(app1.data());
        size = app1.size();
    }
    exif::block first;
    if (!first.Parse(data, size)) return 0;
    std::string built = first.Build();
    exif::block second;
    if (!second.Parse(reinterpret_cast<unsigned char const *>(built.data()), built.size())) __builtin_trap();
    if (second.Build() != built) __builtin_trap();
    return 0;
}
