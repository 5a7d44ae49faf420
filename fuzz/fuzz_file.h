// Writes the fuzzer's bytes to a scratch file, for loaders that take a path.
#pragma once

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <string>

namespace qor::tools::fuzzing {

inline std::u16string ScratchFile(std::uint8_t const *data, std::size_t size) {
    static std::string path = "/tmp/qorfuzz-" + std::to_string(::getpid());
    if (FILE *f = std::fopen(path.c_str(), "wb")) {
        std::fwrite(data, 1, size, f);
        std::fclose(f);
    }
    return std::u16string(path.begin(), path.end());
}

}  // namespace qor::tools::fuzzing
