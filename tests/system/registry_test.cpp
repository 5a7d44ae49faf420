// The registry store and system::registry: typed values and their reads,
// the object and static forms, enumeration order and names in any case,
// the deletes, and the store shared by processes: concurrent writers, a
// writer killed in the middle, damaged files and a read-only folder.
#include <gtest/gtest.h>

#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "qor/tools/system/registry.h"
#include "support/as_user.h"
#include "support/temp_dir.h"

using namespace qor::tools;
namespace qt = qor::tools::testing;
using data = system::registry::data;
using reg = system::registry;

namespace {

constexpr char16_t const *kApp = u"Software\\QorTest";

// Each test keeps its stores in a folder of its own.
class Registry : public ::testing::Test {
protected:
    void SetUp() override { ::setenv("QORTOOLS_REGISTRY_DIR", mDir.Path().c_str(), 1); }
    void TearDown() override { ::unsetenv("QORTOOLS_REGISTRY_DIR"); }
    std::string Store() const { return mDir.Path("current_user.db"); }
    qt::temp_dir mDir;
};

// Runs `body` in a child process; its exit status.
template <typename F>
pid_t Child(F body) {
    pid_t pid = ::fork();
    if (pid == 0) {
        body();
        ::_exit(0);
    }
    return pid;
}

int Wait(pid_t pid) {
    int status = 0;
    ::waitpid(pid, &status, 0);
    return status;
}

std::u16string Name(int i) {
    std::string n = "v" + std::to_string(i);
    return std::u16string(n.begin(), n.end());
}

}  // namespace

TEST_F(Registry, DataTakesItsTypeFromTheArgument) {
    EXPECT_EQ(data(5).Type(), REG_DWORD);
    EXPECT_EQ(data(5).Size(), 4);
    EXPECT_EQ(data(5LL).Type(), REG_QWORD);
    EXPECT_EQ(data(5LL).Size(), 8);
    EXPECT_EQ(data(1.5).Type(), REG_BINARY);
    EXPECT_EQ(data(1.5).Size(), 8);
    EXPECT_EQ(data(u"ab").Type(), REG_SZ);
    EXPECT_EQ(data(u"ab").Size(), 6);
    EXPECT_EQ(data("ab").Size(), 3);
    EXPECT_EQ(data(static_cast<char16_t const *>(nullptr)).Size(), 2);
    unsigned char bytes[] = {1, 2, 3};
    EXPECT_EQ(data(bytes, 3ul).Size(), 3);
    EXPECT_EQ(data(nullptr, 4ul).Data()[3], 0);

    EXPECT_EQ(int(data(5LL)), 0);
    EXPECT_EQ((long long)(data(5)), 0);
    EXPECT_EQ(double(data(1.5)), 1.5);
    EXPECT_EQ(int(data(7)), 7);
    EXPECT_EQ(std::u16string(static_cast<char16_t const *>(data(u"写真"))), u"写真");
    data empty;
    EXPECT_EQ(int(empty), 0);
    EXPECT_EQ(double(empty), 0.0);
    EXPECT_EQ(static_cast<char16_t const *>(empty), nullptr);

    data copy = data(u"deep");
    data other = copy;
    EXPECT_NE(other.Data(), copy.Data());
    other = data(9);
    EXPECT_EQ(int(other), 9);
}

TEST_F(Registry, ValuesGoInAndComeBackByType) {
    reg key(HKEY_CURRENT_USER, kApp, true);
    ASSERT_NE(key.mKey, nullptr);
    EXPECT_TRUE(key.Set(u"Width", data(1024)));
    EXPECT_TRUE(key.Set(u"Title", data(u"写真一覧")));
    EXPECT_TRUE(key.Set(u"Scale", data(0.75)));
    EXPECT_TRUE(key.Set(u"Big", data(1LL << 40)));
    data back;
    EXPECT_TRUE(key.Get(u"width", back));  // names in any case
    EXPECT_EQ(int(back), 1024);
    EXPECT_TRUE(key.Get(u"Scale", back));
    EXPECT_EQ(double(back), 0.75);
    EXPECT_TRUE(key.Get(u"Big", back));
    EXPECT_EQ((long long)back, 1LL << 40);
    data untouched(3);
    EXPECT_FALSE(key.Get(u"Missing", untouched));
    EXPECT_EQ(int(untouched), 3);

    EXPECT_EQ(reg::GetText(HKEY_CURRENT_USER, kApp, u"Title", u"x"), u"写真一覧");
    EXPECT_EQ(reg::GetText(HKEY_CURRENT_USER, kApp, u"Missing", u"fallback"), u"fallback");
    EXPECT_EQ(reg::GetText(HKEY_CURRENT_USER, u"No\\Such\\Key", u"Title", u"fallback"), u"fallback");
    EXPECT_EQ(reg::GetText(HKEY_CURRENT_USER, kApp, u"Width", u"fallback"), u"");
    EXPECT_EQ(reg::GetInteger(HKEY_CURRENT_USER, kApp, u"Missing", 42), 42);
    EXPECT_EQ(reg::GetInteger(HKEY_CURRENT_USER, kApp, u"Title", 42), 0);
    EXPECT_TRUE(reg::SetInteger(HKEY_CURRENT_USER, u"Software\\Other", u"Count", 3));
    EXPECT_EQ(reg::GetInteger(HKEY_CURRENT_USER, u"SOFTWARE\\other", u"count", 0), 3);
}

