// qor::tools::watch: a stopwatch on the performance counter with statistics
// over repeated spans (count, total, last, minimum, maximum, two averages),
// reported in milliseconds.
//
//   watch w;
//   w.Start(); work(); w.Stop();
//   w.Log(u"work", nullptr);    // one line appended to "/watch.log"
#pragma once

#include "qor/tools/export.h"

#include <cstdint>

#include "qor/tools/string.h"
#include "qor/tools/thread/critical.h"

namespace qor::tools {

class QOR_TOOLS_API watch {
public:
    // A stopwatch, started at once when `start`; copies carry the figures.
    explicit watch(bool start = false);
    watch(watch const &) = default;
    watch &operator=(watch const &) = default;
    virtual ~watch() = default;

    // Start begins a span; Stop ends it, counts it and answers it in ms;
    // Peep answers the running span in ms and Counter in counter ticks
    // (nanoseconds); Reset forgets every figure; IsStart: a span was begun.
    void Start() { mStart = _Now(); }
    double Stop();
    double Peep() const { return _Calc(Counter()); }
    std::int64_t Counter() const { return _Now() - mStart; }
    void Reset();
    bool IsStart() const noexcept { return mStart != 0; }
    // The number of spans, and in ms their total, the last, the shortest and
    // the longest; Average over all, Average2 without the shortest and the
    // longest (0 below three spans); Result all of them in one line.
    int Times() const noexcept { return mTimes; }
    double Total() const { return _Calc(mTotal); }
    double Last() const { return _Calc(mLast); }
    double Min() const { return _Calc(mMin); }
    double Max() const { return _Calc(mMax); }
    double Average() const;
    double Average2() const;
    string Result(char16_t const *title) const;
    // Both show Result(title) through the library's notice (caption "class::watch").
    void MessageBoxW(char16_t const *title) const;
    void Trace(char16_t const *title) const { MessageBoxW(title); }
    // Appends Result(title) and a line end to `file` ("/watch.log" when null); silent on failure.
    void Log(char16_t const *title, char16_t const *file = nullptr) const;

    // The process-wide tick log: TickCount does nothing in this build;
    // TickCountClear restarts its count.
    static void TickCount(char16_t const *, int, char16_t const *) {}
    static void TickCountClear(char16_t const *file, int line);

protected:
    static void _Initialize();
    static std::int64_t _Now();
    static double _Calc(std::int64_t ticks);

    std::int64_t mStart = 0;
    std::int64_t mTotal = 0;
    std::int64_t mLast = 0;
    std::int64_t mMin = 0x7FFFFFFFFFFFFFFF;
    std::int64_t mMax = 0;
    int mTimes = 0;

    static std::int64_t mQPFTicksPerSec;
    static bool mInitialize;
    static thread::critical mTickCountSection;
    static std::int64_t mLastTickCount;
    static unsigned long mTickCounter;
};

}  // namespace qor::tools
