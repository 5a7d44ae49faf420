#include "xml_document.h"

#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/valid.h>
#include <libxml/xmlerror.h>
#include <libxml/xpath.h>

#include <algorithm>
#include <cstring>

#include "../utf8.h"

namespace qor::tools::platform {

namespace {

constexpr int kParseOptions = XML_PARSE_NOBLANKS | XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING |
                              XML_PARSE_NODICT;

// Entity references are kept as such in the tree; reading a node's text
// expands them, up to this many bytes and nodes visited, so that a document
// of nested entities cannot make a read take all memory or time.
constexpr std::size_t kTextLimit = std::size_t(64) << 20;
constexpr std::size_t kVisitLimit = std::size_t(16) << 20;

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

xmlNodePtr N(void *p) { return static_cast<xmlNodePtr>(p); }
xmlDocPtr D(void *p) { return static_cast<xmlDocPtr>(p); }
xmlChar const *X(std::string const &s) { return reinterpret_cast<xmlChar const *>(s.c_str()); }

std::string Utf8(char16_t const *s) { return s ? detail::ToUtf8(s) : std::string(); }

std::u16string Wide(xmlChar const *s) { return s ? detail::ToUtf16(reinterpret_cast<char const *>(s)) : u""; }

// The kinds of node a cursor may stand on.
bool IsWorkable(xmlNodePtr n) {
    if (!n) return false;
    switch (n->type) {
        case XML_DOCUMENT_NODE:
        case XML_ELEMENT_NODE:
        case XML_ATTRIBUTE_NODE:
        case XML_TEXT_NODE:
        case XML_CDATA_SECTION_NODE:
        case XML_COMMENT_NODE:
        case XML_PI_NODE: return true;
        default: return false;
    }
}

// Steps from `n` in one direction until a workable node.
xmlNodePtr Skip(xmlNodePtr n, bool forward) {
    while (n && !IsWorkable(n)) n = forward ? n->next : n->prev;
    return n;
}

// Whether every character can stand in an XML 1.0 document. Unpaired
// surrogates are fine: they are written as U+FFFD.
bool IsXmlText(char16_t const *s) {
    for (; s && *s; ++s) {
        char16_t c = *s;
        if (c < 0x20 && c != u'\t' && c != u'\n' && c != u'\r') return false;
        if (c == 0xFFFE || c == 0xFFFF) return false;
    }
    return true;
}

bool IsNcName(std::string const &s) { return !s.empty() && xmlValidateNCName(X(s), 0) == 0; }

// A qualified name split at its colon, with the namespace its prefix declares
// in scope at `context`. False for anything that is not a name, for an
// undeclared prefix, and for namespace declarations ("xmlns", "xmlns:x").
bool ResolveName(xmlDocPtr doc, xmlNodePtr context, char16_t const *name, std::string &local, xmlNsPtr &ns) {
    std::string qname = Utf8(name);
    ns = nullptr;
    std::size_t colon = qname.find(':');
    if (colon == std::string::npos) {
        local = qname;
        return IsNcName(local) && local != "xmlns";
    }
    std::string prefix = qname.substr(0, colon);
    local = qname.substr(colon + 1);
    if (!IsNcName(prefix) || !IsNcName(local) || prefix == "xmlns") return false;
    ns = xmlSearchNs(doc, context, X(prefix));
    return ns != nullptr;
}

// The text of a subtree as the DOM gives it: text and CDATA of all
// descendants in order, entity references expanded.
void CollectText(xmlNodePtr n, std::string &out) {
    std::vector<xmlNodePtr> pending{n};
    for (std::size_t visits = 0; !pending.empty() && out.size() < kTextLimit && visits < kVisitLimit; ++visits) {
        xmlNodePtr at = pending.back();
        pending.pop_back();
        switch (at->type) {
            case XML_TEXT_NODE:
            case XML_CDATA_SECTION_NODE:
                if (at->content) out += reinterpret_cast<char const *>(at->content);
                continue;
            case XML_COMMENT_NODE:
            case XML_PI_NODE:
                if (at == n && at->content) out += reinterpret_cast<char const *>(at->content);
                continue;
            case XML_ENTITY_REF_NODE: {
                xmlEntityPtr entity = xmlGetDocEntity(at->doc, at->name);
                if (entity) {
                    for (xmlNodePtr c = entity->last; c; c = c->prev) pending.push_back(c);
                }
                continue;
            }
            case XML_DOCUMENT_NODE:
            case XML_ELEMENT_NODE:
            case XML_ATTRIBUTE_NODE:
            case XML_ENTITY_DECL:
                for (xmlNodePtr c = at->last; c; c = c->prev) pending.push_back(c);
                continue;
            default: continue;
        }
    }
    if (out.size() > kTextLimit) out.resize(kTextLimit);
}

bool IsInside(xmlNodePtr n, xmlNodePtr root) {
    for (; n; n = n->parent) {
        if (n == root) return true;
    }
    return false;
}

}  // namespace

xml_document::xml_document() {
    Quiet();
    mDoc = xmlNewDoc(BAD_CAST "1.0");
}

xml_document::~xml_document() {
    // Detached subtrees first: freeing one may look at its document.
    for (node n : mDetached) xmlFreeNode(N(n));
    for (void *d : mRetired) xmlFreeDoc(D(d));
    xmlFreeDoc(D(mDoc));
}

bool xml_document::Parse(std::string const &bytes, char const *encoding) {
    Quiet();
    xmlDocPtr doc = xmlReadMemory(bytes.data(), int(bytes.size()), nullptr, encoding, kParseOptions);
    mRetired.push_back(mDoc);
    mDoc = doc ? doc : xmlNewDoc(BAD_CAST "1.0");
    _Sweep();
    return doc != nullptr;
}

std::string xml_document::Serialize(bool indent) const {
    Quiet();
    if (!xmlDocGetRootElement(D(mDoc))) return std::string();
    xmlChar *memory = nullptr;
    int size = 0;
    xmlDocDumpFormatMemoryEnc(D(mDoc), &memory, &size, "UTF-8", indent ? 1 : 0);
    std::string text = memory ? std::string(reinterpret_cast<char const *>(memory), std::size_t(size)) : std::string();
    xmlFree(memory);
    return text;
}

void xml_document::Attach(node *cursor) { mCursors.push_back(cursor); }

void xml_document::Detach(node *cursor) {
    mCursors.erase(std::remove(mCursors.begin(), mCursors.end(), cursor), mCursors.end());
    _Sweep();
}

// ---------------------------------------------------------------- walking

xml_document::node xml_document::Document() const { return mDoc; }

xml_document::node xml_document::Select(char16_t const *query) const {
    Quiet();
    xmlXPathContextPtr context = xmlXPathNewContext(D(mDoc));
    if (!context) return nullptr;
    context->node = N(mDoc);
    xmlXPathObjectPtr result = xmlXPathEvalExpression(X(Utf8(query)), context);
    xmlNodePtr found = nullptr;
    if (result && result->type == XPATH_NODESET && result->nodesetval) {
        // Namespace nodes in a node set are temporary copies: never handed out.
        for (int i = 0; i < result->nodesetval->nodeNr && !found; ++i) {
            xmlNodePtr n = result->nodesetval->nodeTab[i];
            if (IsWorkable(n)) found = n;
        }
    }
    xmlXPathFreeObject(result);
    xmlXPathFreeContext(context);
    return found;
}

xml_document::node xml_document::Parent(node n) const {
    xmlNodePtr p = N(n)->type == XML_DOCUMENT_NODE ? nullptr : N(n)->parent;
    return IsWorkable(p) ? p : nullptr;
}

xml_document::node xml_document::FirstChild(node n) const {
    xmlNodePtr at = N(n);
    if (at->type == XML_ATTRIBUTE_NODE) return Skip(reinterpret_cast<xmlAttrPtr>(at)->children, true);
    bool hasChildren = at->type == XML_DOCUMENT_NODE || at->type == XML_ELEMENT_NODE;
    return hasChildren ? Skip(at->children, true) : nullptr;
}

xml_document::node xml_document::LastChild(node n) const {
    xmlNodePtr at = N(n);
    if (at->type == XML_ATTRIBUTE_NODE) return Skip(reinterpret_cast<xmlAttrPtr>(at)->last, false);
    bool hasChildren = at->type == XML_DOCUMENT_NODE || at->type == XML_ELEMENT_NODE;
    return hasChildren ? Skip(at->last, false) : nullptr;
}

xml_document::node xml_document::Previous(node n) const {
    return N(n)->type == XML_DOCUMENT_NODE ? nullptr : Skip(N(n)->prev, false);
}

xml_document::node xml_document::Next(node n) const {
    return N(n)->type == XML_DOCUMENT_NODE ? nullptr : Skip(N(n)->next, true);
}

// ---------------------------------------------------------------- reading

std::u16string xml_document::Name(node n) const {
    xmlNodePtr at = N(n);
    switch (at->type) {
        case XML_DOCUMENT_NODE: return u"#document";
        case XML_TEXT_NODE: return u"#text";
        case XML_CDATA_SECTION_NODE: return u"#cdata-section";
        case XML_COMMENT_NODE: return u"#comment";
        default: break;
    }
    std::u16string name = Wide(at->name);
    if (at->ns && at->ns->prefix) name = Wide(at->ns->prefix) + u":" + name;
    return name;
}

std::u16string xml_document::Text(node n) const {
    std::string text;
    CollectText(N(n), text);
    std::u16string out;
    detail::Utf8ToUtf16(text.data(), text.size(), out);
    return out;
}

bool xml_document::Attribute(node element, char16_t const *name, std::u16string &value) const {
    xmlNodePtr at = N(element);
    if (at->type != XML_ELEMENT_NODE) return false;
    std::string local;
    xmlNsPtr ns = nullptr;
    if (!ResolveName(at->doc, at, name, local, ns)) return false;
    xmlChar *v = ns ? xmlGetNsProp(at, X(local), ns->href) : xmlGetNoNsProp(at, X(local));
    if (!v) return false;
    value = Wide(v);
    xmlFree(v);
    return true;
}

// ---------------------------------------------------------------- writing

bool xml_document::SetText(node n, char16_t const *text) {
    if (!IsXmlText(text)) return false;
    xmlNodePtr at = N(n);
    std::string content = Utf8(text);
    switch (at->type) {
        case XML_ELEMENT_NODE:
            _ReleaseChildren(at);
            if (!content.empty()) xmlAddChild(at, xmlNewDocText(at->doc, X(content)));
            return true;
        case XML_ATTRIBUTE_NODE: {
            auto *attribute = reinterpret_cast<xmlAttrPtr>(at);
            bool id = attribute->atype == XML_ATTRIBUTE_ID;
            if (id) xmlRemoveID(at->doc, attribute);
            _ReleaseChildren(at);
            if (!content.empty()) xmlAddChild(at, xmlNewDocText(at->doc, X(content)));
            if (id && attribute->parent) xmlAddID(nullptr, at->doc, X(content), attribute);
            return true;
        }
        case XML_CDATA_SECTION_NODE:
            if (content.find("]]>") != std::string::npos) return false;
            break;
        case XML_COMMENT_NODE:
            if (content.find("--") != std::string::npos || (!content.empty() && content.back() == '-')) return false;
            break;
        case XML_PI_NODE:
            if (content.find("?>") != std::string::npos) return false;
            break;
        case XML_TEXT_NODE: break;
        default: return false;
    }
    xmlNodeSetContent(at, X(content));
    return true;
}

bool xml_document::SetAttribute(node element, char16_t const *name, char16_t const *value) {
    xmlNodePtr at = N(element);
    std::string local;
    xmlNsPtr ns = nullptr;
    if (at->type != XML_ELEMENT_NODE || !IsXmlText(value) || !ResolveName(at->doc, at, name, local, ns)) return false;
    xmlAttrPtr existing = xmlHasNsProp(at, X(local), ns ? ns->href : nullptr);
    if (existing && existing->type == XML_ATTRIBUTE_NODE) {
        return SetText(existing, value);
    }
    return xmlNewNsProp(at, ns, X(local), X(Utf8(value))) != nullptr;
}

xml_document::node xml_document::CreateElement(node parent, char16_t const *name, char16_t const *text) {
    xmlNodePtr at = N(parent);
    bool fits = at->type == XML_ELEMENT_NODE || (at->type == XML_DOCUMENT_NODE && !xmlDocGetRootElement(D(at)));
    std::string local;
    xmlNsPtr ns = nullptr;
    xmlNodePtr scope = at->type == XML_ELEMENT_NODE ? at : nullptr;
    if (!fits || !IsXmlText(text) || !ResolveName(at->doc, scope, name, local, ns)) {
        return nullptr;
    }
    xmlNodePtr element = xmlNewDocNode(at->doc, ns, X(local), nullptr);
    if (!element) return nullptr;
    xmlAddChild(at, element);
    std::string content = Utf8(text);
    if (!content.empty()) xmlAddChild(element, xmlNewDocText(at->doc, X(content)));
    return element;
}

xml_document::node xml_document::Remove(node n) {
    xmlNodePtr at = N(n);
    xmlNodePtr parent = at->type == XML_DOCUMENT_NODE ? nullptr : at->parent;
    if (!parent || (parent->type == XML_DOCUMENT_NODE && at->type == XML_ELEMENT_NODE)) return nullptr;
    _Release(at);
    return parent;
}

// ---------------------------------------------------------------- freeing

void xml_document::_Release(node subtree) {
    xmlUnlinkNode(N(subtree));
    mDetached.push_back(subtree);
    _Sweep();
}

void xml_document::_ReleaseChildren(node n) {
    xmlNodePtr at = N(n);
    while (xmlNodePtr child = at->children) {
        xmlUnlinkNode(child);
        mDetached.push_back(child);
    }
    _Sweep();
}

bool xml_document::_IsHeld(node subtree) const {
    return std::any_of(mCursors.begin(), mCursors.end(),
                       [&](node *cursor) { return *cursor && IsInside(N(*cursor), N(subtree)); });
}

bool xml_document::_IsHeldDocument(void *doc) const {
    if (std::any_of(mCursors.begin(), mCursors.end(), [&](node *c) { return *c && N(*c)->doc == doc; })) return true;
    return std::any_of(mDetached.begin(), mDetached.end(), [&](node n) { return N(n)->doc == doc; });
}

void xml_document::_Sweep() {
    auto freed = std::remove_if(mDetached.begin(), mDetached.end(), [&](node n) {
        if (_IsHeld(n)) return false;
        xmlFreeNode(N(n));
        return true;
    });
    mDetached.erase(freed, mDetached.end());
    auto retired = std::remove_if(mRetired.begin(), mRetired.end(), [&](void *d) {
        if (_IsHeldDocument(d)) return false;
        xmlFreeDoc(D(d));
        return true;
    });
    mRetired.erase(retired, mRetired.end());
}

}  // namespace qor::tools::platform
