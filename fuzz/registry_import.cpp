// Fuzzes the registry tool's text form: an import of arbitrary lines into a
// scratch store, then an export of what went in, parsed again value by value.
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

#include "text_form.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
    static bool once = [] {
        char pattern[] = "/tmp/qor-fuzz-registry-XXXXXX";
        return ::setenv("QORTOOLS_REGISTRY_DIR", ::mkdtemp(pattern), 1) == 0;
    }();
    (void)once;
    std::istringstream in(std::string(reinterpret_cast<char const *>(data), size));
    std::ostringstream errors, out;
    qortools_registry::Import(in, errors);
    qortools_registry::Export(qor::tools::HKEY_CURRENT_USER, "", out);
    std::istringstream back(out.str());
    std::string line;
    while (std::getline(back, line)) {
        std::size_t pos = 0;
        std::string name, bytes;
        qor::tools::DWORD type = 0;
        if (qortools_registry::Unquote(line, pos, name) && pos < line.size() && line[pos] == '=' &&
            !qortools_registry::ParseValue(line.substr(pos + 1), type, bytes)) {
            std::abort();  // an exported value must read back
        }
    }
    return 0;
}
