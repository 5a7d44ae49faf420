#include "qor/tools/file/xml.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "qor/tools/exception.h"
#include "support/as_user.h"
#include "support/file_limit.h"
#include "support/heap.h"
#include "support/temp_dir.h"

using namespace qor::tools;
using namespace qor::tools::testing;
using qor::tools::file::xml;

namespace {

class probe : public xml {
public:
    using xml::_Escape;
    using xml::_Unescape;
};

class Xml : public ::testing::Test {
protected:
    xml Sample() {
        mDir.Write("s.xml", "<?xml version=\"1.0\"?>\n<root VERSION=\"1.0\">\n\t<a n=\"5\" f=\"2.5\" t=\"true\">"
                            "  hello <b>world</b>  </a>\n\t<c/>\n</root>\n");
        xml doc;
        EXPECT_TRUE(doc.Load(mDir.Wide("s.xml").c_str()));
        return doc;
    }
    temp_dir mDir;
};

}  // namespace

TEST(XmlEscape, TwoRulesAndTheirAsymmetry) {
    probe p;
    string text(u"a\r\nb\tc");
    p._Escape(text);
    EXPECT_TRUE(text == u"a[   ]b[___]c");
    p._Unescape(text);
    EXPECT_TRUE(text == u"a\r\nb\tc");
    string lone(u"a\nb");
    p._Escape(lone);
    EXPECT_TRUE(lone == u"a\nb");
}

TEST_F(Xml, CursorWalk) {
    xml doc = Sample();
    ASSERT_TRUE(doc.SelectNode(u"/root/a"));
    string name, text;
    doc.GetCurrentNodeElementName(name);
    EXPECT_TRUE(name == u"a");
    doc.GetCurrentNodeText(text);
    EXPECT_TRUE(text == u"hello world");  // descendant text, trimmed
    EXPECT_TRUE(doc.MoveNextSibling());
    doc.GetCurrentNodeElementName(name);
    EXPECT_TRUE(name == u"c");
    EXPECT_FALSE(doc.MoveNextSibling());
    EXPECT_TRUE(doc.MovePreviousSibling());
    EXPECT_TRUE(doc.SelectNode(u"/root"));
    EXPECT_TRUE(doc.MoveLastChild());
    EXPECT_TRUE(doc.MoveParentNode());
    EXPECT_TRUE(doc.MoveParentNode());  // the document node
    doc.GetCurrentNodeElementName(name);
    EXPECT_TRUE(name == u"#document");
    EXPECT_FALSE(doc.MoveParentNode());
    doc.GetCurrentNodeElementName(name);
    EXPECT_TRUE(name == u"#document");  // the cursor stays

    doc.SelectNode(u"/root/a");
    doc.BackupCurrentNode();
    doc.SelectNode(u"/root/c");
    doc.RestoreCurrentNode();
    doc.GetCurrentNodeElementName(name);
    EXPECT_TRUE(name == u"a");
    EXPECT_FALSE(doc.SelectNode(u"/nothing"));
    EXPECT_FALSE(doc.SetCurrentNodeText(u"x"));  // no cursor after a failed select
    EXPECT_FALSE(doc.SelectNode(u"(("));           // a bad expression is only false
    xml other;
    other.BackupCurrentNode();
    other.RestoreCurrentNode();
    EXPECT_FALSE(other.SelectNode(u"/root"));
}

