#include "wic_metadata.h"

#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "com_object.h"

namespace qor::tools::platform::wic {

namespace {

using exif::field;

enum class level { root, app1, ifd0, exif, ifd1 };

struct target {
    enum kind { directory, tag, thumbnail, padding };
    level mLevel = level::root;
    kind mKind = directory;
    std::uint16_t mTag = 0;
};

constexpr HRESULT kMoreData = static_cast<HRESULT>(0x800700EAu);

std::uint16_t IfdOf(level l) {
    return l == level::ifd1 ? exif::kIfd1 : l == level::exif ? exif::kExifIfd : exif::kIfd0;
}

bool IsIfd(level l) { return l == level::ifd0 || l == level::exif || l == level::ifd1; }

// "{ushort=N}" with N from 0 to 65535.
bool UShortId(std::u16string_view c, std::uint16_t &id) {
    constexpr std::u16string_view head = u"{ushort=";
    if (c.size() <= head.size() + 1 || c.substr(0, head.size()) != head || c.back() != u'}') return false;
    std::uint32_t n = 0;
    for (char16_t ch : c.substr(head.size(), c.size() - head.size() - 1)) {
        if (ch < u'0' || ch > u'9' || (n = n * 10 + (ch - u'0')) > 0xffff) return false;
    }
    id = std::uint16_t(n);
    return true;
}

bool Step(target &t, std::u16string_view c) {
    std::uint16_t id = 0;
    bool numbered = UShortId(c, id);
    switch (t.mLevel) {
    case level::root:
        if (c != u"app1") return false;
        t.mLevel = level::app1;
        return true;
    case level::app1:
        if (c == u"ifd" || (numbered && id == 0)) t.mLevel = level::ifd0;
        else if (c == u"thumb" || (numbered && id == 1)) t.mLevel = level::ifd1;
        else return false;
        return true;
    default: break;
    }
    if (c == u"PaddingSchema:padding") {
        t.mKind = target::padding;
    } else if (t.mLevel == level::ifd1 && c == u"{}") {
        t.mKind = target::thumbnail;
    } else if (t.mLevel == level::ifd0 && (c == u"exif" || (numbered && id == exif::kExifIfd))) {
        t.mLevel = level::exif;
    } else if (numbered) {
        t.mKind = target::tag;
        t.mTag = id;
    } else {
        return false;
    }
    return true;
}

bool Resolve(level from, char16_t const *path, target &out) {
    if (!path) return false;
    out = target{from};
    std::u16string_view rest(path);
    while (!rest.empty()) {
        if (rest.front() != u'/' || out.mKind != target::directory) return false;
        rest.remove_prefix(1);
        std::size_t end = rest.find(u'/');
        if (!Step(out, rest.substr(0, end))) return false;
        rest = end == std::u16string_view::npos ? std::u16string_view() : rest.substr(end);
    }
    return true;
}

std::u16string Location(level l) {
    switch (l) {
    case level::root: return u"/";
    case level::app1: return u"/app1";
    case level::ifd0: return u"/app1/{ushort=0}";
    case level::exif: return u"/app1/{ushort=0}/{ushort=34665}";
    case level::ifd1: return u"/app1/{ushort=1}";
    }
    return u"/";
}

std::u16string TagName(std::uint16_t tag) {
    std::string digits = std::to_string(tag);
    return u"/{ushort=" + std::u16string(digits.begin(), digits.end()) + u"}";
}

void *CopyOut(void const *data, std::size_t size) {
    void *block = CoTaskMemAlloc(size);
    if (block && size) std::memcpy(block, data, size);
    return block;
}

// Field types and value types, both ways.
struct type_pair {
    std::uint16_t mField;
    VARTYPE mValue;
};
constexpr type_pair kTypes[] = {
    {exif::kByte, VT_UI1},      {exif::kSByte, VT_I1},       {exif::kShort, VT_UI2},  {exif::kSShort, VT_I2},
    {exif::kLong, VT_UI4},      {exif::kSLong, VT_I4},       {exif::kRational, VT_UI8}, {exif::kSRational, VT_I8},
    {exif::kFloat, VT_R4},      {exif::kDouble, VT_R8},
};

VARTYPE ValueType(std::uint16_t fieldType) {
    for (type_pair const &t : kTypes) {
        if (t.mField == fieldType) return t.mValue;
    }
    return VT_EMPTY;
}

std::uint16_t FieldType(VARTYPE valueType) {
    for (type_pair const &t : kTypes) {
        if (t.mValue == valueType) return t.mField;
    }
    return 0;
}

// Fields are stored little-endian, as the value slots of this machine hold them.
HRESULT ToValue(field const &f, PROPVARIANT *value) {
    if (f.mType == exif::kAscii) {
        std::size_t n = f.mData.find('\0');
        std::string text = f.mData.substr(0, n);
        value->pszVal = static_cast<char *>(CopyOut(text.c_str(), text.size() + 1));
        value->vt = VT_LPSTR;
        return value->pszVal ? S_OK : E_OUTOFMEMORY;
    }
    VARTYPE vt = ValueType(f.mType);
    if (vt == VT_EMPTY || f.mCount == 0) {  // UNDEFINED and anything unknown come as bytes
        value->blob.cbSize = ULONG(f.mData.size());
        value->blob.pBlobData = static_cast<std::uint8_t *>(CopyOut(f.mData.data(), f.mData.size()));
        value->vt = VT_BLOB;
        return S_OK;
    }
    if (f.mCount == 1) {
        std::memcpy(&value->uhVal, f.mData.data(), std::min(f.mData.size(), sizeof value->uhVal));
        value->vt = vt;
        return S_OK;
    }
    value->ca.cElems = f.mCount;
    value->ca.pElems = CopyOut(f.mData.data(), f.mData.size());
    value->vt = VARTYPE(VT_VECTOR | vt);
    return value->ca.pElems ? S_OK : E_OUTOFMEMORY;
}

bool ToField(PROPVARIANT const &value, field &f) {
    if (value.vt == VT_LPSTR) {
        std::string text = value.pszVal ? value.pszVal : "";
        f = field{exif::kAscii, std::uint32_t(text.size() + 1), text + '\0'};
        return true;
    }
    if (value.vt == VT_BLOB) {
        if (value.blob.cbSize && !value.blob.pBlobData) return false;
        f = field{exif::kUndefined, value.blob.cbSize,
                  std::string(reinterpret_cast<char const *>(value.blob.pBlobData), value.blob.cbSize)};
        return true;
    }
    bool vector = value.vt & VT_VECTOR;
    std::uint16_t type = FieldType(VARTYPE(value.vt & ~VT_VECTOR));
    if (!type) return false;
    std::size_t size = exif::ElementSize(type);
    std::uint32_t count = vector ? value.ca.cElems : 1;
    void const *data = vector ? value.ca.pElems : static_cast<void const *>(&value.uhVal);
    if (count && !data) return false;
    f = field{type, count, std::string(static_cast<char const *>(data), size * count)};
    return true;
}

class name_list final : public com_object<IEnumString> {
public:
    explicit name_list(std::vector<std::u16string> names) : mNames(std::move(names)) {}
    HRESULT Next(ULONG count, char16_t **names, ULONG *done) override {
        if (!names) return E_INVALIDARG;
        ULONG n = 0;
        for (; n < count && mAt < mNames.size(); ++n, ++mAt) {
            std::u16string const &name = mNames[mAt];
            names[n] = static_cast<char16_t *>(CopyOut(name.c_str(), (name.size() + 1) * sizeof(char16_t)));
        }
        if (done) *done = n;
        return n == count ? S_OK : S_FALSE;
    }
    HRESULT Skip(ULONG count) override {
        mAt = std::min(mNames.size(), mAt + count);
        return mAt < mNames.size() ? S_OK : S_FALSE;
    }
    HRESULT Reset() override {
        mAt = 0;
        return S_OK;
    }
    HRESULT Clone(IEnumString **out) override {
        auto *copy = new name_list(mNames);
        copy->mAt = mAt;
        return HandOut(copy, out);
    }

private:
    std::vector<std::u16string> mNames;
    std::size_t mAt = 0;
};

template <typename Top, typename... Bases>
class query : public com_object<Top, Bases...> {
public:
    query(std::shared_ptr<metadata const> data, GUID const &format, level at)
        : mData(std::move(data)), mFormat(format), mLevel(at) {}

