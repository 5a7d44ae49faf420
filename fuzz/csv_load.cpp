// Fuzzes csv::Load (8-bit text in a UTF-8 locale) and a save of what it read.
#include <clocale>
#include <cstdint>

#include "fuzz_file.h"
#include "qor/tools/exception.h"
#include "qor/tools/file/csv.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
    static bool once = std::setlocale(LC_ALL, "C.UTF-8") != nullptr;
    (void)once;
    std::u16string path = qor::tools::fuzzing::ScratchFile(data, size);
    try {
        qor::tools::file::csv table;
        table.Load(path.c_str());
        for (int r = 0; r < table.Rows(); ++r) {
            for (int c = 0; c < table[r].Size(); ++c) (void)table[r].D(c);
        }
        table.SaveUnicode(path.c_str());
    } catch (qor::tools::exception const &) {
    }
    return 0;
}