TEST_F(Registry, AKeyThatIsNotThereAnswersFalse) {
    reg none;
    data value;
    EXPECT_FALSE(none.Get(u"x", value));
    reg missing(HKEY_CURRENT_USER, u"Not\\There", false);
    EXPECT_EQ(missing.mKey, nullptr);
    EXPECT_FALSE(missing.Set(u"x", data(1)));
    EXPECT_FALSE(missing.Get(u"x", value));
    reg other(reinterpret_cast<HKEY>(std::uintptr_t(12345)), u"x", true);  // not a root
    EXPECT_EQ(other.mKey, nullptr);
}

TEST_F(Registry, EnumerationFollowsTheOrderOfMaking) {
    reg key(HKEY_CURRENT_USER, kApp, true);
    for (char16_t const *name : {u"zeta", u"alpha", u"mid"}) key.Set(name, data(1));
    key.Set(u"ALPHA", data(2));  // set again: keeps its place and takes the new spelling
    for (char16_t const *name : {u"Kz", u"Ka"}) EXPECT_TRUE(reg::CreateKey(HKEY_CURRENT_USER, kApp, name));
    char16_t name[64];
    std::vector<std::u16string> values, keys;
    for (DWORD i = 0;; ++i) {
        DWORD length = 64;
        if (RegEnumValueW(key.mKey, i, name, &length, nullptr, nullptr, nullptr, nullptr) != 0) break;
        values.push_back(name);
    }
    for (DWORD i = 0;; ++i) {
        DWORD length = 64;
        if (RegEnumKeyExW(key.mKey, i, name, &length, nullptr, nullptr, nullptr, nullptr) != 0) break;
        keys.push_back(name);
    }
    EXPECT_EQ(values, (std::vector<std::u16string>{u"zeta", u"ALPHA", u"mid"}));
    EXPECT_EQ(keys, (std::vector<std::u16string>{u"Kz", u"Ka"}));
    DWORD small = 2;
    EXPECT_EQ(RegEnumValueW(key.mKey, 0, name, &small, nullptr, nullptr, nullptr, nullptr), LSTATUS(ERROR_MORE_DATA));
    EXPECT_EQ(RegEnumValueW(key.mKey, 9, name, &small, nullptr, nullptr, nullptr, nullptr),
              LSTATUS(ERROR_NO_MORE_ITEMS));
}

TEST_F(Registry, DeletesFollowTheRules) {
    reg key(HKEY_CURRENT_USER, kApp, true);
    key.Set(u"a", data(1));
    key.Set(u"b", data(2));
    reg::CreateKey(HKEY_CURRENT_USER, kApp, u"Leaf1");
    reg::CreateKey(HKEY_CURRENT_USER, kApp, u"Leaf2");
    reg::CreateKey(HKEY_CURRENT_USER, u"Software\\QorTest\\Deep", u"Inner");
    EXPECT_EQ(RegDeleteKeyW(key.mKey, u"Deep"), LSTATUS(ERROR_ACCESS_DENIED));  // it has a subkey
    key.DeleteAll();
    data value;
    EXPECT_FALSE(key.Get(u"a", value));
    EXPECT_FALSE(key.Get(u"b", value));
    key.DeleteKeyAll();  // the leaves go; "Deep" cannot, and the loop stops there
    reg leaf;
    EXPECT_FALSE(leaf.Open(HKEY_CURRENT_USER, u"Software\\QorTest\\Leaf1"));
    EXPECT_TRUE(leaf.Open(HKEY_CURRENT_USER, u"Software\\QorTest\\Deep"));

    reg::SetInteger(HKEY_CURRENT_USER, u"Software\\QorTest\\Deep\\Inner", u"x", 1);
    reg::DeleteKeyAll(HKEY_CURRENT_USER, u"Software\\QorTest", u"Deep");
    EXPECT_FALSE(leaf.Open(HKEY_CURRENT_USER, u"Software\\QorTest\\Deep"));
    reg::SetInteger(HKEY_CURRENT_USER, kApp, u"gone", 1);
    reg::Delete(HKEY_CURRENT_USER, kApp, u"gone");
    EXPECT_EQ(reg::GetInteger(HKEY_CURRENT_USER, kApp, u"gone", -1), -1);
}

