// database::field: a typed view of one column of one row. It owns no value:
// it points at the slots of a row laid out by column and converts between the
// column's type and the operator's type, so that application code writes
// `cmd[u"price"] = 120;` and `int n = cmd[u"count"];`.
//
// Behaviour hangs on the column's type: 3 (int32), 19 (uint32), 5 (double),
// 129/130 (narrow/wide text), 135 (time stamp, read as the number YYYYMMDD),
// 13 (interface pointer, the blob carrier), 2/18 (16-bit, read by the short
// cast only). An operation that does not fit the type does nothing and yields
// 0, null, false or empty; nothing throws. Some rules look odd and are meant:
// `>>=` on a signed field shifts left, a time stamp store keeps only the low
// 16 bits of the number, and `field != field` on texts is always false.
//
// The destructor gives back an interface held in the slot and clears it, so
// fields are not copied around casually: operators return references.
#pragma once

#include "qor/tools/export.h"

#include <cstdint>

#include "qor/tools/container/buffer.h"
#include "qor/tools/database/column.h"

namespace qor::tools::database {

class stream;

class QOR_TOOLS_API field {
public:
    // A field that points at nothing; a copy points where the other does,
    // with a count of its interface (AddRef); the destructor gives that back.
    field() noexcept = default;
    field(field const &other);
    field &operator=(field const &other);
    virtual ~field() { Release(); }

    // Points the field at the slots of column `info` in `record` (with a
    // count of the interface there, when `addRef`); gives back or takes a
    // count of the interface in the slot; ReleaseOther forgets the slot's
    // interface without a Release (its owner has let go of it).
    void Setup(unsigned char const *record, column::info const *info, bool addRef);
    void Release();
    void AddRef();
    void ReleaseOther();

    // The column's description, type, size, the value slot, the status and
    // length slots, and what kind of column it is.
    column::info const *Info() const noexcept { return mInfo; }
    unsigned short Type() const noexcept { return mInfo ? mInfo->mType : 0; }
    unsigned long Size() const noexcept { return mInfo ? mInfo->mSize : 0; }
    void *Address() const noexcept { return mValue; }
    unaligned<DWORD> Status() const noexcept { return unaligned<DWORD>(mStatus); }
    unaligned<std::uint64_t> Length() const noexcept { return unaligned<std::uint64_t>(mLength); }
    bool IsReadOnly() const noexcept { return mInfo && mInfo->IsReadOnly(); }
    bool IsLength() const noexcept { return _Kind() & column::info::kLength; }
    bool IsBlob() const noexcept { return _Kind() & column::info::kBlob; }
    bool IsUnknown() const noexcept { return _Kind() & column::info::kUnknown; }
    bool IsString() const noexcept { return Type() == DBTYPE_STR || Type() == DBTYPE_WSTR; }
    bool IsNumber() const noexcept { return !IsString() && !IsUnknown(); }
    bool IsNull() const noexcept { return mStatus && Status() == DBSTATUS_S_ISNULL; }
    // Whether the value is zero or an empty text; Clear zeroes the value
    // (giving back an interface), Null marks the column NULL.
    bool IsEmpty() const;
    void Clear();
    void Null();

    // Conversions out.
    operator short() const { return _CastI2(); }
    operator int() const { return _CastI4(); }
    operator long() const { return _CastI4(); }
    operator double() const { return _CastR8(); }
    operator char *() const { return _CastString(); }
    operator char const *() const { return _CastString(); }
    operator char16_t *() const { return _CastStringW(); }
    operator char16_t const *() const { return _CastStringW(); }
    operator tagDBTIMESTAMP *() const;
    operator IUnknown *() const { return _CastUnknown(); }
    operator ISequentialStream *() const;
    operator stream *() const;

    // The display form into `out`, which holds 4096 characters.
    void Text(char16_t *out) const;

    // Blobs: nothing unless the column is a blob.
    void LoadBlob();
    void SetBlob(void const *data, int size);
    void SetBlob(container::buffer const &data);
    void GetBlob(void *out, int size);
    void GetBlob(container::buffer &out);
    void *GetBlob();
    int GetBlobSize();

    // Assignment.
    field &operator=(char v) { return _Set(long(v)); }
    field &operator=(short v) { return _Set(long(v)); }
    field &operator=(int v) { return _Set(long(v)); }
    field &operator=(long v) { return _Set(v); }
    field &operator=(unsigned char v) { return _Set((unsigned long)v); }
    field &operator=(unsigned short v) { return _Set((unsigned long)v); }
    field &operator=(unsigned int v) { return _Set((unsigned long)v); }
    field &operator=(unsigned long v) { return _Set(v); }
    field &operator=(float v) { return _Set(double(v)); }
    field &operator=(double v) { return _Set(v); }
    field &operator=(char16_t const *v) { return _Set(v); }

#define QOR_FIELD_WHOLE(op, name)                                           \
    field &operator op(char v) { return name(long(v)); }                    \
    field &operator op(short v) { return name(long(v)); }                   \
    field &operator op(int v) { return name(long(v)); }                     \
    field &operator op(long v) { return name(v); }                          \
    field &operator op(unsigned char v) { return name((unsigned long)v); }  \
    field &operator op(unsigned short v) { return name((unsigned long)v); } \
    field &operator op(unsigned int v) { return name((unsigned long)v); }   \
    field &operator op(unsigned long v) { return name(v); }                 \
    field &operator op(field const &v) { return name(v); }
#define QOR_FIELD_COMPOUND(op, name)                        \
    QOR_FIELD_WHOLE(op, name)                               \
    field &operator op(float v) { return name(double(v)); } \
    field &operator op(double v) { return name(v); }
    // Compound assignment: in place for types 3, 19 and 5 only.
    QOR_FIELD_COMPOUND(+=, _Plus)
    QOR_FIELD_COMPOUND(-=, _Minus)
    QOR_FIELD_COMPOUND(*=, _Multi)
    QOR_FIELD_COMPOUND(/=, _Divide)
    QOR_FIELD_COMPOUND(%=, _Mod)
    // Bit operations take whole operands only.
    QOR_FIELD_WHOLE(&=, _And)
    QOR_FIELD_WHOLE(|=, _Or)
    QOR_FIELD_WHOLE(<<=, _ShiftL)
    QOR_FIELD_WHOLE(>>=, _ShiftR)
#undef QOR_FIELD_COMPOUND
#undef QOR_FIELD_WHOLE
    // Prefix and postfix alike: one step in place, the field returned.
    field &operator++() { return _Plus(1L); }
    field &operator++(int) { return _Plus(1L); }
    field &operator--() { return _Minus(1L); }
    field &operator--(int) { return _Minus(1L); }

