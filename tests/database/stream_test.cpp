#include "qor/tools/database/stream.h"

#include <gtest/gtest.h>

#include <cstring>

using namespace qor::tools;
using qor::tools::database::stream;

TEST(Stream, ReadPositionsAndResults) {
    auto *s = new stream;
    s->SetData("abcdefgh", 8);
    char out[16] = {};
    ULONG done = 99;
    EXPECT_EQ(s->Read(out, 5, &done), S_OK);
    EXPECT_EQ(done, 5u);
    EXPECT_EQ(s->Read(out, 5, &done), S_FALSE);  // more than is left
    EXPECT_EQ(done, 3u);
    EXPECT_EQ(std::memcmp(out, "fgh", 3), 0);
    EXPECT_EQ(s->Read(out, 1, &done), S_FALSE);  // after the last byte
    EXPECT_EQ(done, 0u);
    EXPECT_EQ(s->Read(nullptr, 1, &done), STG_E_INVALIDPOINTER);
    EXPECT_EQ(s->Read(out, 0, nullptr), S_OK);
    s->Seek(2);
    s->Read(out, 2, nullptr);
    EXPECT_EQ(std::memcmp(out, "cd", 2), 0);
    EXPECT_EQ(s->Release(), 0u);
}

TEST(Stream, WriteReportsInvalidPointerOnSuccess) {
    stream *s = new stream;
    ULONG done = 0;
    EXPECT_EQ(s->Write("xy", 0, &done), S_OK);
    EXPECT_EQ(s->Write("hello", 5, &done), STG_E_INVALIDPOINTER);
    EXPECT_EQ(done, 5u);  // success is judged by done
    EXPECT_EQ(s->Size(), 5);
    s->Seek(1);
    s->Write("EL", 2, &done);
    EXPECT_EQ(s->Size(), 5);  // overwrites in the middle
    EXPECT_EQ(std::memcmp(s->Address(), "hELlo", 5), 0);
    EXPECT_EQ(s->Write(nullptr, 1, &done), STG_E_INVALIDPOINTER);
    EXPECT_EQ(done, 0u);
    s->Release();
}

TEST(Stream, GetDataCopiesFromTheBeginning) {
    stream s;
    s.SetData("01234567", 8);
    char out[10] = {};
    EXPECT_EQ(s.GetData(out, 10, 2), 6);
    EXPECT_EQ(std::memcmp(out, "012345", 6), 0);  // start shortens, does not move
    EXPECT_EQ(s.GetData(out, 10, -1), 0);
    EXPECT_EQ(s.GetData(nullptr, 10, 0), 0);
    container::buffer b;
    s.GetData(b);
    EXPECT_EQ(b.Size(), 8);
    stream copy(s);
    EXPECT_NE(copy.Address(), s.Address());
    EXPECT_EQ(std::memcmp(copy.Address(), s.Address(), 8), 0);
}

TEST(Stream, SizesAndInterfaces) {
    stream s;
    s.Alloc(0);
    EXPECT_TRUE(s.IsEmpty());
    s.SetData("x", 0);
    EXPECT_EQ(s.Size(), 0);
    s.Alloc(-1);
    EXPECT_TRUE(s.IsEmpty());
    EXPECT_EQ(s.Size(), -1);
    s.SetData("abc", 3);
    s.Clear();
    EXPECT_TRUE(s.IsEmpty());
    void *out = nullptr;
    EXPECT_EQ(s.QueryInterface(IID_IStream, &out), E_NOINTERFACE);
    EXPECT_EQ(s.QueryInterface(IID_ISequentialStream, &out), S_OK);
    EXPECT_EQ(out, static_cast<ISequentialStream *>(&s));
    EXPECT_EQ(s.Release(), 1u);
}

TEST(Stream, MakeStreamIsAnIndependentCopy) {
    stream s;
    EXPECT_TRUE(s.MakeStream().IsEmpty());
    s.SetData("random", 6);
    auto copy = s.MakeStream();
    ASSERT_FALSE(copy.IsEmpty());
    s.SetData("other!", 6);
    char out[6];
    std::uint64_t position = 0;
    copy->Seek(2, STREAM_SEEK_SET, &position);
    ULONG done = 0;
    copy->Read(out, 4, &done);
    EXPECT_EQ(std::memcmp(out, "ndom", 4), 0);
    std::uint64_t size = 0;
    copy->Stat(&size);
    EXPECT_EQ(size, 6u);
}
