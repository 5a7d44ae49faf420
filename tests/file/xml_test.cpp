#include "qor/tools/file/xml.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "qor/tools/exception.h"
#include "temp_dir.h"

using namespace qor::tools;
using qor::tools::file::xml;
using qor::tools::testing::temp_dir;

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
