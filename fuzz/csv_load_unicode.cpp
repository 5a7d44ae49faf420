// Fuzzes csv::LoadUnicode and a save of what it read.
#include <cstdint>
#include <stdexcept>

#include "fuzz_file.h"
#include "qor/tools/exception.h"
#include "qor/tools/file/csv.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
    std::u16string path = qor::tools::fuzzing::ScratchFile(data, size);
    try {
        qor::tools::file::csv table;
        table.LoadUnicode(path.c_str());
        for (int r = 0; r < table.Rows(); ++r) {
            for (int c = 0; c < table[r].Size(); ++c) (void)table[r].I(c);
        }
        table.Save(path.c_str());
    } catch (qor::tools::exception const &) {
    } catch (std::invalid_argument const &) {
    }
    return 0;
}