TEST_F(Registry, AKeyDeletedUnderAnOpenHandleAnswersKeyDeleted) {
    reg open(HKEY_CURRENT_USER, u"Software\\QorTest\\Going", true);
    reg::DeleteKey(HKEY_CURRENT_USER, kApp, u"Going");
    EXPECT_FALSE(open.Set(u"x", data(1)));
    std::uint8_t byte = 1;
    EXPECT_EQ(RegSetValueExW(open.mKey, u"x", 0, REG_BINARY, &byte, 1), LSTATUS(ERROR_KEY_DELETED));
    reg copy = open;  // both close the one handle: the second close finds nothing
}

TEST_F(Registry, ValuesLiveOnInOtherProcesses) {
    EXPECT_EQ(Wait(Child([] { reg::SetText(HKEY_CURRENT_USER, kApp, u"From", u"child"); })), 0);
    EXPECT_EQ(reg::GetText(HKEY_CURRENT_USER, kApp, u"From", u""), u"child");
}

TEST_F(Registry, TwoProcessesWritingAtOnceLoseNothing) {
    reg::CreateKey(HKEY_CURRENT_USER, u"Software", u"QorTest");
    auto writer = [](int first) {
        return [first] {
            for (int i = first; i < first + 5000; ++i) {
                if (!reg::SetInteger(HKEY_CURRENT_USER, kApp, Name(i).c_str(), i)) ::_exit(1);
            }
        };
    };
    pid_t a = Child(writer(0)), b = Child(writer(5000));
    EXPECT_EQ(Wait(a), 0);
    EXPECT_EQ(Wait(b), 0);
    int present = 0;
    for (int i = 0; i < 10000; ++i) present += reg::GetInteger(HKEY_CURRENT_USER, kApp, Name(i).c_str(), -1) == i;
    EXPECT_EQ(present, 10000);
}

TEST_F(Registry, AWriterKilledInTheMiddleLeavesEveryCommittedValue) {
    int pipe[2];
    ASSERT_EQ(::pipe(pipe), 0);
    pid_t writer = Child([&] {
        ::close(pipe[0]);
        for (int i = 0;; ++i) {
            reg::SetInteger(HKEY_CURRENT_USER, kApp, Name(i).c_str(), i);
            if (::write(pipe[1], &i, sizeof i) != sizeof i) ::_exit(1);
        }
    });
    ::close(pipe[1]);
    int last = -1, got = 0;
    while (last < 2000 && ::read(pipe[0], &got, sizeof got) == sizeof got) last = got;
    ::kill(writer, SIGKILL);
    Wait(writer);
    ::close(pipe[0]);
    int present = 0;
    for (int i = 0; i <= last; ++i) present += reg::GetInteger(HKEY_CURRENT_USER, kApp, Name(i).c_str(), -1) == i;
    EXPECT_EQ(present, last + 1);
    EXPECT_TRUE(reg::SetInteger(HKEY_CURRENT_USER, kApp, u"after", 1));
}

TEST_F(Registry, AStoreThatIsNotADatabaseGivesFalseAndIsLeftAlone) {
    std::ofstream(Store()) << std::string(4096, 'x');
    EXPECT_FALSE(reg::SetInteger(HKEY_CURRENT_USER, kApp, u"x", 1));
    EXPECT_EQ(reg::GetInteger(HKEY_CURRENT_USER, kApp, u"x", -1), -1);
    HKEY key = nullptr;
    EXPECT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, kApp, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
              LSTATUS(ERROR_BADDB));
    EXPECT_EQ(std::filesystem::file_size(Store()), 4096u);

    std::ofstream(Store(), std::ios::trunc).close();  // an empty file where a store was
    EXPECT_FALSE(reg::SetInteger(HKEY_CURRENT_USER, kApp, u"x", 1));
    EXPECT_EQ(std::filesystem::file_size(Store()), 0u);
}

TEST_F(Registry, AReadOnlyFolderRefusesWrites) {
    ::chmod(mDir.Path().c_str(), 0555);
    EXPECT_TRUE(qt::AsUser([] { return !reg::SetInteger(HKEY_CURRENT_USER, kApp, u"x", 1); }));
    ::chmod(mDir.Path().c_str(), 0700);
}
