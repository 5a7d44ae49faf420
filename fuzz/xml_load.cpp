// Fuzzes xml::Load and the cursor over whatever it parsed, and a save.
#include <cstdint>

#include "fuzz_file.h"
#include "qor/tools/exception.h"
#include "qor/tools/file/xml.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
    std::u16string path = qor::tools::fuzzing::ScratchFile(data, size);
    qor::tools::file::xml doc;
    if (!doc.Load(path.c_str())) return 0;
    qor::tools::string text;
    if (doc.SelectNode(u"/*")) {
        doc.GetCurrentNodeText(text);
        if (doc.MoveFirstChild()) doc.GetCurrentNodeElementName(text);
        doc.SetCurrentNodeAttrValue(u"a", u"b\r\n");
    }
    doc.Int(u"//*[1]");
    doc.Save((path + u".out").c_str());
    return 0;
}
