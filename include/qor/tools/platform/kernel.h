// The waitable kernel objects behind the thread classes: events (manual and
// auto reset, with pulse), mutexes with an owner and a recursion count (named
// ones live in one table for the process), threads whose handle is signalled
// when they end, and waits on one or up to 64 of them with a time-out in
// milliseconds, where the lowest signalled index wins. Results and error codes
// have the Windows values. A waiting thread sleeps until an object it waits on
// changes: nothing polls.
#pragma once

#include "qor/tools/export.h"

#include <cstdint>

#include "qor/tools/platform/types.h"

namespace qor::tools {

using HANDLE = void *;
struct _SECURITY_ATTRIBUTES;  // accepted and ignored

inline constexpr DWORD INFINITE = 0xFFFFFFFFu;
inline constexpr DWORD WAIT_OBJECT_0 = 0;
inline constexpr DWORD WAIT_ABANDONED_0 = 0x80;
inline constexpr DWORD WAIT_TIMEOUT = 258;
inline constexpr DWORD WAIT_FAILED = 0xFFFFFFFFu;
inline constexpr DWORD MAXIMUM_WAIT_OBJECTS = 64;
inline constexpr unsigned CREATE_SUSPENDED = 4;

QOR_TOOLS_API DWORD GetLastError();
QOR_TOOLS_API void SetLastError(DWORD error);

QOR_TOOLS_API HANDLE CreateEventW(_SECURITY_ATTRIBUTES *security, bool manual, bool initial, char16_t const *name);
QOR_TOOLS_API bool SetEvent(HANDLE event);
QOR_TOOLS_API bool ResetEvent(HANDLE event);
QOR_TOOLS_API bool PulseEvent(HANDLE event);

QOR_TOOLS_API HANDLE CreateMutexW(_SECURITY_ATTRIBUTES *security, bool owner, char16_t const *name);
QOR_TOOLS_API bool ReleaseMutex(HANDLE mutex);

QOR_TOOLS_API DWORD WaitForSingleObject(HANDLE object, DWORD milliseconds);
// `waitAll` is not supported: it fails with ERROR_INVALID_PARAMETER.
QOR_TOOLS_API DWORD WaitForMultipleObjects(DWORD count, HANDLE const *objects, bool waitAll, DWORD milliseconds);
QOR_TOOLS_API bool CloseHandle(HANDLE object);

// Threads. The handle is signalled when the routine has returned. A thread
// made with CREATE_SUSPENDED starts at the first ResumeThread; a running
// thread is stopped where it is by SuspendThread (a real-time signal whose
// handler waits until it is resumed) and goes on at ResumeThread.
QOR_TOOLS_API HANDLE BeginThread(_SECURITY_ATTRIBUTES *security, unsigned stack, unsigned (*routine)(void *), void *argument,
                   unsigned flags, unsigned *id);
QOR_TOOLS_API DWORD SuspendThread(HANDLE thread);
QOR_TOOLS_API DWORD ResumeThread(HANDLE thread);
QOR_TOOLS_API unsigned GetCurrentThreadId();

// The performance counter: CLOCK_MONOTONIC in nanoseconds.
QOR_TOOLS_API bool QueryPerformanceCounter(std::int64_t *counter);
QOR_TOOLS_API bool QueryPerformanceFrequency(std::int64_t *frequency);

// Multimedia timers on one service thread for the process.
inline constexpr unsigned TIME_ONESHOT = 0;
inline constexpr unsigned TIME_PERIODIC = 1;
inline constexpr unsigned TIME_CALLBACK_EVENT_SET = 0x10;
inline constexpr unsigned TIME_CALLBACK_EVENT_PULSE = 0x20;
QOR_TOOLS_API unsigned timeSetEvent(unsigned delay, unsigned resolution, HANDLE event, std::uintptr_t user, unsigned flags);
QOR_TOOLS_API unsigned timeKillEvent(unsigned id);
QOR_TOOLS_API unsigned timeBeginPeriod(unsigned period);
QOR_TOOLS_API unsigned timeEndPeriod(unsigned period);

}  // namespace qor::tools
