#include "qor/tools/file/csv.h"

#include <stdexcept>
#include <cstring>
#include <string>
#include <vector>

#include "platform/file_io.h"
#include "platform/text_codec.h"
#include "qor/tools/exception.h"
#include "qor/tools/string_converter.h"
#include "text_scan.h"
#include "tokenize.h"

namespace qor::tools::file {

namespace {

constexpr char16_t kCellDelimiters[] = u",\t\n";
constexpr std::size_t kChunk = 1 << 16;

// The first `c` of `text` at or after `from`, or npos. The text must be
// followed by a NUL in memory: the scan runs eight units at a time up to it.
std::size_t FindUnit(std::u16string_view text, char16_t c, std::size_t from) {
    if (from >= text.size()) return std::u16string_view::npos;
    char16_t const *p = detail::ScanUnit(text.data() + from, c);
    if (!p || p >= text.data() + text.size()) return std::u16string_view::npos;
    return std::size_t(p - text.data());
}

}  // namespace

int csv::row::I(int index) const { return string::converter::Int(mCells[index], 10); }
float csv::row::F(int index) const { return string::converter::Float(mCells[index]); }
double csv::row::D(int index) const { return string::converter::Real(mCells[index]); }

csv::csv(char16_t const *path) { Load(path); }

csv::row &csv::Add() {
    mRows.Size(mRows.Size() + 1);
    return mRows.Last();
}

void csv::_Clear() { mRows.Release(); }

void csv::_Fill(std::u16string_view text, std::vector<span> const &lines) {
    mRows.Size(int(lines.size()));
    for (std::size_t i = 0; i < lines.size(); ++i) {
        detail::TokenizeInto(mRows[int(i)].Data(), text.data() + lines[i].mFrom, lines[i].mCount, kCellDelimiters);
    }
}

void csv::Load(char16_t const *path) {
    mPath = path;
    _Clear();
    std::string bytes;
    if (!platform::ReadFile(path, bytes)) throw exception(u"csv::LoadError <%s>", path);
    std::u16string text;
    platform::DecodeLocale(bytes.data(), bytes.size(), text);
    bytes = std::string();
    // Lines end at LF; a CR right before it belongs to the line end.
    std::vector<span> lines;
    for (std::size_t at = 0; at < text.size();) {
        std::size_t end = text.find(u'\n', at);
        std::size_t next = end == std::u16string::npos ? text.size() : end + 1;
        if (end == std::u16string::npos) {
            end = text.size();
        } else if (end > at && text[end - 1] == u'\r') {
            --end;
        }
        lines.push_back({at, int(end - at)});
        at = next;
    }
    _Fill(text, lines);
}

void csv::LoadUnicode(char16_t const *path) {
    mPath = path;
    _Clear();
    std::int64_t size = platform::FileSize(path);
    if (size < 0) size = 0;
    if (size == 2) return;
    // The file's units are read straight into their block, which then serves
    // as the text (up to its first NUL) that the cells are cut from.
    std::unique_ptr<char[]> bytes;
    std::size_t read = 0;
    if (!platform::ReadWhole(path, bytes, read, 2, 2 * sizeof(char16_t))) throw exception(u"csv::LoadUnicodeError");
    if (size < 2) throw std::invalid_argument("csv::LoadUnicode: a text buffer of negative length");
    auto const *units = reinterpret_cast<char16_t const *>(bytes.get());
    std::u16string_view text(units, detail::ScanLength(units, read / 2));

    // A line ends at a CR, behind which one unit (the LF) is skipped; when no
    // CR follows at all it ends at an LF, and then starts one unit early.
    long long length = (long long)text.size(), s = 0;
    std::vector<span> lines;
    lines.reserve(std::size_t(length / 32));
    std::size_t nextCr = FindUnit(text, u'\r', 0);  // kept, so that LF files are read in linear time
    while (s < length) {
        if (nextCr != text.npos && nextCr < std::size_t(s)) nextCr = FindUnit(text, u'\r', std::size_t(s));
        std::size_t found = nextCr;
        if (found == text.npos) {
            found = FindUnit(text, u'\n', std::size_t(s));
            if (found == text.npos) break;
            --s;
        }
        long long p = (long long)found;
        long long from = s < 0 ? 0 : s;
        long long count = p - s;
        if (from + count > length) count = length - from;
        lines.push_back({std::size_t(from), int(count)});
        s = p + 2;
    }
    _Fill(text, lines);
}

template <typename Emit>
void csv::_Write(Emit &&emit) const {
    std::u16string chunk;
    for (int r = 0; r < mRows.Size(); ++r) {
        row const &line = mRows[r];
        for (int c = 0; c < line.Size(); ++c) {
            chunk += line[c].View();
            chunk += mDelimiter;
        }
        chunk += u'\n';
        if (chunk.size() >= kChunk) {
            emit(chunk);
            chunk.clear();
        }
    }
    if (!chunk.empty()) emit(chunk);
}

void csv::Save(char16_t const *path) {
    if (path) mPath = path;
    platform::output_file out;
    if (!out.Open(mPath)) throw exception(u"csv::SaveError <%s>", mPath.Safe());
    std::string bytes;
    _Write([&](std::u16string const &chunk) {
        bytes.clear();
        std::size_t start = 0;
        for (std::size_t lf = chunk.find(u'\n'); start < chunk.size(); lf = chunk.find(u'\n', start)) {
            std::size_t end = lf == std::u16string::npos ? chunk.size() : lf;
            if (!platform::Utf16ToLocale(chunk.data() + start, end - start, bytes)) {
                throw exception(u"csv::SaveError <%s>", mPath.Safe());  // a character the encoding lacks
            }
            if (lf == std::u16string::npos) break;
            bytes += "\r\n";
            start = lf + 1;
        }
        if (!out.Write(bytes.data(), bytes.size())) throw exception(u"csv::SaveError <%s>", mPath.Safe());
    });
    if (!out.Close()) throw exception(u"csv::SaveError <%s>", mPath.Safe());
}

void csv::SaveUnicode(char16_t const *path) {
    if (path) mPath = path;
    platform::output_file out;
    static unsigned char const bom[2] = {0xFF, 0xFE};
    if (!out.Open(mPath) || !out.Write(bom, 2)) throw exception(u"csv::SaveUnicode <%s>", mPath.Safe());
    _Write([&](std::u16string const &chunk) {
        if (!out.Write(chunk.data(), chunk.size() * sizeof(char16_t))) {
            throw exception(u"csv::SaveUnicode <%s>", mPath.Safe());
        }
    });
    if (!out.Close()) throw exception(u"csv::SaveUnicode <%s>", mPath.Safe());
}

}  // namespace qor::tools::file