    HRESULT GetContainerFormat(GUID *format) override {
        if (!format) return E_INVALIDARG;
        *format = mFormat;
        return S_OK;
    }
    HRESULT GetLocation(UINT max, char16_t *location, UINT *length) override {
        if (!length) return E_INVALIDARG;
        std::u16string where = Location(mLevel);
        *length = UINT(where.size() + 1);
        if (!location) return S_OK;
        if (max < *length) return kMoreData;
        std::memcpy(location, where.c_str(), *length * sizeof(char16_t));
        return S_OK;
    }
    HRESULT GetMetadataByName(char16_t const *name, PROPVARIANT *value) override {
        if (!value) return E_INVALIDARG;
        PropVariantInit(value);
        target t;
        if (!Resolve(mLevel, name, t)) return WINCODEC_ERR_PROPERTYNOTFOUND;
        exif::block const &b = mData->mBlock;
        switch (t.mKind) {
        case target::directory:
            if (!Has(t.mLevel)) return WINCODEC_ERR_PROPERTYNOTFOUND;
            value->punkVal = NewReader(mData, mFormat, t.mLevel);
            value->vt = VT_UNKNOWN;
            return S_OK;
        case target::thumbnail: {
            if (b.Thumbnail().empty()) return WINCODEC_ERR_PROPERTYNOTFOUND;
            field whole{exif::kUndefined, std::uint32_t(b.Thumbnail().size()), b.Thumbnail()};
            return ToValue(whole, value);
        }
        case target::padding:
            if (!mData->mPadding.count(IfdOf(t.mLevel))) return WINCODEC_ERR_PROPERTYNOTFOUND;
            value->vt = VT_UI4;
            value->ulVal = 4096;
            return S_OK;
        case target::tag: break;
        }
        field const *f = b.Find(IfdOf(t.mLevel), t.mTag);
        return f ? ToValue(*f, value) : WINCODEC_ERR_PROPERTYNOTFOUND;
    }
    HRESULT GetEnumerator(IEnumString **names) override { return HandOut(new name_list(Names()), names); }

