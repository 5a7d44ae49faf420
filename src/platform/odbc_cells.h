// Values of the provider layer: how a result column reads (its OLE DB type),
// one value on its own (a parameter, a key), and the values of a whole result
// kept column by column: numbers in arrays, all texts of the result in one
// pool and all bytes in another, so that a result of any size costs a few
// allocations, never one a cell. A value is converted once, when it is read
// from the driver, and copied into a row's layout from here.
#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "qor/tools/platform/oledb.h"

namespace qor::tools::platform::odbc {

// How a value is held and converted.
enum class reading { whole, real, text, bytes, stamp };
reading ReadingOf(DBTYPE type);

// The OLE DB type a result column reads as, from its ODBC type. 64-bit
// integers (count(*), sum, bigint) read as DBTYPE_NUMERIC, the text form that
// a row slot holds for numbers without a slot of their own.
DBTYPE TypeOf(short sqlType);

// Long text columns are cut to this many units in a row slot.
inline constexpr std::size_t kMaxText = 4000;

struct timestamp {
    DBTIMESTAMP mValue;
};
// One value on its own.
using cell = std::variant<std::monostate, std::int64_t, double, std::u16string, std::string, timestamp>;
//                         null           whole         real    text            bytes        date and time

std::int64_t AsWhole(cell const &c);
double AsReal(cell const &c);
std::u16string AsText(cell const &c);

struct column_desc {
    std::u16string mName;
    DBTYPE mType = 0;  // the OLE DB type the column reads as
    std::uint64_t mSize = 0;
    DWORD mFlags = 0;  // DBCOLUMNFLAGS
    std::uint8_t mPrecision = 0;
    std::uint8_t mScale = 0;
    short mSqlType = 0;  // the driver's type, for parameters of this column
};

// The values of a result, column by column.
class cell_store {
public:
    void Reset(std::vector<reading> const &columns);
    std::size_t Rows() const noexcept { return mRows; }
    std::size_t Columns() const noexcept { return mColumns.size(); }
    void AddRows(std::size_t n);  // null rows at the end
    void Release();               // lets go of every value

    void SetNull(std::size_t row, std::size_t column);
    void SetWhole(std::size_t row, std::size_t column, std::int64_t value);
    void SetReal(std::size_t row, std::size_t column, double value);
    void SetStamp(std::size_t row, std::size_t column, DBTIMESTAMP const &value);
    void SetText(std::size_t row, std::size_t column, char16_t const *text, std::size_t n);
    void SetBytes(std::size_t row, std::size_t column, char const *bytes, std::size_t n);
    void Set(std::size_t row, std::size_t column, cell const &value);

    bool IsNull(std::size_t row, std::size_t c) const { return mColumns[c].mNull[row] != 0; }
    cell Get(std::size_t row, std::size_t column) const;
    // Writes the value into a row's layout by `b`; the status it earns.
    DWORD Put(std::size_t row, std::size_t column, DBBINDING const &b, unsigned char *buffer) const;

private:
    struct span {
        std::uint64_t mFrom;
        std::uint32_t mCount;
    };
    struct column {
        reading mReading = reading::text;
        std::vector<std::uint8_t> mNull;
        std::vector<std::int64_t> mWhole;
        std::vector<double> mReal;
        std::vector<DBTIMESTAMP> mStamp;
        std::vector<span> mSpan;  // texts and bytes, in their pools
    };
    std::u16string_view _Text(std::size_t row, std::size_t column) const;

    std::vector<column> mColumns;
    std::u16string mTexts;
    std::string mBytes;
    std::size_t mRows = 0;
};

}  // namespace qor::tools::platform::odbc
