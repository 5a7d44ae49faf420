// Running the independent programs tests compare with (exiftool, exiv2).
#pragma once

#include <cstdio>
#include <string>

namespace qor::tools::testing {

// What a command prints on its standard output.
inline std::string Output(std::string const &command) {
    std::string out;
    if (FILE *p = ::popen((command + " 2>/dev/null").c_str(), "r")) {
        char buffer[4096];
        for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, p)) > 0;) out.append(buffer, n);
        ::pclose(p);
    }
    return out;
}

inline bool Have(char const *tool) { return !Output(std::string("command -v ") + tool).empty(); }

}  // namespace qor::tools::testing
