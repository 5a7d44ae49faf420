// Whole-file reads and plain writes for the file formats of the library.
// Paths are UTF-16 and reach the file system as UTF-8, the file-name encoding
// of Linux desktops; a backslash separates folders as a slash does, and the
// drive prefix "C:" stands for the root of the file system.
#pragma once

#include <cstdint>
#include <string>

namespace qor::tools::platform {

std::string PathBytes(char16_t const *path);

// The size of a regular file, or -1 when it does not exist, is not a regular
// file or cannot be examined.
std::int64_t FileSize(char16_t const *path);

// Reads `count` bytes from `offset` (or to the end for a negative count). False
// when the file cannot be opened or read.
bool ReadFile(char16_t const *path, std::string &out, std::int64_t offset = 0, std::int64_t count = -1);

// A file opened for writing (created or truncated), closed by the destructor.
class output_file {
public:
    output_file() = default;
    output_file(output_file const &) = delete;
    output_file &operator=(output_file const &) = delete;
    ~output_file();

    bool Open(char16_t const *path);
    bool Write(void const *data, std::size_t size);
    bool Close();

private:
    int mFd = -1;
};

}  // namespace qor::tools::platform
