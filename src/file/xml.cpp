#include "qor/tools/file/xml.h"

#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlerror.h>
#include <libxml/xpath.h>

#include <cstdio>
#include <string>
#include <vector>

#include "platform/file_io.h"
#include "qor/tools/exception.h"
#include "qor/tools/file/operations.h"
#include "qor/tools/platform/types.h"
#include "qor/tools/string_converter.h"
#include "utf8.h"

namespace qor::tools::file {

namespace {

constexpr int kParseOptions = XML_PARSE_NOBLANKS | XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING |
                              XML_PARSE_NODICT;

void Silent(void *, char const *, ...) {}
void SilentStructured(void *, xmlErrorPtr) {}

// libxml2 is initialised once, and its error reports are silenced per thread.
void Quiet() {
    static bool initialised = [] {
        xmlInitParser();
        return true;
    }();
    (void)initialised;
    xmlSetGenericErrorFunc(nullptr, Silent);
    xmlSetStructuredErrorFunc(nullptr, SilentStructured);
}

std::string Utf8(char16_t const *s) {
    std::string out;
    if (s) detail::Utf16ToUtf8(s, std::size_t(string::Length(s)), out);
    return out;
}

string Wide(xmlChar const *s) {
    if (!s) return string();
    std::u16string out;
    auto const *p = reinterpret_cast<char const *>(s);
    detail::Utf8ToUtf16(p, std::char_traits<char>::length(p), out);
    return string(out.c_str());
}

xmlChar const *X(std::string const &s) { return reinterpret_cast<xmlChar const *>(s.c_str()); }

xmlNodePtr Node(void *p) { return static_cast<xmlNodePtr>(p); }

bool IsSpace(char16_t c) { return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n'; }

string Trim(string const &s) {
    int n = s.Length(), first = 0, last = n;
    while (first < n && IsSpace(s[first])) ++first;
    while (last > first && IsSpace(s[last - 1])) --last;
    return s.Mid(first, last - first);
}

[[noreturn]] void RaisePointer() { throw exception(int(E_POINTER), u"xml E_POINTER"); }

// Runs a guarded operation: any failure, of any type, is the answer false.
template <typename F>
bool Guard(F &&f) noexcept {
    try {
        Quiet();
        return f();
    } catch (...) {
        return false;
    }
}

}  // namespace

// The document with everything that must outlive a change of it: nodes taken
// out of the tree (a cursor may still stand on them) and replaced documents.
struct xml::document {
    document() : mDoc(xmlNewDoc(BAD_CAST "1.0")) {}
    document(document const &) = delete;
    document &operator=(document const &) = delete;
    ~document() {
        for (xmlNodePtr n : mRemoved) xmlFreeNode(n);
        for (xmlDocPtr d : mRetired) xmlFreeDoc(d);
        xmlFreeDoc(mDoc);
    }
    void Replace(xmlDocPtr doc) {
        mRetired.push_back(mDoc);
        mDoc = doc;
    }
    void Remove(xmlNodePtr n) {
        xmlUnlinkNode(n);
        mRemoved.push_back(n);
    }

