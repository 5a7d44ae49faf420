#include "qor/tools/watch.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "qor/tools/platform/notice.h"
#include "support/temp_dir.h"

using namespace qor::tools;

namespace {
// Exposes the tick fields so that spans can be set exactly.
struct exact : watch {
    void Spans(std::initializer_list<double> ms) {
        Reset();
        for (double m : ms) {
            std::int64_t t = std::int64_t(m * 1e6);
            mTotal += t;
            if (t < mMin) mMin = t;
            if (t > mMax) mMax = t;
            ++mTimes;
        }
    }
};
}  // namespace

TEST(Watch, FreshStatistics) {
    watch w;
    EXPECT_EQ(w.Times(), 0);
    EXPECT_EQ(w.Average(), 0.0);
    EXPECT_EQ(w.Max(), 0.0);
    EXPECT_DOUBLE_EQ(w.Min(), static_cast<double>(0x7FFFFFFFFFFFFFFF) * 1000.0 / 1e9);
    EXPECT_FALSE(w.IsStart());
}

TEST(Watch, SpansAndAverages) {
    exact w;
    w.Spans({1, 2});
    EXPECT_EQ(w.Average2(), 0.0);
    w.Spans({1, 2, 9});
    EXPECT_NEAR(w.Average2(), 2.0, 1e-9);
    EXPECT_NEAR(w.Average(), 4.0, 1e-9);

    watch timed(true);
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    double first = timed.Stop();
    EXPECT_GE(first, 5.0);
    double second = timed.Stop();  // from the same beginning
    EXPECT_GE(second, first);
    EXPECT_EQ(timed.Times(), 2);
    EXPECT_TRUE(timed.IsStart());
    EXPECT_GE(timed.Peep(), second);
    timed.Reset();
    EXPECT_FALSE(timed.IsStart());

    watch unstarted;
    EXPECT_GT(unstarted.Stop(), 0.0);  // measured from counter value 0
}

TEST(Watch, ResultNoticeAndLog) {
    watch w;
    string r = w.Result(nullptr);
    EXPECT_EQ(r.Find(u"*** <Title>= <Count>=0,<Ave>=0.000000,<Ave2>=0.000000,<Last>=0.000000"), 0);
    string shown, caption;
    unsigned style = 0;
    notice_hook old = SetNoticeHook([&](char16_t const *text, char16_t const *cap, unsigned type) {
        shown = text;
        caption = cap;
        style = type;
        return IDOK;
    });
    w.Trace(u"T");
    SetNoticeHook(old);
    EXPECT_TRUE(caption == u"class::watch");
    EXPECT_EQ(style, 48u);
    EXPECT_TRUE(shown == w.Result(u"T"));

    qor::tools::testing::temp_dir dir;
    w.Log(u"one", dir.Wide("watch.log").c_str());
    w.Log(u"two", dir.Wide("watch.log").c_str());
    std::string log = dir.Read("watch.log");
    EXPECT_EQ(log.find("*** <Title>=one"), 0u);
    EXPECT_NE(log.find("\n*** <Title>=two"), std::string::npos);
    w.Log(u"x", dir.Wide("missing/folder/watch.log").c_str());  // silent
    watch::TickCountClear(nullptr, 0);
}
