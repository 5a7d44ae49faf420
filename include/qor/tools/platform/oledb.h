// The OLE DB records, constants and interface ids the database classes use,
// with their Windows values and layouts.
#pragma once

#include "qor/tools/export.h"

#include <cstdint>
#include <cstring>

#include "qor/tools/platform/com.h"

namespace qor::tools {

using DBTYPE = std::uint16_t;
using DBSTATUS = DWORD;
using DBCOLUMNFLAGS = DWORD;
using DBPART = DWORD;
using DBMEMOWNER = DWORD;
using DBPARAMIO = DWORD;
using DBORDINAL = std::uint64_t;
using DBLENGTH = std::uint64_t;
using DBBYTEOFFSET = std::uint64_t;
using DBROWCOUNT = std::int64_t;
using HROW = std::uint64_t;
using HACCESSOR = std::uint64_t;
using HCHAPTER = std::uint64_t;

enum : DBTYPE {
    DBTYPE_EMPTY = 0, DBTYPE_NULL = 1, DBTYPE_I2 = 2, DBTYPE_I4 = 3, DBTYPE_R4 = 4, DBTYPE_R8 = 5,
    DBTYPE_CY = 6, DBTYPE_DATE = 7, DBTYPE_BSTR = 8, DBTYPE_IDISPATCH = 9, DBTYPE_ERROR = 10, DBTYPE_BOOL = 11,
    DBTYPE_VARIANT = 12, DBTYPE_IUNKNOWN = 13, DBTYPE_DECIMAL = 14, DBTYPE_I1 = 16, DBTYPE_UI1 = 17,
    DBTYPE_UI2 = 18, DBTYPE_UI4 = 19, DBTYPE_I8 = 20, DBTYPE_UI8 = 21, DBTYPE_GUID = 72, DBTYPE_BYTES = 128,
    DBTYPE_STR = 129, DBTYPE_WSTR = 130, DBTYPE_NUMERIC = 131, DBTYPE_DBDATE = 133, DBTYPE_DBTIME = 134,
    DBTYPE_DBTIMESTAMP = 135, DBTYPE_BYREF = 0x4000,
};

enum : DBSTATUS {
    DBSTATUS_S_OK = 0, DBSTATUS_E_BADACCESSOR = 1, DBSTATUS_E_CANTCONVERTVALUE = 2, DBSTATUS_S_ISNULL = 3,
    DBSTATUS_S_TRUNCATED = 4, DBSTATUS_E_UNAVAILABLE = 14, DBSTATUS_S_IGNORE = 15, DBSTATUS_S_DEFAULT = 13,
};

enum : DBCOLUMNFLAGS {
    DBCOLUMNFLAGS_ISBOOKMARK = 0x1, DBCOLUMNFLAGS_MAYDEFER = 0x2, DBCOLUMNFLAGS_WRITE = 0x4,
    DBCOLUMNFLAGS_WRITEUNKNOWN = 0x8, DBCOLUMNFLAGS_ISFIXEDLENGTH = 0x10, DBCOLUMNFLAGS_ISNULLABLE = 0x20,
    DBCOLUMNFLAGS_MAYBENULL = 0x40, DBCOLUMNFLAGS_ISLONG = 0x80, DBCOLUMNFLAGS_ISROWID = 0x100,
    DBCOLUMNFLAGS_ISROWVER = 0x200,
};

enum : DBPART { DBPART_INVALID = 0, DBPART_VALUE = 1, DBPART_LENGTH = 2, DBPART_STATUS = 4 };
enum : DBMEMOWNER { DBMEMOWNER_CLIENTOWNED = 0, DBMEMOWNER_PROVIDEROWNED = 1 };
enum : DBPARAMIO { DBPARAMIO_NOTPARAM = 0, DBPARAMIO_INPUT = 1, DBPARAMIO_OUTPUT = 2 };

inline constexpr HRESULT DB_S_ENDOFROWSET = 0x00040EC6;
inline constexpr HRESULT DB_E_ERRORSOCCURRED = static_cast<HRESULT>(0x80040E21u);
inline constexpr HRESULT DB_E_NOTABLE = static_cast<HRESULT>(0x80040E37u);
inline constexpr HRESULT DB_E_INTEGRITYVIOLATION = static_cast<HRESULT>(0x80040E2Fu);
inline constexpr HRESULT DB_E_BADACCESSORHANDLE = static_cast<HRESULT>(0x80040E00u);
inline constexpr HRESULT DB_E_BADROWHANDLE = static_cast<HRESULT>(0x80040E04u);
inline constexpr HRESULT DB_E_CANTSCROLLBACKWARDS = static_cast<HRESULT>(0x80040E29u);
inline constexpr HRESULT DB_E_NOCOMMAND = static_cast<HRESULT>(0x80040E0Cu);
inline constexpr HRESULT DB_E_ABORTLIMITREACHED = static_cast<HRESULT>(0x80040E31u);
inline constexpr HRESULT XACT_E_NOTRANSACTION = static_cast<HRESULT>(0x8004D00Eu);
inline constexpr HCHAPTER DB_NULL_HCHAPTER = 0;

struct QOR_TOOLS_API DBOBJECT {
    DWORD dwFlags;
    IID iid;
};

struct QOR_TOOLS_API DBTIMESTAMP {
    std::int16_t year;
    std::uint16_t month;
    std::uint16_t day;
    std::uint16_t hour;
    std::uint16_t minute;
    std::uint16_t second;
    std::uint32_t fraction;
};
using tagDBTIMESTAMP = DBTIMESTAMP;
static_assert(sizeof(DBTIMESTAMP) == 16);

struct QOR_TOOLS_API DBID {
    GUID uGuid;
    DWORD eKind;
    char16_t *pwszName;
};

struct QOR_TOOLS_API tagDBCOLUMNINFO {
    char16_t *pwszName;
    void *pTypeInfo;
    DBORDINAL iOrdinal;
    DBCOLUMNFLAGS dwFlags;
    DBLENGTH ulColumnSize;
    DBTYPE wType;
    std::uint8_t bPrecision;
    std::uint8_t bScale;
    DBID columnid;
};
using DBCOLUMNINFO = tagDBCOLUMNINFO;

struct QOR_TOOLS_API tagDBBINDING {
    DBORDINAL iOrdinal;
    DBBYTEOFFSET obValue;
    DBBYTEOFFSET obLength;
    DBBYTEOFFSET obStatus;
    void *pTypeInfo;
    DBOBJECT *pObject;
    void *pBindExt;
    DBPART dwPart;
    DBMEMOWNER dwMemOwner;
    DBPARAMIO eParamIO;
    DBLENGTH cbMaxLen;
    DWORD dwFlags;
    DBTYPE wType;
    std::uint8_t bPrecision;
    std::uint8_t bScale;
};
using DBBINDING = tagDBBINDING;

// A view of an unaligned slot of a row: reads and writes go through memcpy,
// so that a slot at any offset is accessed without undefined behaviour.
template <typename T>
class unaligned {
public:
    explicit unaligned(void *slot) noexcept : mSlot(slot) {}
    operator T() const noexcept {
        T value;
        std::memcpy(&value, mSlot, sizeof(T));
        return value;
    }
    unaligned &operator=(T value) noexcept {
        std::memcpy(mSlot, &value, sizeof(T));
        return *this;
    }
    unaligned &operator=(unaligned const &other) noexcept { return *this = T(other); }
    void *Address() const noexcept { return mSlot; }

private:
    void *mSlot;
};

}  // namespace qor::tools