    xmlDocPtr mDoc;
    std::vector<xmlDocPtr> mRetired;
    std::vector<xmlNodePtr> mRemoved;
};

xml::xml() = default;

xml::xml(char16_t const *path) { xml::Load(path); }

xml::~xml() = default;

bool xml::Initialize() {
    Quiet();
    if (!mDocument) mDocument = std::make_shared<document>();
    return mDocument && mDocument->mDoc;
}

bool xml::Load(char16_t const *path) {
    mPath = path;
    return Guard([&] {
        Initialize();
        std::string bytes;
        xmlDocPtr doc = nullptr;
        if (platform::ReadFile(path, bytes)) doc = xmlReadMemory(bytes.data(), int(bytes.size()), nullptr, nullptr, kParseOptions);
        mDocument->Replace(doc ? doc : xmlNewDoc(BAD_CAST "1.0"));
        return doc != nullptr;
    });
}

bool xml::_LoadText(char16_t const *text) {
    return Guard([&] {
        Initialize();
        std::string bytes = Utf8(text);
        xmlDocPtr doc = xmlReadMemory(bytes.data(), int(bytes.size()), nullptr, "UTF-8", kParseOptions);
        if (!doc) return false;
        mDocument->Replace(doc);
        return true;
    });
}

string xml::_Text() const {
    if (!mDocument) RaisePointer();
    xmlChar *memory = nullptr;
    int size = 0;
    xmlDocDumpMemoryEnc(mDocument->mDoc, &memory, &size, "UTF-8");
    string text = Wide(memory);
    xmlFree(memory);
    return text;
}

bool xml::Save(char16_t const *path) {
    if (!mModified) return true;
    if (path) mPath = path;
    bool saved = Guard([&] {
        _ClearReadOnly(mPath);
        if (!mDocument) return false;
        xmlChar *memory = nullptr;
        int size = 0;
        xmlDocDumpFormatMemoryEnc(mDocument->mDoc, &memory, &size, "UTF-8", 1);
        if (!memory) return false;
        // Written beside the target and renamed over it: a failure leaves the old file whole.
        std::string target = platform::PathBytes(mPath);
        std::string temporary = target + ".qor-saving";
        std::u16string wideTemporary = Wide(BAD_CAST temporary.c_str()).Safe();
        platform::output_file out;
        bool ok = out.Open(wideTemporary.c_str()) && out.Write(memory, std::size_t(size)) && out.Close();
        xmlFree(memory);
        if (ok) ok = std::rename(temporary.c_str(), target.c_str()) == 0;
        if (!ok) std::remove(temporary.c_str());
        return ok;
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
        xmlXPathContextPtr context = xmlXPathNewContext(mDocument->mDoc);
        if (!context) return false;
        context->node = reinterpret_cast<xmlNodePtr>(mDocument->mDoc);
        xmlXPathObjectPtr result = xmlXPathEvalExpression(X(Utf8(query)), context);
        if (result && result->type == XPATH_NODESET && result->nodesetval && result->nodesetval->nodeNr > 0) {
            mCurrentNode = result->nodesetval->nodeTab[0];
        }
        xmlXPathFreeObject(result);
        xmlXPathFreeContext(context);
        return mCurrentNode != nullptr;
    });
}

bool xml::_Move(void *target) {
    if (!target) return false;
    mCurrentNode = target;
    return true;
}

bool xml::MoveParentNode() { return mCurrentNode && _Move(Node(mCurrentNode)->parent); }
bool xml::MoveFirstChild() { return mCurrentNode && _Move(Node(mCurrentNode)->children); }
bool xml::MoveLastChild() { return mCurrentNode && _Move(Node(mCurrentNode)->last); }
bool xml::MovePreviousSibling() { return mCurrentNode && _Move(Node(mCurrentNode)->prev); }
bool xml::MoveNextSibling() { return mCurrentNode && _Move(Node(mCurrentNode)->next); }

// ---------------------------------------------------------------- reading

bool xml::GetCurrentNodeElementName(string &name) {
    name.Empty();
    return Guard([&] {
        xmlNodePtr n = Node(mCurrentNode);
        if (!n) return false;
        switch (n->type) {
            case XML_DOCUMENT_NODE: name = u"#document"; break;
            case XML_TEXT_NODE: name = u"#text"; break;
            case XML_CDATA_SECTION_NODE: name = u"#cdata-section"; break;
            case XML_COMMENT_NODE: name = u"#comment"; break;
            default:
                name = (n->ns && n->ns->prefix) ? Wide(n->ns->prefix) + u":" + Wide(n->name) : Wide(n->name);
                break;
        }
        return true;
    });
}

bool xml::GetCurrentNodeText(string &text) {
    text.Empty();
    return Guard([&] {
        xmlNodePtr n = Node(mCurrentNode);
        if (!n) return false;
        xmlChar *content = xmlNodeGetContent(n);
        text = Trim(Wide(content));
        xmlFree(content);
        _Unescape(text);
        return true;
    });
}

bool xml::GetCurrentNodeAttrValue(char16_t const *name, string &value) {
    value.Empty();
    return Guard([&] {
        xmlNodePtr n = Node(mCurrentNode);
        if (!n || n->type != XML_ELEMENT_NODE) return false;
        std::string key = Utf8(name);
        if (!xmlHasProp(n, X(key))) return false;
        xmlChar *v = xmlGetProp(n, X(key));
        value = Wide(v);
        xmlFree(v);
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
        xmlNodePtr n = Node(mCurrentNode);
        if (!n || !mDocument) return false;
        string escaped(text);
        _Escape(escaped);
        std::string bytes = Utf8(escaped.Safe());
        if (n->type == XML_ELEMENT_NODE || n->type == XML_DOCUMENT_NODE) {
            while (n->children) mDocument->Remove(n->children);
            if (!bytes.empty()) xmlAddChild(n, xmlNewDocText(mDocument->mDoc, X(bytes)));
        } else {
            xmlNodeSetContent(n, nullptr);
            xmlNodeAddContent(n, X(bytes));
        }
        mModified = true;
        return true;
    });
}

bool xml::SetCurrentNodeAttrValue(char16_t const *name, char16_t const *value) {
    return Guard([&] {
        xmlNodePtr n = Node(mCurrentNode);
        if (!n || n->type != XML_ELEMENT_NODE) return false;
        string escaped(value);
        _Escape(escaped);
        if (!xmlSetProp(n, X(Utf8(name)), X(Utf8(escaped.Safe())))) return false;
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
    Quiet();
    xmlNodePtr parent = Node(mCurrentNode);
    if (!mDocument || !parent) RaisePointer();
    std::string tag = Utf8(name);
    if (tag.empty() || xmlValidateName(X(tag), 0) != 0) return false;
    if (parent->type == XML_DOCUMENT_NODE && xmlDocGetRootElement(mDocument->mDoc)) return false;
    xmlNodePtr element = xmlNewDocNode(mDocument->mDoc, nullptr, X(tag), nullptr);
    if (!element) return false;
    xmlAddChild(parent, element);
    std::string content = Utf8(text);
    if (!content.empty()) xmlAddChild(element, xmlNewDocText(mDocument->mDoc, X(content)));
    if (move) mCurrentNode = element;
    mModified = true;
    return true;
}

bool xml::CreateElement(char16_t const *query, char16_t const *name, char16_t const *text, bool move) {
    if (!SelectNode(query)) return false;
    return CreateElementCurrent(name, text, move);
}

bool xml::RemoveCurrentElement() {
    xmlNodePtr n = Node(mCurrentNode);
    if (!mDocument || !n || !n->parent) RaisePointer();
    xmlNodePtr parent = n->parent;
    mDocument->Remove(n);
    mCurrentNode = parent;
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