TEST_F(Xml, AttributesAndTypedReads) {
    xml doc = Sample();
    doc.SelectNode(u"/root/a");
    int n = 0;
    double f = 0;
    bool t = true;
    EXPECT_TRUE(doc.GetCurrentNodeAttrValue(u"n", n));
    EXPECT_EQ(n, 5);
    EXPECT_TRUE(doc.GetCurrentNodeAttrValue(u"f", f));
    EXPECT_EQ(f, 2.5);
    EXPECT_TRUE(doc.GetCurrentNodeAttrValue(u"t", t));
    EXPECT_FALSE(t);  // "true" reads as 0
    int kept = 77;
    EXPECT_FALSE(doc.GetCurrentNodeAttrValue(u"missing", kept));
    EXPECT_EQ(kept, 77);
    EXPECT_TRUE(doc.SetCurrentNodeAttrValue(u"n", 9));
    EXPECT_TRUE(doc.SetCurrentNodeAttrValue(u"d", 1.25, 1));
    string v;
    doc.GetCurrentNodeAttrValue(u"d", v);
    EXPECT_TRUE(v == u"1.2");
    EXPECT_TRUE(doc.CheckVersion(u"/root", u"1.0"));
    EXPECT_FALSE(doc.CheckVersion(u"/root", u"1.00"));
    EXPECT_TRUE(doc.CheckVersion(u"/root/c", nullptr));  // missing and null compare equal
}

TEST_F(Xml, SaveOnlyWhenModified) {
    xml doc = Sample();
    std::u16string out = mDir.Wide("out.xml");
    EXPECT_TRUE(doc.Save(out.c_str()));
    EXPECT_EQ(mDir.Read("out.xml"), "");  // not modified: nothing written
    doc.String(u"/root/a", u"line1\r\nline2\ttab");
    EXPECT_TRUE(doc.IsModified());
    EXPECT_TRUE(doc.Save(out.c_str()));
    std::string written = mDir.Read("out.xml");
    EXPECT_EQ(written.find("<?xml version=\"1.0\" encoding=\"UTF-8\"?>"), 0u);
    EXPECT_NE(written.find("line1[   ]line2[___]tab"), std::string::npos);
    EXPECT_NE(written.find("\n  <c/>"), std::string::npos);  // indented
    mDir.Write("out.xml", "changed by hand");
    EXPECT_TRUE(doc.Save(nullptr));
    EXPECT_EQ(mDir.Read("out.xml"), "changed by hand");  // a second save writes nothing
    doc.Update();
    EXPECT_TRUE(doc.Save(nullptr));
    xml back(out.c_str());
    EXPECT_TRUE(back.String(u"/root/a") == u"line1\r\nline2\ttab");

    ::chmod(mDir.Path("out.xml").c_str(), 0444);
    doc.Update();
    EXPECT_TRUE(doc.Save(nullptr));  // a read-only target is made writable first
    doc.Update();
    EXPECT_FALSE(doc.Save(mDir.Wide("no/such/dir/x.xml").c_str()));
    EXPECT_TRUE(doc.IsModified());
}

TEST_F(Xml, JapaneseTextRoundTrip) {
    xml doc;
    ASSERT_TRUE(doc.Initialize());
    ASSERT_TRUE(doc.SelectNode(u"/"));
    ASSERT_TRUE(doc.CreateElementCurrent(u"設定", nullptr, true));
    ASSERT_TRUE(doc.CreateElementCurrent(u"名前", u"生\tのタブ", false));  // creation text is not escaped
    doc.String(u"/設定/名前", u"東京\r\n大阪\t名古屋 & <x>");
    ASSERT_TRUE(doc.Save(mDir.Wide("j.xml").c_str()));
    xml back(mDir.Wide("j.xml").c_str());
    EXPECT_TRUE(back.String(u"/設定/名前") == u"東京\r\n大阪\t名古屋 & <x>");
    back.SelectNode(u"/設定");
    ASSERT_TRUE(back.CreateElementCurrent(u"tab", u"a\tb", true));
    EXPECT_TRUE(back.SelectNode(u"/設定/tab"));
    string text;
    back.GetCurrentNodeText(text);
    EXPECT_TRUE(text == u"a\tb");
    back.SetCurrentNodeText(u"[___]");
    back.GetCurrentNodeText(text);
    EXPECT_TRUE(text == u"\t");
}

