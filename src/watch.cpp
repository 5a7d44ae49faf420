#include "qor/tools/watch.h"

#include <cstdio>

#include "platform/file_io.h"
#include "qor/tools/platform/kernel.h"
#include "qor/tools/platform/notice.h"
#include "qor/tools/thread/critical.h"
#include "utf8.h"

namespace qor::tools {

std::int64_t watch::mQPFTicksPerSec = 0;
bool watch::mInitialize = false;
thread::critical watch::mTickCountSection;  // made when the module loads, before any watch
std::int64_t watch::mLastTickCount = 0;
unsigned long watch::mTickCounter = 0;

watch::watch(bool start) {
    _Initialize();
    if (start) Start();
}

void watch::_Initialize() {
    if (mInitialize) return;
    mInitialize = true;
    std::int64_t frequency = 0;
    if (QueryPerformanceFrequency(&frequency)) mQPFTicksPerSec = frequency;
}

std::int64_t watch::_Now() {
    std::int64_t now = 0;
    QueryPerformanceCounter(&now);
    return now;
}

double watch::_Calc(std::int64_t ticks) { return ticks * 1000.0 / mQPFTicksPerSec; }

double watch::Stop() {
    std::int64_t d = _Now() - mStart;
    if (d < mMin) mMin = d;
    if (d > mMax) mMax = d;
    mTotal += d;
    mLast = d;
    ++mTimes;
    return _Calc(d);
}

void watch::Reset() {
    mStart = mTotal = mLast = mMax = 0;
    mMin = 0x7FFFFFFFFFFFFFFF;
    mTimes = 0;
}

double watch::Average() const { return mTimes < 1 ? 0.0 : Total() / mTimes; }

double watch::Average2() const {
    if (mTimes < 3) return 0.0;
    return (Total() - (_Calc(mMin) + _Calc(mMax))) / (mTimes - 2);
}

string watch::Result(char16_t const *title) const {
    return string::Formatter(
        u"*** <Title>=%s <Count>=%d,<Ave>=%f,<Ave2>=%f,<Last>=%f,<Min>=%f,<Max>=%f,(<Total>=%f) ***",
        string::Safe(title), mTimes, Average(), Average2(), Last(), Min(), Max(), Total());
}

void watch::MessageBoxW(char16_t const *title) const {
    tools::MessageBoxW(nullptr, Result(title), u"class::watch", MB_ICONEXCLAMATION);
}

void watch::Log(char16_t const *title, char16_t const *file) const {
    std::string path = platform::PathBytes(file ? file : u"/watch.log");
    FILE *f = std::fopen(path.c_str(), "a");
    if (!f) return;
    std::string line;
    string text = Result(title);
    detail::Utf16ToUtf8(text.Safe(), std::size_t(text.Length()), line);
    line += '\n';
    std::fputs(line.c_str(), f);
    std::fclose(f);
}

void watch::TickCountClear(char16_t const *, int) {
    _Initialize();
    thread::critical::guard lock(mTickCountSection);
    mTickCounter = 0;
    mLastTickCount = _Now();
}

}  // namespace qor::tools
