#include "qor/tools/file/operations.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <fcntl.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "qor/tools/exception.h"
#include "temp_dir.h"

using namespace qor::tools;
using qor::tools::testing::temp_dir;

namespace {

std::u16string Thrown(auto &&action) {
    try {
        action();
    } catch (exception const &e) {
        return e.mMessage.Safe();
    }
    return u"no throw";
}

bool Exists(std::string const &path) { return std::filesystem::exists(path); }

class FileOperations : public ::testing::Test {
protected:
    std::u16string W(char const *name) { return mDir.Wide(name); }
    temp_dir mDir;
};

}  // namespace

TEST_F(FileOperations, MoveRules) {
    mDir.Write("a", "A");
    mDir.Write("b", "B");
    EXPECT_EQ(Thrown([&] { file::Move(W("a").c_str(), W("b").c_str(), false); }), u"file MoveFileEx");
    ::chmod(mDir.Path("b").c_str(), 0444);
    file::Move(W("a").c_str(), W("b").c_str(), true);  // a read-only target is replaced
    EXPECT_EQ(mDir.Read("b"), "A");
    EXPECT_FALSE(Exists(mDir.Path("a")));
    ::mkdir(mDir.Path("folder").c_str(), 0755);
    EXPECT_EQ(Thrown([&] { file::Move(W("folder").c_str(), W("x").c_str(), false); }), u"file MoveFileEx");
    EXPECT_EQ(Thrown([&] { file::Move(W("missing").c_str(), W("x").c_str(), false); }), u"file MoveFileEx");
    file::_RemoveFile(W("missing").c_str(), false);
    mDir.Write("c", "C");
    file::_CopyFile(W("c").c_str(), W("d").c_str(), false);
    EXPECT_EQ(Thrown([&] { file::_CopyFile(W("c").c_str(), W("d").c_str(), false); }), u"file CopyFile");
    EXPECT_EQ(mDir.Read("d"), "C");
}

TEST_F(FileOperations, CreateFolderWalksEveryPart) {
    ASSERT_EQ(::chdir(mDir.Path().c_str()), 0);
    file::CreateFolder(u"a\\b\\c");
    EXPECT_TRUE(Exists(mDir.Path("a/b/c")));
    file::CreateFolder(u"a\\b\\c");  // an existing folder: nothing
    file::CreateFolder((W("x/y/") ).c_str());
    EXPECT_TRUE(Exists(mDir.Path("x/y")));
    mDir.Write("file", "");
    EXPECT_EQ(Thrown([&] { file::CreateFolder(W("file/sub").c_str()); }), u"file CreateDirectory");
    EXPECT_TRUE(file::_DriveOf(u"c:\\data") == u"c:");
    EXPECT_TRUE(file::_DriveOf(u"/data").IsEmpty());
    EXPECT_TRUE(file::_NormalizePath(u"a\\b/c") == u"a/b/c");
}

TEST_F(FileOperations, RemoveFolderOrderAndForce) {
    file::CreateFolder(W("t/one/two").c_str());
    mDir.Write("t/f1", "1");
    mDir.Write("t/one/f2", "2");
    mDir.Write("t/one/two/ro", "3");
    ::chmod(mDir.Path("t/one/two/ro").c_str(), 0444);
    EXPECT_EQ(Thrown([&] { file::RemoveFolder(W("t").c_str(), false); }), u"file remove");
    EXPECT_TRUE(Exists(mDir.Path("t/one/two/ro")));  // no rollback: a partial tree
    file::RemoveFolder(W("t").c_str(), true);
    EXPECT_FALSE(Exists(mDir.Path("t")));
    file::RemoveFolder(W("not-a-folder").c_str(), false);  // silent
    file::CopyFolder(W("not-a-folder").c_str(), W("x").c_str(), false, false);
    EXPECT_EQ(Thrown([&] { file::RenameFolder(W("nope").c_str(), W("x").c_str(), false); }), u"file rename");
    EXPECT_EQ(Thrown([&] { file::MoveFolder(W("nope").c_str(), W("x").c_str(), false); }), u"file MoveFileEx");
}

