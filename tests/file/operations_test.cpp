#include "qor/tools/file/operations.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <fcntl.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "qor/tools/exception.h"
#include "qor/tools/file/find.h"
#include "qor/tools/platform/kernel.h"
#include "support/as_user.h"
#include "support/temp_dir.h"

using namespace qor::tools;
using namespace qor::tools::testing;

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
bool IsLink(std::string const &path) { return std::filesystem::is_symlink(path); }

time_t WriteTime(std::string const &path) {
    struct stat st {};
    ::stat(path.c_str(), &st);
    return st.st_mtim.tv_sec;
}

void SetWriteTime(std::string const &path, time_t when) {
    timespec times[2] = {{when, 0}, {when, 0}};
    ::utimensat(AT_FDCWD, path.c_str(), times, 0);
}

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
    EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);  // the system's reason is kept (EEXIST)
    mDir.Write("plain", "x");
    EXPECT_EQ(Thrown([&] { file::_CopyFile(W("plain").c_str(), W("none/copy").c_str(), false); }), u"file CopyFile");
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
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

TEST_F(FileOperations, CopyAttributeSetsAttributesThenOpensThenSetsTimes) {
    timespec old[2] = {{1000000000, 0}, {1100000000, 0}};
    ::mkdir(mDir.Path("folder").c_str(), 0755);
    ::mkdir(mDir.Path("copy").c_str(), 0755);
    ::utimensat(AT_FDCWD, mDir.Path("folder").c_str(), old, 0);
    ::chmod(mDir.Path("folder").c_str(), 0555);
    file::CopyAttribute(W("folder").c_str(), W("copy").c_str());
    struct stat st {};
    ::stat(mDir.Path("copy").c_str(), &st);
    EXPECT_EQ(st.st_mtim.tv_sec, 1100000000);  // a read-only folder still opens for its times
    EXPECT_FALSE(st.st_mode & S_IWUSR);
    ::chmod(mDir.Path("folder").c_str(), 0755);
    ::chmod(mDir.Path("copy").c_str(), 0755);

    // A read-only file: the attribute goes first, and the file then cannot be
    // opened for writing, so its times stay.
    mDir.Write("from", "");
    mDir.Write("to", "");
    ::utimensat(AT_FDCWD, mDir.Path("from").c_str(), old, 0);
    ::chmod(mDir.Path("from").c_str(), 0444);
    EXPECT_EQ(Thrown([&] { file::CopyAttribute(W("from").c_str(), W("to").c_str()); }), u"file CreateFile");
    ::stat(mDir.Path("to").c_str(), &st);
    EXPECT_NE(st.st_mtim.tv_sec, 1100000000);
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

// ---------------------------------------------------------------- what copies and moves keep

TEST_F(FileOperations, CopiesKeepTheLastWriteTime) {
    mDir.Write("src/a.txt", "a");
    file::CreateFolder(W("src").c_str());
    mDir.Write("src/a.txt", "a");
    SetWriteTime(mDir.Path("src/a.txt"), 1200000000);
    ::chmod(mDir.Path("src/a.txt").c_str(), 0640);
    file::_CopyFile(W("src/a.txt").c_str(), W("b.txt").c_str(), false);
    EXPECT_EQ(WriteTime(mDir.Path("b.txt")), 1200000000);
    struct stat st {};
    ::stat(mDir.Path("b.txt").c_str(), &st);
    EXPECT_EQ(st.st_mode & 07777, 0640u);
    file::CopyFolder(W("src").c_str(), W("dst").c_str(), false, false);
    EXPECT_EQ(WriteTime(mDir.Path("dst/a.txt")), 1200000000);
    // Copying a file onto itself would truncate it: it fails and the file stays.
    EXPECT_EQ(Thrown([&] { file::_CopyFile(W("b.txt").c_str(), W("b.txt").c_str(), true); }), u"file CopyFile");
    EXPECT_EQ(mDir.Read("b.txt"), "a");
}

TEST_F(FileOperations, MovesAcrossFileSystems) {
    struct stat here {}, shm {};
    if (::stat("/dev/shm", &shm) != 0 || ::stat(mDir.Path().c_str(), &here) != 0 || shm.st_dev == here.st_dev) {
        GTEST_SKIP() << "/dev/shm is not another file system here";
    }
    temp_dir other;  // under /tmp; the far side is made in /dev/shm
    char pattern[] = "/dev/shm/qortest-XXXXXX";
    std::string far = ::mkdtemp(pattern);
    auto wide = [](std::string const &s) { return std::u16string(s.begin(), s.end()); };
    mDir.Write("file.txt", "one");
    SetWriteTime(mDir.Path("file.txt"), 1200000000);
    file::Move(W("file.txt").c_str(), wide(far + "/file.txt").c_str(), false);
    EXPECT_FALSE(Exists(mDir.Path("file.txt")));
    EXPECT_EQ(WriteTime(far + "/file.txt"), 1200000000);

    file::CreateFolder(W("tree/sub").c_str());
    mDir.Write("tree/sub/x", "x");
    file::MoveFolder(W("tree").c_str(), wide(far + "/tree").c_str(), false);
    EXPECT_FALSE(Exists(mDir.Path("tree")));
    EXPECT_TRUE(Exists(far + "/tree/sub/x"));

    file::TrashBox(FO_MOVE, wide(far + "/tree").c_str(), W("back").c_str());
    EXPECT_TRUE(Exists(mDir.Path("back/sub/x")));
    EXPECT_FALSE(Exists(far + "/tree"));
    std::filesystem::remove_all(far);
}

TEST_F(FileOperations, ForcedRemovalOfReadOnlyFolders) {
    file::CreateFolder(W("ro/inner").c_str());
    mDir.Write("ro/inner/f", "f");
    mDir.Write("ro/g", "g");
    ::chmod(mDir.Path().c_str(), 0755);
    if (IsRoot()) {
        for (char const *p : {"ro", "ro/inner", "ro/inner/f", "ro/g"}) {
            ASSERT_EQ(::chown(mDir.Path(p).c_str(), kNobody, kNobody), 0);
        }
        ASSERT_EQ(::chown(mDir.Path().c_str(), kNobody, kNobody), 0);
    }
    ::chmod(mDir.Path("ro/inner").c_str(), 0555);
    ::chmod(mDir.Path("ro").c_str(), 0555);
    std::u16string ro = W("ro");
    EXPECT_TRUE(AsUser([&] {
        try {
            file::RemoveFolder(ro.c_str(), true);
            return true;
        } catch (exception const &) {
            return false;
        }
    }));
    EXPECT_FALSE(Exists(mDir.Path("ro")));
}

TEST_F(FileOperations, LinksToFoldersAreCopiedAndRemovedAsLinks) {
    file::CreateFolder(W("target").c_str());
    mDir.Write("target/precious", "keep me");
    file::CreateFolder(W("tree").c_str());
    ASSERT_EQ(::symlink("../target", mDir.Path("tree/link").c_str()), 0);
    ASSERT_EQ(::symlink("nowhere", mDir.Path("tree/dangling").c_str()), 0);
    file::CopyFolder(W("tree").c_str(), W("copy").c_str(), false, true);
    EXPECT_TRUE(IsLink(mDir.Path("copy/link")));
    EXPECT_TRUE(IsLink(mDir.Path("copy/dangling")));
    EXPECT_EQ(std::filesystem::read_symlink(mDir.Path("copy/link")), "../target");
    file::RemoveFolder(W("copy").c_str(), true);
    file::RemoveFolder(W("tree").c_str(), false);
    EXPECT_FALSE(Exists(mDir.Path("tree")));
    EXPECT_EQ(mDir.Read("target/precious"), "keep me");  // never followed
}

TEST_F(FileOperations, NamesThatAreNotUtf8SurviveEveryOperation) {
    std::string latin1 = "caf\xe9 \xff.txt";
    file::CreateFolder(W("odd").c_str());
    mDir.Write("odd/" + latin1, "bytes");
    ::mkdir(mDir.Path("odd/dir\xe9").c_str(), 0755);
    mDir.Write("odd/dir\xe9/inner", "inner");
    file::find f(W("odd").c_str());
    std::u16string seen;
    while (f.Next()) {
        if (!f.IsDots() && !f.IsDirectory()) seen = f.FileName().Safe();
    }
    EXPECT_EQ(seen, u"caf\xDCE9 \xDCFF.txt");  // each stray byte kept as an escape
    file::CopyFolder(W("odd").c_str(), W("copy").c_str(), false, true);
    EXPECT_EQ(mDir.Read("copy/" + latin1), "bytes");
    EXPECT_EQ(mDir.Read("copy/dir\xe9/inner"), "inner");
    file::MoveFolder(W("copy").c_str(), W("moved").c_str(), false);
    EXPECT_EQ(mDir.Read("moved/" + latin1), "bytes");
    file::Move((W("moved/") + u"caf\xDCE9 \xDCFF.txt").c_str(), W("plain.txt").c_str(), false);
    EXPECT_EQ(mDir.Read("plain.txt"), "bytes");
    file::RemoveFolder(W("moved").c_str(), false);
    file::RemoveFolder(W("odd").c_str(), false);
    EXPECT_FALSE(Exists(mDir.Path("moved")));
    EXPECT_FALSE(Exists(mDir.Path("odd")));
}

TEST_F(FileOperations, CopyIntoItsOwnSubfolderFailsAtOnce) {
    file::CreateFolder(W("self/sub").c_str());
    mDir.Write("self/f", "f");
    EXPECT_EQ(Thrown([&] { file::CopyFolder(W("self").c_str(), W("self/sub/copy").c_str(), false, false); }),
              u"file CreateDirectory");
    EXPECT_FALSE(Exists(mDir.Path("self/sub/copy")));
    EXPECT_EQ(Thrown([&] { file::MoveFolder(W("self").c_str(), W("self/sub").c_str(), true); }),
              u"file CreateDirectory");
    EXPECT_EQ(mDir.Read("self/f"), "f");
}

TEST_F(FileOperations, NetworkPathsAreNotMadeAtTheRoot) {
    EXPECT_EQ(Thrown([] { file::CreateFolder(u"\\\\qorserver\\share\\new"); }), u"file CreateDirectory");
    EXPECT_EQ(Thrown([] { file::CreateFolder(u"//qorserver/share/new"); }), u"file CreateDirectory");
    EXPECT_FALSE(Exists("/qorserver"));
}
