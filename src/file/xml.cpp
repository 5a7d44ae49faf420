#include "qor/tools/file/xml.h"

#include <string>

#include "platform/file_io.h"
#include "platform/xml_document.h"
#include "qor/tools/exception.h"
#include "qor/tools/file/operations.h"
#include "qor/tools/platform/types.h"
#include "qor/tools/string_converter.h"
#include "utf8.h"

namespace qor::tools::file {

namespace {

bool IsSpace(char16_t c) { return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n'; }

string Trim(std::u16string const &s) {
    std::size_t first = 0, last = s.size();
    while (first < last && IsSpace(s[first])) ++first;
    while (last > first && IsSpace(s[last - 1])) --last;
    return string(std::u16string_view(s).substr(first, last - first));
}

[[noreturn]] void RaisePointer() { throw exception(int(E_POINTER), u"xml E_POINTER"); }

// Runs a guarded operation: any failure, of any type, is the answer false.
template <typename F>
bool Guard(F &&f) noexcept {
    try {
        return f();
    } catch (...) {
        return false;
    }
}

}  // namespace

xml::xml() = default;

xml::xml(char16_t const *path) { xml::Load(path); }

xml::xml(xml const &other)
    : mPath(other.mPath), mCurrentNode(other.mCurrentNode), mBackupNode(other.mBackupNode), mModified(other.mModified) {
    _Share(other.mDocument);
}

xml &xml::operator=(xml const &other) {
    if (this == &other) return *this;
    mPath = other.mPath;
    mModified = other.mModified;
    // The cursors change first: the old document may free what they held.
    mCurrentNode = other.mCurrentNode;
    mBackupNode = other.mBackupNode;
    if (mDocument != other.mDocument) _Share(other.mDocument);
    return *this;
}

xml::~xml() {
    mCurrentNode = mBackupNode = nullptr;
    _Share(nullptr);
}

void xml::_Share(std::shared_ptr<platform::xml_document> const &document) {
    if (mDocument) {
        mDocument->Detach(&mCurrentNode);
        mDocument->Detach(&mBackupNode);
    }
    mDocument = document;
    if (mDocument) {
        mDocument->Attach(&mCurrentNode);
        mDocument->Attach(&mBackupNode);
    }
}

bool xml::Initialize() {
    if (!mDocument) _Share(std::make_shared<platform::xml_document>());
    return mDocument != nullptr;
}

bool xml::Load(char16_t const *path) {
    mPath = path;
    return Guard([&] {
        Initialize();
        std::string bytes;
        bool read = platform::ReadFile(path, bytes);
        return mDocument->Parse(read ? bytes : std::string()) && read;
    });
}

bool xml::_LoadText(char16_t const *text) {
    return Guard([&] {
        Initialize();
        std::string bytes;
        if (text) detail::Utf16ToUtf8(text, std::size_t(string::Length(text)), bytes);
        return mDocument->Parse(bytes, "UTF-8");
    });
}

string xml::_Text() const {
    if (!mDocument) RaisePointer();
    std::string bytes = mDocument->Serialize(false);
    std::u16string text;
    detail::Utf8ToUtf16(bytes.data(), bytes.size(), text);
    return string(text);
}

bool xml::Save(char16_t const *path) {
    if (!mModified) return true;
    if (path) mPath = path;
    bool saved = Guard([&] {
        _ClearReadOnly(mPath);
        if (!mDocument) return false;
        std::string text = mDocument->Serialize(true);
        if (text.empty()) return false;  // no root element: the file would not load again
        platform::replacement_file out;
        return out.Open(mPath) && out.Write(text.data(), text.size()) && out.Commit();
    });
    mModified = !saved;
    return saved;
}

// ---------------------------------------------------------------- cursor

bool xml::SelectNode(char16_t const *query) {
    if (!query) return false;
    return Guard([&] {
        if (!mDocument) return false;
        mCurrentNode = nullptr;
        mCurrentNode = mDocument->Select(query);
        return mCurrentNode != nullptr;
    });
}

bool xml::_Move(void *target) {
    if (!target) return false;
    mCurrentNode = target;
    return true;
}

bool xml::MoveParentNode() { return mCurrentNode && _Move(mDocument->Parent(mCurrentNode)); }
bool xml::MoveFirstChild() { return mCurrentNode && _Move(mDocument->FirstChild(mCurrentNode)); }
bool xml::MoveLastChild() { return mCurrentNode && _Move(mDocument->LastChild(mCurrentNode)); }
bool xml::MovePreviousSibling() { return mCurrentNode && _Move(mDocument->Previous(mCurrentNode)); }
bool xml::MoveNextSibling() { return mCurrentNode && _Move(mDocument->Next(mCurrentNode)); }

// ---------------------------------------------------------------- reading

bool xml::GetCurrentNodeElementName(string &name) {
    name.Empty();
    return Guard([&] {
        if (!mCurrentNode) return false;
        name = mDocument->Name(mCurrentNode);
        return true;
    });
}

bool xml::GetCurrentNodeText(string &text) {
    text.Empty();
    return Guard([&] {
        if (!mCurrentNode) return false;
        text = Trim(mDocument->Text(mCurrentNode));
        _Unescape(text);
        return true;
    });
}

bool xml::GetCurrentNodeAttrValue(char16_t const *name, string &value) {
    value.Empty();
    return Guard([&] {
        std::u16string found;
        if (!mCurrentNode || !mDocument->Attribute(mCurrentNode, name, found)) return false;
        value = found;
        _Unescape(value);
        return true;
    });
}

bool xml::GetCurrentNodeAttrValue(char16_t const *name, int &value) {
    string text;
    if (!GetCurrentNodeAttrValue(name, text)) return false;
    value = string::converter::Int(text, 10);
    return true;
}

bool xml::GetCurrentNodeAttrValue(char16_t const *name, bool &value) {
    string text;
    if (!GetCurrentNodeAttrValue(name, text)) return false;
    value = string::converter::Int(text, 10) != 0;
    return true;
}

bool xml::GetCurrentNodeAttrValue(char16_t const *name, double &value) {
    string text;
    if (!GetCurrentNodeAttrValue(name, text)) return false;
    value = string::converter::Real(text);
    return true;
}

bool xml::GetCurrentNodeAttrValue(char16_t const *name, float &value) {
    double d = 0;
    if (!GetCurrentNodeAttrValue(name, d)) return false;
    value = float(d);
    return true;
}

// ---------------------------------------------------------------- writing

bool xml::SetCurrentNodeText(char16_t const *text) {
    return Guard([&] {
        if (!mCurrentNode) return false;
        string escaped(text);
        _Escape(escaped);
        if (!mDocument->SetText(mCurrentNode, escaped.Safe())) return false;
        mModified = true;
        return true;
    });
}

bool xml::SetCurrentNodeAttrValue(char16_t const *name, char16_t const *value) {
    return Guard([&] {
        if (!mCurrentNode) return false;
        string escaped(value);
        _Escape(escaped);
        if (!mDocument->SetAttribute(mCurrentNode, name, escaped.Safe())) return false;
        mModified = true;
        return true;
    });
}

bool xml::SetCurrentNodeAttrValue(char16_t const *name, int value) {
    return SetCurrentNodeAttrValue(name, string::converter::Text(value));
}

bool xml::SetCurrentNodeAttrValue(char16_t const *name, double value, int digits) {
    return SetCurrentNodeAttrValue(name, string::converter::Text(value, digits));
}

// ---------------------------------------------------------------- shortcuts

string xml::String(char16_t const *query) {
    string text;
    if (SelectNode(query)) GetCurrentNodeText(text);
    return text;
}

int xml::Int(char16_t const *query) { return string::converter::Int(String(query), 10); }

double xml::Double(char16_t const *query) { return string::converter::Real(String(query)); }

void xml::String(char16_t const *query, char16_t const *value) {
    if (SelectNode(query)) SetCurrentNodeText(value);
}

void xml::Int(char16_t const *query, int value) { String(query, string::converter::Text(value)); }

void xml::Double(char16_t const *query, double value, int digits) {
    String(query, string::converter::Text(value, digits));
}

// ---------------------------------------------------------------- structure

bool xml::CreateElementCurrent(char16_t const *name, char16_t const *text, bool move) {
    if (!mDocument || !mCurrentNode) RaisePointer();
    void *element = mDocument->CreateElement(mCurrentNode, name, text);
    if (!element) return false;
    if (move) mCurrentNode = element;
    mModified = true;
    return true;
}

bool xml::CreateElement(char16_t const *query, char16_t const *name, char16_t const *text, bool move) {
    if (!SelectNode(query)) return false;
    return CreateElementCurrent(name, text, move);
}

bool xml::RemoveCurrentElement() {
    if (!mDocument || !mCurrentNode || !mDocument->Parent(mCurrentNode)) RaisePointer();
    // The cursor moves first, so that the removed node is freed at once
    // unless another cursor still stands in it.
    void *removed = mCurrentNode;
    mCurrentNode = mDocument->Parent(removed);
    void *parent = mDocument->Remove(removed);
    if (!parent) {
        mCurrentNode = removed;
        return false;
    }
    mModified = true;
    return true;
}

bool xml::RemoveElement(char16_t const *query) {
    if (!SelectNode(query)) return false;
    return RemoveCurrentElement();
}

bool xml::CheckVersion(char16_t const *query, char16_t const *version) {
    SelectNode(query);
    string value;
    GetCurrentNodeAttrValue(u"VERSION", value);
    return value.Compare(version) == 0;
}

void xml::_Escape(string &text) {
    text.Replace(u"\r\n", u"[   ]", 0, string::kAll);
    text.Replace(u"\t", u"[___]", 0, string::kAll);
}

void xml::_Unescape(string &text) {
    text.Replace(u"[   ]", u"\r\n", 0, string::kAll);
    text.Replace(u"[___]", u"\t", 0, string::kAll);
}

}  // namespace qor::tools::file
