#include "qor/tools/container/buffer.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

#include "qor/tools/align16.h"
#include "qor/tools/allocator.h"

using namespace qor::tools;
using qor::tools::container::buffer;

TEST(BufferSharing, ChangesShowThroughEveryHandle) {
    buffer a(10, true);
    buffer b = a;
    b.Fill(1);
    EXPECT_EQ(a[9], 1);
    a.Copy(b);  // one body: nothing
    a.Add(a);
    a += b;
    EXPECT_EQ(a.Size(), 10);
    buffer c;
    c = a;
    auto const &same = c;
    c = same;
    EXPECT_EQ(a.Body()->Counter(), 3u);
}

TEST(BufferSize, ExactBlocksAndClearing) {
    buffer a(6, true);
    a.Fill(7);
    a.Size(6, true);  // the same size clears nothing
    EXPECT_EQ(a[5], 7);
    a.Extend(4, false);
    EXPECT_EQ(a.Size(), 10);
    EXPECT_EQ(a[5], 7);
    a.Size(12, true);
    EXPECT_EQ(a[10], 0);
    EXPECT_EQ(a[11], 0);
    a.Remove(0, a.Size());
    EXPECT_EQ(a.Data(), nullptr);
    EXPECT_EQ(a.Size(), 0);
    a.Size(-3, false);
    EXPECT_EQ(a.Data(), nullptr);
    EXPECT_EQ(a.Size(), -3);
    EXPECT_FALSE(a.IsEmpty());
}

TEST(BufferEdit, CopyAddInsertRemove) {
    buffer a;
    a.Copy("abcdef", 6);
    a.Insert(2, "XY", 2);
    EXPECT_EQ(std::memcmp(a.Data(), "abXYcdef", 8), 0);
    a.Remove(1, 3);
    EXPECT_EQ(std::memcmp(a.Data(), "acdef", 5), 0);
    a.Add("!", 1);
    EXPECT_EQ(a.Size(), 6);
    a.Copy(a.Data() + 1, 3);  // a source inside the old block is safe
    EXPECT_EQ(std::memcmp(a.Data(), "cde", 3), 0);
    a.Insert(100, "Z", 1);  // past the end: appended
    EXPECT_EQ(a[3], 'Z');
    a.Remove(2, 100);
    EXPECT_EQ(a.Size(), 2);
}

TEST(BufferCompare, PointersThenSizesThenBytes) {
    buffer a, b;
    EXPECT_TRUE(a == b);  // both null
    auto *block = static_cast<unsigned char *>(ArrayAlloc(1));
    b.Attach(block, 0);
    EXPECT_FALSE(a == b);  // one null, even with size 0
    a.Copy("xy", 2);
    b.Copy("xy", 2);
    EXPECT_TRUE(a == b);
    b[1] = 'z';
    EXPECT_TRUE(a != b);
}

TEST(BufferAttach, TakesOwnershipAndTheMarkChangesNothing) {
    buffer a;
    a.Reference(true);
    EXPECT_TRUE(a.Reference());
    auto *block = static_cast<unsigned char *>(ArrayAlloc(4));
    std::memcpy(block, "abcd", 4);
    a.Attach(block, 4);
    EXPECT_EQ(a.Data(), block);
    a.Attach(block, 2);  // the block it holds: kept, only the size changes
    EXPECT_EQ(a.Data(), block);
    EXPECT_EQ(a.Size(), 2);
    EXPECT_EQ(a[1], 'b');
    a.Release();  // marked or not, the bytes are freed (checked by the sanitizers)
    EXPECT_TRUE(a.IsEmpty());
}

TEST(Align16, AlignedOwnersAndPlainViews) {
    align16 a(100);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(a.Data()) % 16, 0u);
    EXPECT_EQ(a.Size(), 100);
    a.Clear();
    EXPECT_EQ(a[99], 0);
    unsigned char raw[101] = {};
    align16 view(raw + 1, 100);
    EXPECT_EQ(view.Data(), raw + 1);
    raw[1] = 42;
    align16 clone(view, true);
    EXPECT_NE(clone.Data(), view.Data());
    EXPECT_EQ(clone[0], 42);
    align16 blank(view, false);
    EXPECT_EQ(blank.Size(), 100);
    clone.Release();
    EXPECT_TRUE(clone.IsEmpty());
    a.Reference(raw, 5);
    EXPECT_EQ(a.Data(), raw);
}