TEST_F(Xml, StructureAndUnguardedFailures) {
    xml doc = Sample();
    EXPECT_TRUE(doc.RemoveElement(u"/root/c"));
    string name;
    doc.GetCurrentNodeElementName(name);
    EXPECT_TRUE(name == u"root");
    EXPECT_FALSE(doc.SelectNode(u"/root/c"));
    doc.String(u"/missing", u"x");
    EXPECT_TRUE(doc.IsModified());
    EXPECT_TRUE(doc.CreateElement(u"/root", u"d", u"4", false));
    EXPECT_EQ(doc.Int(u"/root/d"), 4);
    EXPECT_EQ(doc.Double(u"/root/nothing"), 0.0);
    EXPECT_TRUE(doc.String(u"/root/nothing").IsEmpty());

    xml empty;
    EXPECT_THROW(empty.CreateElementCurrent(u"a", nullptr, false), exception);
    EXPECT_THROW(empty.RemoveCurrentElement(), exception);
    try {
        empty.RemoveCurrentElement();
    } catch (exception const &e) {
        EXPECT_EQ(unsigned(e.mCode), 0x80004003u);
    }
    xml unmodified = Sample();
    unmodified.String(u"/missing", u"x");
    EXPECT_FALSE(unmodified.IsModified());  // nothing found, nothing made
    mDir.Write("bad.xml", "<a><b></a>");
    EXPECT_FALSE(unmodified.Load(mDir.Wide("bad.xml").c_str()));
}

// ---------------------------------------------------------------- a cursor on any node

TEST_F(Xml, AttributeCursorSetsTheValue) {
    xml doc = Sample();
    ASSERT_TRUE(doc.SelectNode(u"/root/a/@n"));
    string name, text;
    doc.GetCurrentNodeElementName(name);
    EXPECT_TRUE(name == u"n");
    EXPECT_TRUE(doc.SetCurrentNodeText(u"7\r\n8"));
    doc.GetCurrentNodeText(text);
    EXPECT_TRUE(text == u"7\r\n8");
    EXPECT_FALSE(doc.SetCurrentNodeAttrValue(u"x", u"y"));  // an attribute has no attributes
    ASSERT_TRUE(doc.Save(mDir.Wide("attr.xml").c_str()));
    EXPECT_NE(mDir.Read("attr.xml").find("n=\"7[   ]8\""), std::string::npos);
    xml back(mDir.Wide("attr.xml").c_str());
    back.SelectNode(u"/root/a");
    int n = 0;
    EXPECT_TRUE(back.GetCurrentNodeAttrValue(u"n", n));
    EXPECT_EQ(n, 7);
}

TEST_F(Xml, DocumentNodeKeepsItsRoot) {
    xml doc = Sample();
    ASSERT_TRUE(doc.SelectNode(u"/root"));
    ASSERT_TRUE(doc.MoveParentNode());
    EXPECT_FALSE(doc.SetCurrentNodeText(u"gone?"));
    EXPECT_FALSE(doc.CreateElementCurrent(u"second", nullptr, false));  // a document has one root
    EXPECT_TRUE(doc.SelectNode(u"/root"));
    EXPECT_FALSE(doc.RemoveCurrentElement());  // nor can the root go
    EXPECT_TRUE(doc.SelectNode(u"/root/c"));
    doc.Update();
    ASSERT_TRUE(doc.Save(mDir.Wide("kept.xml").c_str()));
    xml back;
    EXPECT_TRUE(back.Load(mDir.Wide("kept.xml").c_str()));
    EXPECT_TRUE(back.SelectNode(u"/root/a"));
}

