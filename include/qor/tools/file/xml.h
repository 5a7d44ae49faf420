// file::xml: a cursor-style front end to an XML document. Select a node by an
// XPath 1.0 expression from the document root (or walk from node to node),
// then read or write that node's text and attributes. Values pass through a
// two-rule escape: CR LF <-> "[   ]" and TAB <-> "[___]". The document is
// written (indented UTF-8 with a declaration) only when it was modified.
//
//   file::xml doc(u"settings.xml");
//   int width = doc.Int(u"/settings/window/width");
//   doc.Int(u"/settings/window/width", 1024);
//   doc.Save(nullptr);
//
// The guarded operations answer false on any failure. The unguarded ones
// (CreateElementCurrent, CreateElement, RemoveCurrentElement, RemoveElement)
// throw qor::tools::exception with mCode E_POINTER and the text "xml E_POINTER"
// when there is no document or no cursor. Copies share the document.
//
// Whatever node the cursor stands on, every operation either does what it
// says or answers false, and everything Save writes loads again: names must
// be XML names, characters that XML 1.0 cannot hold (U+0001 and the like) are
// refused rather than written, the root element cannot be removed, and a
// document without a root element is not saved. Save writes through a
// temporary file renamed over the target (permission bits and owner kept, a
// symbolic link written through).
#pragma once

#include "qor/tools/export.h"

#include <memory>

#include "qor/tools/string.h"

namespace qor::tools::platform {
class xml_document;
}

namespace qor::tools::file {

class QOR_TOOLS_API xml {
public:
    // No document yet, or the document loaded from `path`.
    xml();
    explicit xml(char16_t const *path);
    // Copies share the document, each with a cursor of its own.
    xml(xml const &other);
    xml &operator=(xml const &other);
    virtual ~xml();

    // Makes an empty document when there is none; loads one; saves it to
    // `path` (null: where it came from) when modified. Update marks it
    // modified; Path is where it is saved. CreateCryptoXml makes an encrypted
    // document with the built-in password (the caller deletes it).
    bool Initialize();
    virtual bool Load(char16_t const *path);
    virtual bool Save(char16_t const *path);
    void Update() noexcept { mModified = true; }
    bool IsModified() const noexcept { return mModified; }
    string const &Path() const noexcept { return mPath; }
    static xml *CreateCryptoXml(char16_t const *path);

    // Moves the cursor: to the first node an XPath selects, or to a
    // neighbour; false (the cursor unmoved) when there is none. Backup and
    // Restore keep and bring back one position.
    bool SelectNode(char16_t const *query);
    bool MoveParentNode();
    bool MoveFirstChild();
    bool MoveLastChild();
    bool MovePreviousSibling();
    bool MoveNextSibling();
    void BackupCurrentNode() noexcept { mBackupNode = mCurrentNode; }
    void RestoreCurrentNode() noexcept { mCurrentNode = mBackupNode; }

    // The cursor's node: its name, its text and its attributes read
    // (unescaped) or written (escaped); false when there is no such node or
    // attribute, or the value cannot be stored.
    bool GetCurrentNodeElementName(string &name);
    bool GetCurrentNodeText(string &text);
    bool GetCurrentNodeAttrValue(char16_t const *name, string &value);
    bool GetCurrentNodeAttrValue(char16_t const *name, int &value);
    bool GetCurrentNodeAttrValue(char16_t const *name, bool &value);
    bool GetCurrentNodeAttrValue(char16_t const *name, double &value);
    bool GetCurrentNodeAttrValue(char16_t const *name, float &value);
    bool SetCurrentNodeText(char16_t const *text);
    bool SetCurrentNodeAttrValue(char16_t const *name, char16_t const *value);
    bool SetCurrentNodeAttrValue(char16_t const *name, int value);
    bool SetCurrentNodeAttrValue(char16_t const *name, double value, int digits);

    // The text of the node an XPath selects (empty, 0 when none), or a new
    // text for it (nothing when there is none); numbers through the string
    // converter, doubles with `digits` decimals.
    string String(char16_t const *query);
    int Int(char16_t const *query);
    double Double(char16_t const *query);
    void String(char16_t const *query, char16_t const *value);
    void Int(char16_t const *query, int value);
    void Double(char16_t const *query, double value, int digits);

    // Adds an element (with a text) under the cursor's node or the node an
    // XPath selects, moving the cursor to it when `move`; removes the
    // cursor's element or a selected one. These throw exception("xml
    // E_POINTER") without a document or cursor. CheckVersion: whether the
    // selected node's VERSION attribute is `version`.
    bool CreateElementCurrent(char16_t const *name, char16_t const *text, bool move);
    bool CreateElement(char16_t const *query, char16_t const *name, char16_t const *text, bool move);
    bool RemoveCurrentElement();
    bool RemoveElement(char16_t const *query);
    bool CheckVersion(char16_t const *query, char16_t const *version);

    // The document's whole text (UTF-8 declaration included), for CryptoXml;
    // empty when the document has no root element.
    string _Text() const;
    // Replaces the document with one parsed from text; false if it does not parse.
    bool _LoadText(char16_t const *text);

protected:
    void _Escape(string &text);
    void _Unescape(string &text);

    string mPath;
    std::shared_ptr<platform::xml_document> mDocument;
    void *mCurrentNode = nullptr;
    void *mBackupNode = nullptr;
    bool mModified = false;

private:
    bool _Move(void *target);
    QOR_TOOLS_LOCAL void _Share(std::shared_ptr<platform::xml_document> const &document);
};

}  // namespace qor::tools::file
