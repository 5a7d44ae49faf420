// A temporary folder for one test, removed with everything in it.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "qor/tools/string_converter.h"

namespace qor::tools::testing {

class temp_dir {
public:
    temp_dir() {
        char pattern[] = "/tmp/qortest-XXXXXX";
        mPath = ::mkdtemp(pattern);
    }
    ~temp_dir() {
        std::error_code ignored;
        std::filesystem::remove_all(mPath, ignored);
    }
    std::string Path(std::string const &name = "") const { return name.empty() ? mPath : mPath + "/" + name; }
    // The path as UTF-16, for the library's interfaces.
    std::u16string Wide(std::string const &name = "") const {
        string::converter text;
        return string::Safe(text.Utf8(Path(name).c_str()));
    }
    void Write(std::string const &name, std::string const &bytes) const {
        std::ofstream(Path(name), std::ios::binary) << bytes;
    }
    std::string Read(std::string const &name) const {
        std::ifstream in(Path(name), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }

private:
    std::string mPath;
};

}  // namespace qor::tools::testing
