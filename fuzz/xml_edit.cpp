// Drives file::xml through random sequences of cursor moves and edits, on a
// fuzzed document and on copies that share it. After each sequence, what Save
// wrote must load again, and from then on a load and a save must give the same
// text again (the first load may drop what the DOM drops on loading: text that
// is only white space, an empty text node): nothing the class accepts may make
// a file it cannot read back.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include "fuzz_file.h"
#include "qor/tools/exception.h"
#include "qor/tools/file/xml.h"

namespace {

using qor::tools::string;
using qor::tools::file::xml;

char16_t const *const kQueries[] = {u"/",          u"/*",         u"/*/*",     u"//*",        u"//@*",
                                    u"//text()",   u"//comment()", u"//node()", u"/*/@*",      u"//*[2]",
                                    u"namespace::*", u"//namespace::*", u"/*/*[last()]", u"//processing-instruction()",
                                    u"/root",      u"/root/a",    u"(",        u"//*/..",     u"/*/node()"};

char16_t const *const kNames[] = {u"a", u"b", u"root", u"x:y", u"xml:lang", u"xmlns", u"xmlns:p", u"bad name",
                                  u"", u"1st", u"日本", u"p:q", u"VERSION", u"a.b-c"};

char16_t const *const kTexts[] = {u"",        u"text",       u"a\r\nb",   u"tab\there", u"[   ][___]",
                                  u"a--b",    u"end-",       u"?>",       u"]]>",       u"<&>\"'",
                                  u"\x01",    u"\xFFFF",     u"\xD800",   u"  spaced  ", u"\r",
                                  u"日本語",  u"&amp;",      u"\n\n"};

template <typename T, std::size_t N>
T Pick(FuzzedDataProvider &in, T const (&table)[N]) {
    return table[in.ConsumeIntegralInRange<std::size_t>(0, N - 1)];
}

void Step(FuzzedDataProvider &in, xml &doc, xml &other) {
    string text;
    int number = 0;
    switch (in.ConsumeIntegralInRange<int>(0, 19)) {
        case 0: doc.SelectNode(Pick(in, kQueries)); break;
        case 1: doc.MoveParentNode(); break;
        case 2: doc.MoveFirstChild(); break;
        case 3: doc.MoveLastChild(); break;
        case 4: doc.MovePreviousSibling(); break;
        case 5: doc.MoveNextSibling(); break;
        case 6: doc.BackupCurrentNode(); break;
        case 7: doc.RestoreCurrentNode(); break;
        case 8: doc.GetCurrentNodeElementName(text); break;
        case 9: doc.GetCurrentNodeText(text); break;
        case 10: doc.GetCurrentNodeAttrValue(Pick(in, kNames), number); break;
        case 11: doc.SetCurrentNodeText(Pick(in, kTexts)); break;
        case 12: doc.SetCurrentNodeAttrValue(Pick(in, kNames), Pick(in, kTexts)); break;
        case 13:
            try {
                doc.CreateElementCurrent(Pick(in, kNames), Pick(in, kTexts), in.ConsumeBool());
            } catch (qor::tools::exception const &) {
            }
            break;
        case 14:
            try {
                doc.RemoveCurrentElement();
            } catch (qor::tools::exception const &) {
            }
            break;
        case 15: other = doc; break;
        case 16: doc.String(Pick(in, kQueries), Pick(in, kTexts)); break;
        case 17: doc.CheckVersion(Pick(in, kQueries), u"1"); break;
        case 18: std::swap(doc, other); break;
        default: doc.Int(Pick(in, kQueries)); break;
    }
}

std::string Read(std::string const &path) {
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
    FuzzedDataProvider in(data, size);
    std::string document = in.ConsumeRandomLengthString(4096);
    std::u16string source = qor::tools::fuzzing::ScratchFile(reinterpret_cast<std::uint8_t const *>(document.data()),
                                                             document.size());
    xml doc;
    if (!doc.Load(source.c_str())) {
        doc.Initialize();
        doc.SelectNode(u"/");
        doc.CreateElementCurrent(u"root", u"start", true);
    }
    xml other = doc;
    for (int steps = 0; steps < 64 && in.remaining_bytes() > 0; ++steps) Step(in, doc, other);

    doc.Update();
    std::string text;
    for (int round = 0; round < 3; ++round) {
        std::u16string path = source + u"." + char16_t(u'0' + round);
        std::string bytes(path.begin(), path.end());
        std::remove(bytes.c_str());
        if (!doc.Save(path.c_str())) {
            if (round == 0) return 0;  // a document without a root element is not saved
            std::fprintf(stderr, "a loaded document does not save\n");
            std::abort();
        }
        std::string saved = Read(bytes);
        if (round == 2 && saved != text) {
            std::fprintf(stderr, "a second round differs:\n%s\n----\n%s\n", text.c_str(), saved.c_str());
            std::abort();
        }
        text = saved;
        if (!doc.Load(path.c_str())) {
            std::fprintf(stderr, "saved file does not load:\n%s\n", saved.c_str());
            std::abort();
        }
        doc.Update();
    }
    return 0;
}
