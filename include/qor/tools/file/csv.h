// file::csv: an in-memory table of text cells, loaded from and saved to a
// delimited text file in the process's 8-bit encoding (Load, Save) or in
// UTF-16LE with a byte-order mark (LoadUnicode, SaveUnicode).
//
// Reading splits cells at comma, tab and line feed whatever the delimiter,
// understands quotes (a cell that begins and ends with '"' before a delimiter
// loses them) and never spans lines; writing never quotes and ends every cell
// with the delimiter. Copies are shallow: they share the rows. Failures of the
// file layer throw exception("csv::LoadError <path>") and its three siblings.
//
//   file::csv table;
//   table.Add()[0] ...;          // or: auto &row = table.Add(); row.Size(2);
//   table.SaveUnicode(u"out.csv");
#pragma once

#include "qor/tools/export.h"

#include <string_view>
#include <vector>

#include "qor/tools/container/array.h"
#include "qor/tools/string.h"

namespace qor::tools::file {

class QOR_TOOLS_API csv {
public:
    // One line of the table: its cells.
    class row {
    public:
        // The cells' array.
        using cells = container::array<string, container::pif::array::object>;

        // An empty row; copies share the cells.
        row() = default;
        row(row const &) = default;
        row &operator=(row const &) = default;
        virtual ~row() = default;

        // The number of cells, a new number (new cells empty), a cell by
        // index (not checked), and the cells' array.
        int Size() const noexcept { return mCells.Size(); }
        void Size(int count) { mCells.Size(count); }
        string &operator[](int index) const noexcept { return mCells[index]; }
        cells &Data() noexcept { return mCells; }
        // The cell read as far as it is a number; an empty cell is 0.
        int I(int index) const;
        float F(int index) const;
        double D(int index) const;
        // Does nothing (a debugging hook).
        void Trace() const {}

    private:
        cells mCells;
    };

    // An empty table, or the one loaded (Load) from `path`; copies share rows.
    csv() = default;
    explicit csv(char16_t const *path);
    csv(csv const &) = default;
    csv &operator=(csv const &) = default;
    virtual ~csv() = default;

    // Reads or writes the table in the locale's 8-bit encoding (CR LF) or in
    // UTF-16LE with a byte-order mark (LF); a save without a path writes where
    // the table was last loaded or saved.
    // Failures throw the library's exception with the texts in docs/files.md.
    void Load(char16_t const *path);
    void Save(char16_t const *path = nullptr);
    void LoadUnicode(char16_t const *path);
    void SaveUnicode(char16_t const *path = nullptr);

    // The number of rows, and a new number (new rows empty).
    int Rows() const noexcept { return mRows.Size(); }
    void Rows(int count) { mRows.Size(count); }
    // Appends an empty row; the reference lasts until the table grows again.
    row &Add();
    // Sets the delimiter written between cells (reading ignores it).
    void Deleimter(char16_t c) noexcept { mDelimiter = c; }
    // A row by index (not checked), the last path used, and a debugging hook
    // that does nothing.
    row &operator[](int index) const noexcept { return mRows[index]; }
    string const &Path() const noexcept { return mPath; }
    void Trace() const {}

private:
    struct span {
        std::size_t mFrom;
        int mCount;
    };
    void _Clear();
    void _Fill(std::u16string_view text, std::vector<span> const &lines);
    template <typename Emit>
    void _Write(Emit &&emit) const;

    string mPath;
    container::array<row> mRows;
    char16_t mDelimiter = u',';
};

}  // namespace qor::tools::file
