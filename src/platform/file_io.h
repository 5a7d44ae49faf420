// Reads and writes of whole files for the library's file formats.
//
// A file that replaces another (a saved document, an encrypted file, a copy)
// is written by replacement_file: into a temporary file beside the target,
// renamed over it only when everything was written, so that a full disk or a
// failed write never leaves a truncated file in place of a good one.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <memory>
#include <string>

#include "path.h"

namespace qor::tools::platform {

// The size of a regular file, or -1 when it does not exist, is not a regular
// file or cannot be examined.
std::int64_t FileSize(char16_t const *path);

// Reads `count` bytes from `offset` (or to the end for a negative count). False
// when the file cannot be opened or a read fails part way; a file that shrinks
// while it is read gives what it held.
bool ReadFile(char16_t const *path, std::string &out, std::int64_t offset = 0, std::int64_t count = -1);

// The bytes of a file from `offset` to its end in a block of their own, not
// zero-filled first, followed by `pad` zero bytes (room for a terminator).
// False when the file cannot be opened or a read fails part way.
bool ReadWhole(char16_t const *path, std::unique_ptr<char[]> &data, std::size_t &size, std::int64_t offset = 0,
               std::size_t pad = 0);

// A regular file opened for reading, closed by the destructor.
class input_file {
public:
    input_file() = default;
    input_file(input_file const &) = delete;
    input_file &operator=(input_file const &) = delete;
    ~input_file();

    bool Open(char16_t const *path);
    std::int64_t Size() const noexcept { return mSize; }
    // Reads up to `size` bytes at `offset`; the count read (short only at the
    // end of the file), or -1 when the read fails.
    std::int64_t Read(void *data, std::size_t size, std::int64_t offset);
    void Close();

private:
    int mFd = -1;
    std::int64_t mSize = 0;
};

// A file opened for writing in place (created or truncated).
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
    friend class replacement_file;
    int mFd = -1;
};

// A file written whole and then put in place of the target by a rename. The
// new file keeps the old one's permission bits and, where the process may,
// its owner and group; a symbolic link is written through to the file it
// names. A target that is read-only is not replaced (Open fails). When the
// target's folder cannot take a temporary file the target is written in
// place. Nothing changes at the target until Commit; a replacement that is
// never committed is removed by the destructor.
class replacement_file {
public:
    replacement_file() = default;
    replacement_file(replacement_file const &) = delete;
    replacement_file &operator=(replacement_file const &) = delete;
    ~replacement_file();

    bool Open(char16_t const *path);
    bool Write(void const *data, std::size_t size) { return mOut.Write(data, size); }
    // Gives the new file these permission bits instead of the old file's.
    void Mode(mode_t mode) noexcept {
        mMode = mode & 07777;
        mHasMode = true;
    }
    // Gives the new file these access and modification times (nanoseconds
    // since 1970), as a copy keeps its source's.
    void Times(std::int64_t access, std::int64_t modification) noexcept;
    int Descriptor() const noexcept { return mOut.mFd; }
    bool Commit();

private:
    void _Discard();

    output_file mOut;
    std::string mTarget;
    std::string mTemporary;  // empty when writing in place
    mode_t mMode = 0;
    bool mHasMode = false;
    bool mHasTimes = false;
    std::int64_t mAccess = 0, mModification = 0;
};

}  // namespace qor::tools::platform
