// The document object model behind file::xml, over libxml2.
//
// A tree of nodes that several cursors may stand in at once (copies of an
// xml object share one document). Each cursor is a `void *` that its owner
// registers with Attach; a node that leaves the tree, and a whole tree that a
// new load replaces, is freed as soon as no registered cursor stands in it,
// and kept until then, so that a cursor never points at freed memory and a
// document that is loaded again and again does not grow.
//
// Only nodes of the kinds a cursor can work on are ever handed out: the
// document, elements, attributes, text, CDATA sections, comments and
// processing instructions. Document types, entity references and the
// namespace nodes of XPath (temporary copies) are passed over.
//
// Everything written keeps the document loadable: names must be XML names
// (with a declared prefix, and never a namespace declaration), characters that
// XML 1.0 cannot hold are refused, as are comments with "--", processing
// instructions with "?>" and CDATA sections with "]]>". Refused changes answer
// false and change nothing.
#pragma once

#include <string>
#include <vector>

namespace qor::tools::platform {

class xml_document {
public:
    using node = void *;

    xml_document();
    xml_document(xml_document const &) = delete;
    xml_document &operator=(xml_document const &) = delete;
    ~xml_document();

    // Replaces the tree by the one parsed from `bytes` (no network, no
    // external entities); false when they do not parse, and the tree is then
    // an empty document.
    bool Parse(std::string const &bytes, char const *encoding = nullptr);
    // The document as UTF-8 text with its declaration, indented or not; empty
    // when it has no root element (such a text would not load again).
    std::string Serialize(bool indent) const;

    // Registers a cursor whose node must stay alive while it stands there.
    void Attach(node *cursor);
    void Detach(node *cursor);

    node Document() const;
    // The first node that an XPath 1.0 expression finds from the document, or null.
    node Select(char16_t const *query) const;
    node Parent(node n) const;
    node FirstChild(node n) const;
    node LastChild(node n) const;
    node Previous(node n) const;
    node Next(node n) const;

    // "#document", "#text", "#cdata-section", "#comment", or the qualified name.
    std::u16string Name(node n) const;
    // The concatenated text of the node and its descendants.
    std::u16string Text(node n) const;
    bool Attribute(node element, char16_t const *name, std::u16string &value) const;

    // Sets an element's text (replacing its children), an attribute's value,
    // or the content of a text, CDATA, comment or processing instruction.
    bool SetText(node n, char16_t const *text);
    bool SetAttribute(node element, char16_t const *name, char16_t const *value);
    // Appends a new element (with `text` as its content) to an element, or as
    // the root to a document that has none; null when that cannot be.
    node CreateElement(node parent, char16_t const *name, char16_t const *text);
    // Takes the node out of the tree; its parent, or null when the node is the
    // document or its root element (a document needs its root).
    node Remove(node n);

private:
    void _Release(node subtree);
    void _ReleaseChildren(node n);
    void _Sweep();
    bool _IsHeld(node subtree) const;
    bool _IsHeldDocument(void *doc) const;

    void *mDoc;
    std::vector<node *> mCursors;
    std::vector<node> mDetached;   // subtrees out of the tree that a cursor stands in
    std::vector<void *> mRetired;  // replaced trees that a cursor stands in
};

}  // namespace qor::tools::platform
