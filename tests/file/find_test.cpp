#include "qor/tools/file/find.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <ctime>
#include <fstream>
#include <set>

#include "support/temp_dir.h"

using namespace qor::tools;
using qor::tools::file::find;
using qor::tools::testing::temp_dir;

namespace {

std::set<std::u16string> Names(find f) {
    std::set<std::u16string> names;
    while (f.Next()) names.insert(f.FileName().Safe());
    return names;
}

}  // namespace

TEST(Find, WildcardsAndDots) {
    temp_dir dir;
    dir.Write("a.txt", "1");
    dir.Write("B.TXT", "22");
    dir.Write("noext", "");
    dir.Write("...", "");
    ::mkdir(dir.Path("sub").c_str(), 0755);
    auto all = Names(find(dir.Wide().c_str()));
    EXPECT_EQ(all, (std::set<std::u16string>{u".", u"..", u"a.txt", u"B.TXT", u"noext", u"...", u"sub"}));
    auto text = Names(find(dir.Wide().c_str(), u"*.txt"));
    EXPECT_EQ(text, (std::set<std::u16string>{u"a.txt", u"B.TXT"}));  // without regard to case
    EXPECT_EQ(Names(find(dir.Wide().c_str(), u"?.txt")).size(), 2u);
    find f(dir.Wide().c_str(), u"...");
    ASSERT_TRUE(f.Next());
    EXPECT_FALSE(f.IsDots());
}

TEST(Find, OnlyStarAndQuestionMarkAreWildcards) {
    temp_dir dir;
    dir.Write("a1.txt", "");
    dir.Write("a[1].txt", "");
    dir.Write("b*x", "");
    dir.Write("abcbcd", "");
    EXPECT_EQ(Names(find(dir.Wide().c_str(), u"a[1].txt")), (std::set<std::u16string>{u"a[1].txt"}));
    EXPECT_EQ(Names(find(dir.Wide().c_str(), u"a[?].*")), (std::set<std::u16string>{u"a[1].txt"}));
    EXPECT_EQ(Names(find(dir.Wide().c_str(), u"*bcd")), (std::set<std::u16string>{u"abcbcd"}));
    EXPECT_EQ(Names(find(dir.Wide().c_str(), u"A*T")).size(), 2u);
    EXPECT_TRUE(Names(find(dir.Wide().c_str(), u"a?")).empty());
}

TEST(Find, FolderForms) {
    temp_dir dir;
    dir.Write("x", "");
    std::u16string base = dir.Wide();
    for (std::u16string folder : {base, base + u"/", base + u"\\"}) {
        find f(folder.c_str(), u"x");
        ASSERT_TRUE(f.Next());
        std::u16string expected = folder.back() == u'/' || folder.back() == u'\\' ? folder + u"x" : folder + u"/x";
        EXPECT_EQ(std::u16string(f.FilePath().Safe()), expected);
    }
    find missing((base + u"/missing").c_str());
    EXPECT_FALSE(missing.Next());
    find root(u"");
    EXPECT_TRUE(root.Next());  // an empty folder searches "/"
    find closed(base.c_str());
    EXPECT_TRUE(closed.Next());
    closed.Close();
    closed.Close();
    EXPECT_FALSE(closed.Next());
}

TEST(Find, AttributesSizesAndTimes) {
    temp_dir dir;
    dir.Write("ro", "x");
    ::chmod(dir.Path("ro").c_str(), 0444);
    dir.Write(".hidden", "");
    {
        std::ofstream big(dir.Path("big"));
        big.seekp((5LL << 30) - 1);
        big.put('\0');
    }
    ::mkdir(dir.Path("d").c_str(), 0755);
    find f(dir.Wide().c_str());
    int seen = 0;
    while (f.Next()) {
        std::u16string name = f.FileName().Safe();
        if (name == u"ro") {
            EXPECT_TRUE(f.IsReadOnly());
            EXPECT_FALSE(f.IsNormal());
            ++seen;
        } else if (name == u".hidden") {
            EXPECT_TRUE(f.IsHidden());
            ++seen;
        } else if (name == u"big") {
            EXPECT_EQ(f.FileSize(), 5LL << 30);
            EXPECT_TRUE(f.IsNormal());
            auto written = f.WriteTime();
            std::time_t now = std::time(nullptr);
            std::tm local{};
            localtime_r(&now, &local);
            EXPECT_EQ(written.mFirst, (local.tm_year + 1900) * 10000 + (local.tm_mon + 1) * 100 + local.tm_mday);
            EXPECT_GE(written.mSecond, 0);
            EXPECT_LT(written.mSecond, 240000);
            ++seen;
        } else if (name == u"d") {
            EXPECT_TRUE(f.IsDirectory());
            ++seen;
        }
    }
    EXPECT_EQ(seen, 4);
    find before(dir.Wide().c_str());
    EXPECT_EQ(before.FileSize(), 0);
    EXPECT_EQ(before.WriteTime().mFirst, 0);
}
