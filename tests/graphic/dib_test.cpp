// The pixel buffer: default strides, reallocation only on a change of shape,
// referred memory that is never freed, and the copies of each kind.
#include <gtest/gtest.h>

#include <cstring>

#include "qor/tools/graphic/dib.h"

using qor::tools::graphic::dib;

TEST(Dib, DefaultStrideIsRoundedToSixteenBytes) {
    dib three(3, 2, 0), four(4, 2, 0), five(5, 2, 0);
    EXPECT_EQ(three.Stride(), 16);
    EXPECT_EQ(three.Size(), 32);
    EXPECT_EQ(four.Stride(), 16);
    EXPECT_EQ(five.Stride(), 32);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(five.Data()) % 16, 0u);
    dib given(3, 2, 20);
    EXPECT_EQ(given.Size(), 40);
}

TEST(Dib, AllocKeepsThePixelsUnlessTheShapeChanges) {
    dib empty;
    empty.Alloc(0, 0, 0);
    EXPECT_EQ(empty.Data(), nullptr);  // same shape: nothing allocated
    dib b(4, 4, 0);
    b.Data()[5] = 42;
    unsigned char *before = b.Data();
    b.Alloc(4, 4, 16);
    EXPECT_EQ(b.Data(), before);
    EXPECT_EQ(b.Data()[5], 42);
    b.Alloc(4, 4, 32);  // a new stride alone reallocates
    EXPECT_EQ(b.Stride(), 32);
    EXPECT_EQ(b.Size(), 128);
}

TEST(Dib, ReferredMemoryIsNeverFreed) {
    alignas(16) unsigned char memory[64] = {};
    {
        dib view(4, 2, 32, memory);
        EXPECT_EQ(view.Data(), memory);
        EXPECT_EQ(view.Size(), 64);
        view.Release();
        EXPECT_EQ(view.Data(), nullptr);
        EXPECT_EQ(view.Width(), 0);
        view.Reference(memory, 2, 2, 8);
        EXPECT_EQ(view.Size(), 16);
    }
    memory[0] = 1;  // still ours: ASan would object otherwise
    dib owner(2, 2, 0);
    owner.Reference(memory, 2, 2, 8);  // frees its own block first
    EXPECT_EQ(owner.Data(), memory);
}

TEST(Dib, CopiesOfEachKind) {
    dib a(3, 2, 0);
    std::memset(a.Data(), 7, std::size_t(a.Size()));
    dib shaped(a, false), copied(a, true);
    EXPECT_TRUE(shaped.IsEqual(a));
    EXPECT_EQ(copied.Data()[31], 7);
    EXPECT_NE(copied.Data(), a.Data());

    dib other(3, 2, 0);
    std::memset(other.Data(), 1, std::size_t(other.Size()));
    EXPECT_TRUE(other.IsEqual(a));  // pixels are not compared
    other.Copy(a);
    EXPECT_EQ(other.Data()[0], 7);

    dib narrow(2, 2, 8);
    std::memset(narrow.Data(), 9, std::size_t(narrow.Size()));
    dib wide(2, 2, 32);
    std::memset(wide.Data(), 0, std::size_t(wide.Size()));
    wide.SafeCopy(narrow);  // row by row, padding left alone
    EXPECT_EQ(wide.Data()[32], 9);
    EXPECT_EQ(wide.Data()[8], 0);
    dib cloned;
    cloned.Clone(wide, true);
    EXPECT_EQ(cloned.Stride(), 32);
    EXPECT_EQ(cloned.Data()[32], 9);
}