TEST_F(Xml, TextAndCommentCursorsTakeNoChildren) {
    mDir.Write("t.xml", "<root><a>text<!-- note --></a><?pi data?><![CDATA[x]]></root>");
    xml doc(mDir.Wide("t.xml").c_str());
    ASSERT_TRUE(doc.SelectNode(u"/root/a/text()"));
    EXPECT_FALSE(doc.CreateElementCurrent(u"x", u"y", true));
    EXPECT_TRUE(doc.SetCurrentNodeText(u"changed"));
    ASSERT_TRUE(doc.SelectNode(u"//comment()"));
    EXPECT_FALSE(doc.CreateElementCurrent(u"x", nullptr, false));
    EXPECT_FALSE(doc.SetCurrentNodeText(u"a -- b"));  // would end the comment early
    EXPECT_FALSE(doc.SetCurrentNodeText(u"ends-"));
    EXPECT_TRUE(doc.SetCurrentNodeText(u" still a note "));
    ASSERT_TRUE(doc.SelectNode(u"//processing-instruction()"));
    EXPECT_FALSE(doc.SetCurrentNodeText(u"a ?> b"));
    ASSERT_TRUE(doc.SelectNode(u"/root/text()"));  // the CDATA section
    EXPECT_FALSE(doc.SetCurrentNodeText(u"]]>"));
    ASSERT_TRUE(doc.Save(mDir.Wide("t2.xml").c_str()));
    xml back;
    ASSERT_TRUE(back.Load(mDir.Wide("t2.xml").c_str()));
    EXPECT_TRUE(back.String(u"/root/a") == u"changed");
    EXPECT_TRUE(back.String(u"//comment()") == u"still a note");
}

TEST_F(Xml, NamespaceNodesAreNeverACursor) {
    mDir.Write("ns.xml", "<root xmlns:p=\"urn:p\"><p:a p:v=\"1\">x</p:a></root>");
    xml doc(mDir.Wide("ns.xml").c_str());
    EXPECT_FALSE(doc.SelectNode(u"/root/namespace::*"));
    EXPECT_FALSE(doc.SetCurrentNodeText(u"x"));
    string name;
    EXPECT_FALSE(doc.GetCurrentNodeElementName(name));
    EXPECT_TRUE(doc.SelectNode(u"/root/namespace::* | /root/*"));  // the first node that can be one
    doc.GetCurrentNodeElementName(name);
    EXPECT_TRUE(name == u"p:a");
    string v;
    EXPECT_TRUE(doc.GetCurrentNodeAttrValue(u"p:v", v));
    EXPECT_TRUE(v == u"1");
    EXPECT_TRUE(doc.SetCurrentNodeAttrValue(u"p:w", u"2"));
    EXPECT_FALSE(doc.SetCurrentNodeAttrValue(u"q:w", u"2"));  // an undeclared prefix
}

TEST_F(Xml, CopiesStandInOneTreeSafely) {
    xml doc = Sample();
    ASSERT_TRUE(doc.SelectNode(u"/root/a/b"));
    xml other = doc;  // a second cursor on the same node
    ASSERT_TRUE(doc.SelectNode(u"/root/a"));
    EXPECT_TRUE(doc.SetCurrentNodeText(u"flat"));  // frees b's subtree, except what `other` holds
    string name;
    other.GetCurrentNodeElementName(name);
    EXPECT_TRUE(name == u"b");  // still readable: kept until `other` lets go
    other.MoveFirstChild();
    ASSERT_TRUE(other.SelectNode(u"/root/a"));
    string text;
    other.GetCurrentNodeText(text);
    EXPECT_TRUE(text == u"flat");
    xml third;
    third = other;
    EXPECT_TRUE(third.RemoveElement(u"/root/c"));
    EXPECT_FALSE(doc.SelectNode(u"/root/c"));
}

// ---------------------------------------------------------------- nothing unloadable