    static IWICMetadataQueryReader *NewReader(std::shared_ptr<metadata const> data, GUID const &format, level at);

protected:
    bool Has(level l) const {
        exif::block const &b = mData->mBlock;
        switch (l) {
        case level::root: return true;
        case level::app1: return !b.IsEmpty();
        case level::ifd0: return !b.Tags(exif::kIfd0).empty() || Has(level::exif);
        case level::exif: return !b.Tags(exif::kExifIfd).empty();
        case level::ifd1: return !b.Tags(exif::kIfd1).empty() || !b.Thumbnail().empty();
        }
        return false;
    }
    std::vector<std::u16string> Names() const {
        std::vector<std::u16string> names;
        switch (mLevel) {
        case level::root:
            if (Has(level::app1)) names.push_back(u"/app1");
            return names;
        case level::app1:
            if (Has(level::ifd0)) names.push_back(u"/{ushort=0}");
            if (Has(level::ifd1)) names.push_back(u"/{ushort=1}");
            return names;
        default: break;
        }
        for (std::uint16_t tag : mData->mBlock.Tags(IfdOf(mLevel))) names.push_back(TagName(tag));
        if (mLevel == level::ifd0 && Has(level::exif)) names.push_back(TagName(exif::kExifIfd));
        if (mLevel == level::ifd1 && !mData->mBlock.Thumbnail().empty()) names.push_back(u"/{}");
        return names;
    }

    std::shared_ptr<metadata const> mData;
    GUID mFormat;
    level mLevel;
};

using reader = query<IWICMetadataQueryReader>;

template <typename Top, typename... Bases>
IWICMetadataQueryReader *query<Top, Bases...>::NewReader(std::shared_ptr<metadata const> data, GUID const &format,
                                                        level at) {
    return new reader(std::move(data), format, at);
}

class writer final : public query<IWICMetadataQueryWriter, IWICMetadataQueryReader> {
public:
    writer(std::shared_ptr<metadata> data, GUID const &format)
        : query(data, format, level::root), mWritable(std::move(data)) {}

    HRESULT SetMetadataByName(char16_t const *name, PROPVARIANT const *value) override {
        target t;
        if (!value || !Resolve(mLevel, name, t) || !IsIfd(t.mLevel)) return WINCODEC_ERR_INVALIDQUERYREQUEST;
        field f;
        switch (t.mKind) {
        case target::directory: return WINCODEC_ERR_INVALIDQUERYREQUEST;
        case target::padding:
            if (value->vt != VT_UI4) return E_INVALIDARG;
            mWritable->mPadding.insert(IfdOf(t.mLevel));
            return S_OK;
        case target::thumbnail:
            if (value->vt != VT_BLOB || !ToField(*value, f)) return E_INVALIDARG;
            mWritable->mBlock.Thumbnail(std::move(f.mData));
            return S_OK;
        case target::tag: break;
        }
        if (!ToField(*value, f)) return E_INVALIDARG;
        mWritable->mBlock.Set(IfdOf(t.mLevel), t.mTag, f.mType, f.mCount, std::move(f.mData));
        return S_OK;
    }
    HRESULT RemoveMetadataByName(char16_t const *name) override {
        target t;
        if (!Resolve(mLevel, name, t) || !IsIfd(t.mLevel)) return WINCODEC_ERR_INVALIDQUERYREQUEST;
        switch (t.mKind) {
        case target::directory: return WINCODEC_ERR_INVALIDQUERYREQUEST;
        case target::padding:
            return mWritable->mPadding.erase(IfdOf(t.mLevel)) ? S_OK : WINCODEC_ERR_PROPERTYNOTFOUND;
        case target::thumbnail:
            if (mWritable->mBlock.Thumbnail().empty()) return WINCODEC_ERR_PROPERTYNOTFOUND;
            mWritable->mBlock.Thumbnail(std::string());
            return S_OK;
        case target::tag: break;
        }
        return mWritable->mBlock.Remove(IfdOf(t.mLevel), t.mTag) ? S_OK : WINCODEC_ERR_PROPERTYNOTFOUND;
    }

private:
    std::shared_ptr<metadata> mWritable;
};

}  // namespace

IWICMetadataQueryReader *NewReader(std::shared_ptr<metadata const> data, GUID const &format) {
    return new reader(std::move(data), format, level::root);
}

IWICMetadataQueryWriter *NewWriter(std::shared_ptr<metadata> data, GUID const &format) {
    return new writer(std::move(data), format);
}

}  // namespace qor::tools::platform::wic