    // The relations a comparison asks for.
    enum class relation { eq, ne, lt, gt, le, ge };
#define QOR_FIELD_COMPARE(op, rel)                                                            \
    bool operator op(char v) const { return _Compare(long(v), relation::rel); }               \
    bool operator op(short v) const { return _Compare(long(v), relation::rel); }              \
    bool operator op(int v) const { return _Compare(long(v), relation::rel); }                \
    bool operator op(long v) const { return _Compare(v, relation::rel); }                     \
    bool operator op(unsigned char v) const { return _Compare((unsigned long)v, relation::rel); }  \
    bool operator op(unsigned short v) const { return _Compare((unsigned long)v, relation::rel); } \
    bool operator op(unsigned int v) const { return _Compare((unsigned long)v, relation::rel); }   \
    bool operator op(unsigned long v) const { return _Compare(v, relation::rel); }            \
    bool operator op(float v) const { return _Compare(double(v), relation::rel); }            \
    bool operator op(double v) const { return _Compare(v, relation::rel); }                   \
    bool operator op(char16_t const *v) const { return _Compare(v, relation::rel); }          \
    bool operator op(field const &v) const { return _Compare(v, relation::rel); }
    // Comparison with a number, a text or another field, in the column's type.
    QOR_FIELD_COMPARE(==, eq)
    QOR_FIELD_COMPARE(!=, ne)
    QOR_FIELD_COMPARE(<, lt)
    QOR_FIELD_COMPARE(>, gt)
    QOR_FIELD_COMPARE(<=, le)
    QOR_FIELD_COMPARE(>=, ge)
#undef QOR_FIELD_COMPARE

    // The bit of mFlags that says the blob slot holds the library's own stream.
    static constexpr std::uint32_t kLibraryStream = 1;

protected:
    friend class record;
    friend class command;

    short _CastI2() const;
    int _CastI4() const;
    double _CastR8() const;
    char *_CastString() const;
    char16_t *_CastStringW() const;
    IUnknown *_CastUnknown() const;
    void *_CastUnknownPtr() const;
    int _ConvertTimeStamp() const;

    field &_Set(long v);
    field &_Set(unsigned long v);
    field &_Set(double v);
    field &_Set(char16_t const *v);
    field &_Set(char const *v);
    field &_Set(IUnknown *v);
    void _SetI4(std::int32_t v);
    void _SetR8(double v);
    void _SetTimeStamp(long v);
    void _SetString(char const *v);
    void _SetStringW(char16_t const *v);
    void _SetUnknown(IUnknown *v);
    void _ClearUnknown();
    void _SetConvertString(long v);
    void _SetConvertString(double v);
    void _SetConvertString(string const &text);

    field &_Plus(long v);
    field &_Plus(unsigned long v);
    field &_Plus(double v);
    field &_Plus(field const &v);
    field &_Minus(long v);
    field &_Minus(unsigned long v);
    field &_Minus(double v);
    field &_Minus(field const &v);
    field &_Multi(long v);
    field &_Multi(unsigned long v);
    field &_Multi(double v);
    field &_Multi(field const &v);
    field &_Divide(long v);
    field &_Divide(unsigned long v);
    field &_Divide(double v);
    field &_Divide(field const &v);
    field &_Mod(long v);
    field &_Mod(unsigned long v);
    field &_Mod(double v);
    field &_Mod(field const &v);
    field &_And(long v);
    field &_And(unsigned long v);
    field &_And(field const &v);
    field &_Or(long v);
    field &_Or(unsigned long v);
    field &_Or(field const &v);
    field &_ShiftL(long v);
    field &_ShiftL(unsigned long v);
    field &_ShiftL(field const &v);
    field &_ShiftR(long v);
    field &_ShiftR(unsigned long v);
    field &_ShiftR(field const &v);

    bool _Compare(long v, relation r) const;
    bool _Compare(unsigned long v, relation r) const;
    bool _Compare(double v, relation r) const;
    bool _Compare(char16_t const *v, relation r) const;
    bool _Compare(char const *v, relation r) const;
    bool _Compare(field const &v, relation r) const;

    stream *_ConvertImageStream(bool create);

    std::uint32_t _Kind() const noexcept { return mInfo ? mInfo->mKind : 0; }
    std::int32_t _I4() const noexcept;
    std::uint32_t _U4() const noexcept { return std::uint32_t(_I4()); }
    double _R8() const noexcept;
    void _StoreU4(std::uint32_t v);
    void _Ok() { Status() = DBSTATUS_S_OK; }

    column::info const *mInfo = nullptr;
    void *mValue = nullptr;
    void *mStatus = nullptr;
    void *mLength = nullptr;
    std::uint32_t mFlags = 0;
};

}  // namespace qor::tools::database