TEST_F(FileOperations, CopyAndMoveFolders) {
    file::CreateFolder(W("src/deep").c_str());
    mDir.Write("src/a.txt", "a");
    mDir.Write("src/deep/b.txt", "b");
    ::chmod(mDir.Path("src/deep").c_str(), 0555);
    file::CopyFolder(W("src").c_str(), W("dst").c_str(), false, true);
    EXPECT_EQ(mDir.Read("dst/deep/b.txt"), "b");
    struct stat st {};
    ::stat(mDir.Path("dst/deep").c_str(), &st);
    EXPECT_FALSE(st.st_mode & S_IWUSR);  // attributes copied to the folders
    ::chmod(mDir.Path("src/deep").c_str(), 0755);
    ::chmod(mDir.Path("dst/deep").c_str(), 0755);
    EXPECT_EQ(Thrown([&] { file::CopyFolder(W("src").c_str(), W("dst").c_str(), false, false); }), u"file CopyFile");

    file::MoveFolder(W("src").c_str(), W("moved").c_str(), false);  // a plain rename
    EXPECT_TRUE(Exists(mDir.Path("moved/deep/b.txt")));
    EXPECT_FALSE(Exists(mDir.Path("src")));
    file::MoveFolder(W("moved").c_str(), W("dst").c_str(), true);  // an existing target: merged by copy
    EXPECT_FALSE(Exists(mDir.Path("moved")));
    EXPECT_TRUE(Exists(mDir.Path("dst/a.txt")));
    file::RenameFolder(W("dst").c_str(), W("renamed").c_str(), true);
    EXPECT_TRUE(Exists(mDir.Path("renamed/deep")));
}

TEST_F(FileOperations, CopyFolderReplacesEveryOccurrence) {
    ASSERT_EQ(::chdir(mDir.Path().c_str()), 0);
    file::CreateFolder(u"a/ba");
    mDir.Write("a/ba/x", "x");
    // The text "a" recurs in "ba" and is replaced there too (callers pass full paths).
    file::CopyFolder(u"a", u"b", false, false);
    EXPECT_TRUE(Exists(mDir.Path("b/bb/x")));
}

TEST_F(FileOperations, CopyAttributeTimesAndReadOnly) {
    mDir.Write("from", "");
    mDir.Write("to", "");
    timespec old[2] = {{1000000000, 0}, {1100000000, 0}};
    ::utimensat(AT_FDCWD, mDir.Path("from").c_str(), old, 0);
    ::chmod(mDir.Path("from").c_str(), 0444);
    file::CopyAttribute(W("from").c_str(), W("to").c_str());
    struct stat st {};
    ::stat(mDir.Path("to").c_str(), &st);
    EXPECT_EQ(st.st_mtim.tv_sec, 1100000000);
    EXPECT_FALSE(st.st_mode & S_IWUSR);
    EXPECT_EQ(Thrown([&] { file::CopyAttribute(W("none").c_str(), W("to").c_str()); }), u"file FileAttributes");
    file::_ClearReadOnly(W("to").c_str());
    ::stat(mDir.Path("to").c_str(), &st);
    EXPECT_TRUE(st.st_mode & S_IWUSR);
}

TEST_F(FileOperations, TrashBoxUsesTheDesktopTrash) {
    std::string data = mDir.Path("xdg");
    std::filesystem::create_directories(data);
    ::setenv("XDG_DATA_HOME", data.c_str(), 1);
    mDir.Write("gone.txt", "bye");
    file::TrashBox(FO_DELETE, W("gone.txt").c_str(), nullptr);
    EXPECT_FALSE(Exists(mDir.Path("gone.txt")));
    EXPECT_TRUE(Exists(data + "/Trash/files/gone.txt"));
    std::ifstream info(data + "/Trash/info/gone.txt.trashinfo");
    std::string header;
    std::getline(info, header);
    EXPECT_EQ(header, "[Trash Info]");
    EXPECT_EQ(Thrown([] { file::TrashBox(FO_DELETE, u"/no/such/file", nullptr); }), u"file SHFileOperation");
    mDir.Write("r", "");
    file::TrashBox(FO_RENAME, W("r").c_str(), W("s").c_str());
    EXPECT_TRUE(Exists(mDir.Path("s")));
}

TEST(SelectFolder, NoDisplayGivesEmpty) {
    ::unsetenv("DISPLAY");
    ::unsetenv("WAYLAND_DISPLAY");
    EXPECT_TRUE(file::SelectFolder(nullptr).IsEmpty());
}
