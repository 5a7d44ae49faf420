#include "odbc_cells.h"

#include <sql.h>
#include <sqlext.h>

#include <cmath>
#include <cstdio>
#include <cstring>

#include "../utf8.h"
#include "memory_stream.h"
#include "text_codec.h"

namespace qor::tools::platform::odbc {

namespace {

template <typename T>
void Store(unsigned char *buffer, DBBYTEOFFSET offset, T value) {
    std::memcpy(buffer + offset, &value, sizeof value);
}

std::u16string Decimal(std::int64_t value) {
    std::string s = std::to_string(value);
    return std::u16string(s.begin(), s.end());
}

std::u16string Decimal(double value) {
    char s[64];
    std::snprintf(s, sizeof s, "%.15g", value);
    return std::u16string(s, s + std::strlen(s));
}

}  // namespace

reading ReadingOf(DBTYPE type) {
    switch (type) {
        case DBTYPE_I2:
        case DBTYPE_I4:
        case DBTYPE_I8:
        case DBTYPE_UI2:
        case DBTYPE_UI4:
        case DBTYPE_BOOL: return reading::whole;
        case DBTYPE_R4:
        case DBTYPE_R8: return reading::real;
        case DBTYPE_BYTES: return reading::bytes;
        case DBTYPE_DBTIMESTAMP: return reading::stamp;
        default: return reading::text;
    }
}

DBTYPE TypeOf(short sqlType) {
    switch (sqlType) {
        case SQL_INTEGER: return DBTYPE_I4;
        case SQL_SMALLINT:
        case SQL_TINYINT: return DBTYPE_I2;
        case SQL_REAL: return DBTYPE_R4;
        case SQL_FLOAT:
        case SQL_DOUBLE: return DBTYPE_R8;
        case SQL_BIGINT:
        case SQL_NUMERIC:
        case SQL_DECIMAL: return DBTYPE_NUMERIC;
        case SQL_TYPE_TIMESTAMP:
        case SQL_TIMESTAMP:
        case SQL_TYPE_DATE:
        case SQL_DATE: return DBTYPE_DBTIMESTAMP;
        case SQL_BINARY:
        case SQL_VARBINARY:
        case SQL_LONGVARBINARY: return DBTYPE_BYTES;
        case SQL_BIT: return DBTYPE_BOOL;
        default: return DBTYPE_WSTR;  // the character types, and anything else as its text
    }
}

std::int64_t AsWhole(cell const &c) {
    if (auto *i = std::get_if<std::int64_t>(&c)) return *i;
    if (auto *d = std::get_if<double>(&c)) return std::isfinite(*d) ? std::int64_t(*d) : 0;
    if (auto *t = std::get_if<std::u16string>(&c)) return std::strtoll(detail::ToUtf8(*t).c_str(), nullptr, 10);
    return 0;
}

double AsReal(cell const &c) {
    if (auto *i = std::get_if<std::int64_t>(&c)) return double(*i);
    if (auto *d = std::get_if<double>(&c)) return *d;
    if (auto *t = std::get_if<std::u16string>(&c)) return std::strtod(detail::ToUtf8(*t).c_str(), nullptr);
    return 0;
}

std::u16string AsText(cell const &c) {
    if (auto *t = std::get_if<std::u16string>(&c)) return *t;
    if (auto *i = std::get_if<std::int64_t>(&c)) return Decimal(*i);
    if (auto *d = std::get_if<double>(&c)) return Decimal(*d);
    return {};
}

// ---------------------------------------------------------------- cell_store

void cell_store::Reset(std::vector<reading> const &columns) {
    mColumns.assign(columns.size(), column{});
    for (std::size_t i = 0; i < columns.size(); ++i) mColumns[i].mReading = columns[i];
    mTexts.clear();
    mBytes.clear();
    mRows = 0;
}

void cell_store::AddRows(std::size_t n) {
    mRows += n;
    for (column &c : mColumns) {
        c.mNull.resize(mRows, 1);
        switch (c.mReading) {
            case reading::whole: c.mWhole.resize(mRows); break;
            case reading::real: c.mReal.resize(mRows); break;
            case reading::stamp: c.mStamp.resize(mRows); break;
            case reading::text:
            case reading::bytes: c.mSpan.resize(mRows); break;
        }
    }
}

void cell_store::Release() {
    std::vector<column>().swap(mColumns);
    std::u16string().swap(mTexts);
    std::string().swap(mBytes);
    mRows = 0;
}

void cell_store::SetNull(std::size_t row, std::size_t c) { mColumns[c].mNull[row] = 1; }

void cell_store::SetWhole(std::size_t row, std::size_t c, std::int64_t value) {
    column &col = mColumns[c];
    col.mNull[row] = 0;
    switch (col.mReading) {
        case reading::whole: col.mWhole[row] = value; break;
        case reading::real: col.mReal[row] = double(value); break;
        default: {
            std::u16string text = Decimal(value);
            SetText(row, c, text.data(), text.size());
        }
    }
}

void cell_store::SetReal(std::size_t row, std::size_t c, double value) {
    column &col = mColumns[c];
    col.mNull[row] = 0;
    switch (col.mReading) {
        case reading::whole: col.mWhole[row] = std::isfinite(value) ? std::int64_t(value) : 0; break;
        case reading::real: col.mReal[row] = value; break;
        default: {
            std::u16string text = Decimal(value);
            SetText(row, c, text.data(), text.size());
        }
    }
}

void cell_store::SetStamp(std::size_t row, std::size_t c, DBTIMESTAMP const &value) {
    column &col = mColumns[c];
    if (col.mReading != reading::stamp) return SetNull(row, c);
    col.mNull[row] = 0;
    col.mStamp[row] = value;
}

void cell_store::SetText(std::size_t row, std::size_t c, char16_t const *text, std::size_t n) {
    column &col = mColumns[c];
    if (col.mReading == reading::text) {
        col.mNull[row] = 0;
        col.mSpan[row] = {mTexts.size(), std::uint32_t(n)};
        mTexts.append(text, n);
        return;
    }
    Set(row, c, cell(std::u16string(text, n)));
}

void cell_store::SetBytes(std::size_t row, std::size_t c, char const *bytes, std::size_t n) {
    column &col = mColumns[c];
    if (col.mReading != reading::bytes) return SetNull(row, c);
    col.mNull[row] = 0;
    col.mSpan[row] = {mBytes.size(), std::uint32_t(n)};
    mBytes.append(bytes, n);
}

void cell_store::Set(std::size_t row, std::size_t c, cell const &value) {
    column &col = mColumns[c];
    if (std::holds_alternative<std::monostate>(value)) return SetNull(row, c);
    switch (col.mReading) {
        case reading::whole: return SetWhole(row, c, AsWhole(value));
        case reading::real: return SetReal(row, c, AsReal(value));
        case reading::stamp:
            if (auto *t = std::get_if<timestamp>(&value)) return SetStamp(row, c, t->mValue);
            return SetNull(row, c);
        case reading::bytes:
            if (auto *b = std::get_if<std::string>(&value)) return SetBytes(row, c, b->data(), b->size());
            return SetNull(row, c);
        case reading::text: {
            std::u16string text = AsText(value);
            return SetText(row, c, text.data(), text.size());
        }
    }
}

std::u16string_view cell_store::_Text(std::size_t row, std::size_t c) const {
    span s = mColumns[c].mSpan[row];
    return std::u16string_view(mTexts).substr(std::size_t(s.mFrom), s.mCount);
}

cell cell_store::Get(std::size_t row, std::size_t c) const {
    column const &col = mColumns[c];
    if (col.mNull[row]) return std::monostate{};
    switch (col.mReading) {
        case reading::whole: return col.mWhole[row];
        case reading::real: return col.mReal[row];
        case reading::stamp: return timestamp{col.mStamp[row]};
        case reading::text: return std::u16string(_Text(row, c));
        case reading::bytes: {
            span s = col.mSpan[row];
            return mBytes.substr(std::size_t(s.mFrom), s.mCount);
        }
    }
    return std::monostate{};
}

DWORD cell_store::Put(std::size_t row, std::size_t c, DBBINDING const &b, unsigned char *buffer) const {
    column const &col = mColumns[c];
    if (col.mNull[row]) return DBSTATUS_S_ISNULL;
    auto whole = [&]() -> std::int64_t {
        if (col.mReading == reading::whole) return col.mWhole[row];
        if (col.mReading == reading::real) return std::isfinite(col.mReal[row]) ? std::int64_t(col.mReal[row]) : 0;
        return AsWhole(Get(row, c));
    };
    auto real = [&]() -> double {
        if (col.mReading == reading::real) return col.mReal[row];
        if (col.mReading == reading::whole) return double(col.mWhole[row]);
        return AsReal(Get(row, c));
    };
    switch (b.wType) {
        case DBTYPE_I2:
        case DBTYPE_UI2:
            if (b.cbMaxLen >= 2) Store<std::int16_t>(buffer, b.obValue, std::int16_t(whole()));
            return DBSTATUS_S_OK;
        case DBTYPE_I4:
        case DBTYPE_UI4: Store<std::int32_t>(buffer, b.obValue, std::int32_t(whole())); return DBSTATUS_S_OK;
        case DBTYPE_R4: Store<float>(buffer, b.obValue, float(real())); return DBSTATUS_S_OK;
        case DBTYPE_R8: Store<double>(buffer, b.obValue, real()); return DBSTATUS_S_OK;
        case DBTYPE_WSTR: {
            std::size_t room = b.cbMaxLen / 2;
            if (room == 0) return DBSTATUS_S_OK;
            std::u16string owned;
            std::u16string_view text;
            if (col.mReading == reading::text) {
                text = _Text(row, c);
            } else {
                owned = AsText(Get(row, c));
                text = owned;
            }
            DWORD status = DBSTATUS_S_OK;
            std::size_t n = text.size();
            if (n >= room) {
                n = room - 1;
                status = DBSTATUS_S_TRUNCATED;
            }
            std::memcpy(buffer + b.obValue, text.data(), n * 2);
            Store<char16_t>(buffer, b.obValue + n * 2, 0);
            return status;
        }
        case DBTYPE_STR: {
            if (b.cbMaxLen == 0) return DBSTATUS_S_OK;
            std::string t;
            std::u16string wide = col.mReading == reading::text ? std::u16string(_Text(row, c)) : AsText(Get(row, c));
            platform::Utf16ToLocale(wide.data(), wide.size(), t);
            DWORD status = DBSTATUS_S_OK;
            if (t.size() >= b.cbMaxLen) {
                t.resize(b.cbMaxLen - 1);
                status = DBSTATUS_S_TRUNCATED;
            }
            std::memcpy(buffer + b.obValue, t.c_str(), t.size() + 1);
            return status;
        }
        case DBTYPE_DBTIMESTAMP:
            if (col.mReading == reading::stamp) Store<DBTIMESTAMP>(buffer, b.obValue, col.mStamp[row]);
            return DBSTATUS_S_OK;
        case DBTYPE_IUNKNOWN: {
            span s = col.mReading == reading::bytes ? col.mSpan[row] : span{0, 0};
            IStream *stream = CreateMemoryStream(mBytes.data() + s.mFrom, s.mCount);
            Store<void *>(buffer, b.obValue, static_cast<ISequentialStream *>(stream));
            if (b.dwPart & DBPART_LENGTH) Store<std::uint64_t>(buffer, b.obLength, s.mCount);
            return DBSTATUS_S_OK;
        }
        default: return DBSTATUS_S_OK;
    }
}

}  // namespace qor::tools::platform::odbc
