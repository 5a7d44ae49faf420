#include "qor/tools/exception.h"

#include <gtest/gtest.h>

#include <string>

using qor::tools::exception;

TEST(Exception, CodeOnly) {
    exception e(5);
    EXPECT_EQ(e.mCode, 5);
    EXPECT_TRUE(e.mMessage.IsEmpty());
}

TEST(Exception, FormatIsActiveOnlyInTheFormatConstructor) {
    exception formatted(u"x=%d", 3);
    EXPECT_EQ(formatted.mCode, 0);
    EXPECT_TRUE(formatted.mMessage == u"x=3");
    exception literal(7, u"100%");
    EXPECT_EQ(literal.mCode, 7);
    EXPECT_TRUE(literal.mMessage == u"100%");
    EXPECT_TRUE(exception(7, nullptr).mMessage.IsEmpty());
}

TEST(Exception, CopiesShareTheTextAndOutliveTheOriginal) {
    auto *first = new exception(u"file %s", u"a.txt");
    exception copy(*first);
    EXPECT_EQ(copy.mMessage.Area(), first->mMessage.Area());
    delete first;
    EXPECT_TRUE(copy.mMessage == u"file a.txt");
    exception assigned(1);
    assigned = copy;
    EXPECT_EQ(assigned.mCode, 0);
    EXPECT_TRUE(assigned.mMessage == u"file a.txt");
}

TEST(Exception, ThrownAndCaughtByValue) {
    try {
        throw exception(u"OLD DB Insert");
    } catch (exception &e) {
        e.Trace();
        EXPECT_TRUE(e.mMessage == u"OLD DB Insert");
        return;
    }
    FAIL();
}