TEST_F(Xml, NamesAndCharactersThatXmlCannotHoldAreRefused) {
    xml doc = Sample();
    ASSERT_TRUE(doc.SelectNode(u"/root/a"));
    EXPECT_FALSE(doc.SetCurrentNodeAttrValue(u"bad name", u"x"));
    EXPECT_FALSE(doc.SetCurrentNodeAttrValue(u"", u"x"));
    EXPECT_FALSE(doc.SetCurrentNodeAttrValue(u"xmlns", u"urn:x"));
    EXPECT_FALSE(doc.SetCurrentNodeAttrValue(u"xmlns:x", u"urn:x"));
    EXPECT_FALSE(doc.SetCurrentNodeAttrValue(u"v", u"a\x01" u"b"));
    EXPECT_FALSE(doc.SetCurrentNodeAttrValue(u"v", u"\xFFFF"));
    EXPECT_FALSE(doc.SetCurrentNodeText(u"bell\x07"));
    EXPECT_FALSE(doc.CreateElementCurrent(u"1st", nullptr, false));
    EXPECT_FALSE(doc.CreateElementCurrent(u"", nullptr, false));
    EXPECT_FALSE(doc.CreateElementCurrent(u"ok", u"nul\x02", false));
    EXPECT_FALSE(doc.IsModified());  // nothing was changed

    // What is accepted is written so that it loads again, whatever it holds.
    EXPECT_TRUE(doc.SetCurrentNodeAttrValue(u"日本", u"<&>\"' \r\n\t\r"));
    EXPECT_TRUE(doc.SetCurrentNodeText(u"]]> <![CDATA[ & \r lone\xD800 end"));
    EXPECT_TRUE(doc.CreateElementCurrent(u"x-y.z", u"\t", false));
    ASSERT_TRUE(doc.Save(mDir.Wide("odd.xml").c_str()));
    xml back;
    ASSERT_TRUE(back.Load(mDir.Wide("odd.xml").c_str()));
    back.SelectNode(u"/root/a");
    string v;
    back.GetCurrentNodeAttrValue(u"日本", v);
    EXPECT_TRUE(v == u"<&>\"' \r\n\t\r");
    string text;
    back.GetCurrentNodeText(text);
    EXPECT_TRUE(text == u"]]> <![CDATA[ & \r lone\xFFFD end");
}

TEST_F(Xml, ADocumentWithoutRootIsNotSaved) {
    mDir.Write("keep.xml", "<root/>");
    xml doc;
    ASSERT_TRUE(doc.Initialize());
    doc.Update();
    EXPECT_FALSE(doc.Save(mDir.Wide("keep.xml").c_str()));
    EXPECT_EQ(mDir.Read("keep.xml"), "<root/>");
}

// The input that once crashed the load fuzzer: escapes next to a bare '['.
TEST_F(Xml, FuzzedEscapesNextToBrackets) {
    mDir.Write("f.xml", "<?xml version=\"1.0\"?>\n<root VEN=\"1\"><a n=\"2\">x[   ]y</a><b/>[</root>");
    xml doc(mDir.Wide("f.xml").c_str());
    ASSERT_TRUE(doc.SelectNode(u"/*"));
    string text;
    doc.GetCurrentNodeText(text);
    EXPECT_TRUE(text == u"x\r\ny[");
    ASSERT_TRUE(doc.MoveFirstChild());
    EXPECT_TRUE(doc.SetCurrentNodeAttrValue(u"a", u"b\r\n"));
    EXPECT_EQ(doc.Int(u"//*[1]"), 0);
    ASSERT_TRUE(doc.Save(mDir.Wide("f2.xml").c_str()));
    xml back;
    EXPECT_TRUE(back.Load(mDir.Wide("f2.xml").c_str()));
}

// ---------------------------------------------------------------- the saved file's identity

