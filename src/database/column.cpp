#include "qor/tools/database/column.h"

namespace qor::tools::database {

column::column(unsigned long count, tagDBCOLUMNINFO *columns) {
    for (unsigned long i = 0; i < count; ++i) {
        tagDBCOLUMNINFO const &c = columns[i];
        _Add(c.pwszName, int(c.iOrdinal), c.wType, static_cast<unsigned long>(c.ulColumnSize), c.dwFlags,
             c.bPrecision, c.bScale);
    }
}

void column::_Add(char16_t const *name, int ordinal, unsigned short type, unsigned long size, unsigned long flags,
                  unsigned char precision, unsigned char scale) {
    auto *e = new info;
    e->mName = name;
    e->mOrdinal = ordinal;
    e->mType = type;
    e->mOffset = mRecordSize;
    e->mFlags = std::uint32_t(flags);
    e->mPrecision = precision;
    e->mScale = scale;

    // The type mapping: what the row holds for what the source reports.
    std::uint32_t reported = std::uint32_t(size);
    switch (type) {
        case DBTYPE_I2:
        case DBTYPE_UI2: e->mSize = reported; break;
        case DBTYPE_I4:
        case DBTYPE_R4:
        case DBTYPE_UI4: e->mSize = 4; break;
        case DBTYPE_R8: e->mSize = 8; break;
        case DBTYPE_IUNKNOWN:
            e->mSize = sizeof(void *);
            e->mKind = info::kUnknown;
            e->mObject.iid = IID_IUnknown;
            ++mUnknown;
            break;
        case DBTYPE_BYTES:
            e->mType = DBTYPE_IUNKNOWN;
            e->mSize = sizeof(void *);
            e->mKind = info::kLength | info::kBlob | info::kUnknown;
            e->mObject.iid = IID_ISequentialStream;
            ++mBlob;
            ++mUnknown;
            break;
        case DBTYPE_STR: e->mSize = reported + 1; break;
        case DBTYPE_WSTR: e->mSize = reported * 2 + 2; break;
        case DBTYPE_NUMERIC:
            e->mType = DBTYPE_STR;
            e->mSize = 32;
            break;
        case DBTYPE_DBTIMESTAMP: e->mSize = 16; break;
        default: e->mSize = 0; break;
    }
    if (e->IsReadOnly()) mUseReadOnly = true;
    mRecordSize += std::int32_t(4 + e->mSize + ((e->mKind & info::kLength) ? 8 : 0));
    mInfos.Add(e);
    e->mIndex = mInfos.Size() - 1;
    mIndexByName.Set(e->mName, e);
}

void column::CreateBindData(container::array<tagDBBINDING, container::pif::array::object> &bindings) const {
    bindings.Size(Columns());
    for (int i = 0; i < Columns(); ++i) {
        info *e = mInfos[i];
        bool length = e->mKind & info::kLength;
        tagDBBINDING &b = bindings[i];
        b = tagDBBINDING{};
        b.iOrdinal = DBORDINAL(e->mOrdinal);
        b.obValue = DBBYTEOFFSET(e->mOffset);
        b.obStatus = DBBYTEOFFSET(e->mOffset) + e->mSize;
        b.obLength = length ? DBBYTEOFFSET(e->mOffset) + e->mSize + 4 : 0;
        b.pObject = e->mType == DBTYPE_IUNKNOWN ? &e->mObject : nullptr;
        b.dwPart = DBPART_VALUE | DBPART_STATUS | (length ? DBPART(DBPART_LENGTH) : DBPART(0));
        b.dwMemOwner = (e->mType & DBTYPE_BYREF) ? DBMEMOWNER_PROVIDEROWNED : DBMEMOWNER_CLIENTOWNED;
        b.eParamIO = DBPARAMIO_NOTPARAM;
        b.cbMaxLen = e->mSize;
        b.wType = e->mType;
        b.bPrecision = e->mPrecision;
        b.bScale = e->mScale;
    }
}

}  // namespace qor::tools::database
