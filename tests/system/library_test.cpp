// system::library over dlopen: a library that loads, one that does not, and
// copies that free one handle twice.
#include <gtest/gtest.h>

#include <cmath>

#include "qor/tools/system/library.h"

using namespace qor::tools;

TEST(Library, ALoadedLibraryGivesItsFunctions) {
    system::library maths(u"libm.so.6");
    ASSERT_NE(maths.Module(), nullptr);
    auto cosine = reinterpret_cast<double (*)(double)>(GetProcAddress(maths.Module(), "cos"));
    ASSERT_NE(cosine, nullptr);
    EXPECT_EQ(cosine(0.0), 1.0);
    EXPECT_EQ(GetProcAddress(maths.Module(), "no_such_function_4711"), nullptr);
}

TEST(Library, AMissingFileGivesANullModule) {
    system::library missing(u"/no/such/library.so");
    EXPECT_EQ(missing.Module(), nullptr);
    system::library empty(u"");
    EXPECT_EQ(empty.Module(), nullptr);
}

TEST(Library, CopiesFreeTheHandleOnce) {
    HINSTANCE module = nullptr;
    {
        system::library first(u"libm.so.6");
        module = first.Module();
        system::library copy = first;  // no second load: both free, the second free does nothing
        EXPECT_EQ(copy.Module(), module);
    }
    EXPECT_FALSE(FreeLibrary(module));
    EXPECT_EQ(GetProcAddress(module, "cos"), nullptr);  // no longer a handle of ours
}