TEST_F(Xml, SaveKeepsPermissionsOwnerAndLinks) {
    xml doc = Sample();
    doc.Update();
    std::string target = mDir.Path("real.xml");
    mDir.Write("real.xml", "<old/>");
    ::chmod(target.c_str(), 0600);
    if (IsRoot()) { ASSERT_EQ(::chown(target.c_str(), kNobody, kNobody), 0); }
    ASSERT_EQ(::symlink("real.xml", mDir.Path("link.xml").c_str()), 0);
    ASSERT_TRUE(doc.Save(mDir.Wide("link.xml").c_str()));
    struct stat st {};
    ASSERT_EQ(::lstat(mDir.Path("link.xml").c_str(), &st), 0);
    EXPECT_TRUE(S_ISLNK(st.st_mode));  // the link stays a link
    ASSERT_EQ(::stat(target.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 07777, 0600u);
    if (IsRoot()) { EXPECT_EQ(st.st_uid, kNobody); }
    EXPECT_NE(mDir.Read("real.xml").find("<root VERSION"), std::string::npos);
    EXPECT_EQ(std::filesystem::directory_iterator(mDir.Path()) == std::filesystem::directory_iterator(), false);
    for (auto const &entry : std::filesystem::directory_iterator(mDir.Path())) {
        EXPECT_EQ(entry.path().filename().string().find(".tmp"), std::string::npos);  // no temporary left
    }
}

TEST_F(Xml, SaveInAFolderThatTakesNoNewFileWritesInPlace) {
    std::string folder = mDir.Path("locked");
    ::mkdir(folder.c_str(), 0755);
    mDir.Write("locked/doc.xml", "<old/>");
    ::chmod(mDir.Path().c_str(), 0755);
    if (IsRoot()) {
        ASSERT_EQ(::chown(folder.c_str(), kNobody, kNobody), 0);
        ASSERT_EQ(::chown((folder + "/doc.xml").c_str(), kNobody, kNobody), 0);
    }
    ::chmod(folder.c_str(), 0555);
    std::u16string path = mDir.Wide("locked/doc.xml");
    EXPECT_TRUE(AsUser([&] {
        xml doc;
        doc.Initialize();
        doc.SelectNode(u"/");
        doc.CreateElementCurrent(u"new", nullptr, false);
        return doc.Save(path.c_str());
    }));
    ::chmod(folder.c_str(), 0755);
    EXPECT_NE(mDir.Read("locked/doc.xml").find("<new/>"), std::string::npos);
}

TEST_F(Xml, AFullDiskLeavesTheOldFile) {
    xml doc = Sample();
    for (int i = 0; i < 200; ++i) doc.CreateElement(u"/root", u"row", u"some text to fill the file", false);
    mDir.Write("full.xml", "<precious/>");
    {
        file_limit limit(512);
        EXPECT_FALSE(doc.Save(mDir.Wide("full.xml").c_str()));
    }
    EXPECT_EQ(mDir.Read("full.xml"), "<precious/>");
    EXPECT_TRUE(doc.IsModified());
}

// ---------------------------------------------------------------- memory

TEST_F(Xml, ReloadingAndReplacingKeepNoOldTrees) {
    std::string big = "<root>";
    for (int i = 0; i < 12000; ++i) big += "<item id=\"" + std::to_string(i) + "\">some text in an item</item>";
    big += "</root>";
    mDir.Write("big.xml", big);
    std::u16string path = mDir.Wide("big.xml");
    xml doc;
    ASSERT_TRUE(doc.Load(path.c_str()));
    ASSERT_TRUE(doc.SelectNode(u"/root/item[5]"));
    std::size_t before = HeapInUse();
    for (int i = 0; i < 50; ++i) {
        ASSERT_TRUE(doc.Load(path.c_str()));
        ASSERT_TRUE(doc.SelectNode(u"/root/item[5]"));
    }
    for (int i = 0; i < 50; ++i) {
        ASSERT_TRUE(doc.SelectNode(u"/root"));
        doc.SetCurrentNodeText(u"replaced");
        ASSERT_TRUE(doc.Load(path.c_str()));
    }
    std::size_t after = HeapInUse();
    // One tree of this file takes a few megabytes; a hundred of them would be hundreds.
    EXPECT_LT(after, before + (16u << 20));
}
