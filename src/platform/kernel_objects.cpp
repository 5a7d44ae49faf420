// The handle table, the pool of objects, names, events and mutexes.
#include <algorithm>
#include <map>
#include <vector>

#include "kernel_object.h"

namespace qor::tools {

namespace platform::kernel {

namespace {

thread_local DWORD tLastError = 0;

// ---------------------------------------------------------------- the handle table

constexpr std::uint32_t kChunkBits = 12;
constexpr std::uint32_t kChunkSize = 1u << kChunkBits;
constexpr std::uint32_t kChunks = 4096;  // room for 16 million handles
constexpr std::uint32_t kNone = 0xFFFFFFFFu;

struct slot {
    std::atomic<std::uint64_t> mTag{0};  // generation << 1, and 1 while open
    std::atomic<object *> mObject{nullptr};
    std::atomic<std::uint32_t> mIncarnation{0};
    std::uint32_t mNextFree = kNone;  // guarded by the table's lock
};

struct table {
    std::atomic<slot *> mChunks[kChunks]{};
    std::mutex mLock;
    std::uint32_t mUsed = 0;
    std::uint32_t mFree = kNone;

    slot *At(std::uint32_t index) const {
        slot *chunk = mChunks[index >> kChunkBits].load(std::memory_order_acquire);
        return chunk ? chunk + (index & (kChunkSize - 1)) : nullptr;
    }
};

table &Table() {
    static table *t = new table;  // lives as long as the process: handles may be used at exit
    return *t;
}

std::uint64_t OpenTag(std::uint32_t generation) { return (std::uint64_t(generation) << 1) | 1; }

bool Decode(HANDLE h, std::uint32_t &index, std::uint32_t &generation) {
    auto value = reinterpret_cast<std::uintptr_t>(h);
    index = std::uint32_t(value & 0xFFFFFFFFu) - 1;
    generation = std::uint32_t(value >> 32);
    return value != 0 && index < kChunks * kChunkSize && generation != 0;
}

// ---------------------------------------------------------------- the pool

// The pool and the names live as long as the process (never destroyed at
// exit): threads and handles may still be at work while statics go.
std::mutex gPoolLock;
std::vector<object *> &gPool = *new std::vector<object *>;

std::mutex gNamesLock;
std::map<std::u16string, object *> &gNames = *new std::map<std::u16string, object *>;

// Resets a dead object for its next incarnation; its lock is held.
thread_state *Recycle(object *o) {
    o->mIncarnation.fetch_add(1, std::memory_order_relaxed);
    o->mSignaled.store(false);
    o->mNamed = false;
    o->mOwner = 0;
    o->mRecursion = 0;
    o->mAbandoned = false;
    o->mFirst = o->mLast = nullptr;
    o->mName.clear();
    thread_state *state = o->mThread;
    o->mThread = nullptr;
    return state;
}

// Opens a handle on a named object, or on a new one made by `make`.
HANDLE CreateNamed(kind k, char16_t const *name, auto &&make) {
    if (!name || !*name) {
        SetError(ERROR_SUCCESS);
        return Open(make());
    }
    std::lock_guard names(gNamesLock);
    auto found = gNames.find(name);
    if (found == gNames.end()) {
        object *o = make();
        o->mNamed = true;
        o->mName = name;
        gNames.emplace(o->mName, o);
        SetError(ERROR_SUCCESS);
        return Open(o);
    }
    object *o = found->second;
    {
        std::lock_guard lock(o->mLock);
        if (o->mKind != k) {
            SetError(ERROR_INVALID_HANDLE);
            return nullptr;
        }
        ++o->mReferences;
    }
    HANDLE h = Open(o);
    SetError(ERROR_ALREADY_EXISTS);
    return h;
}

// The object of an event handle; false for anything else.
bool LockedEvent(HANDLE h, view &v) {
    if (!Lookup(h, v)) return false;
    if (v.mObject->mKind.load(std::memory_order_relaxed) == kind::event) return true;
    SetError(ERROR_INVALID_HANDLE);
    return false;
}

// Mutexes the current thread owns: at its end they are abandoned.
struct owned_mutexes {
    std::vector<view> mHeld;
    ~owned_mutexes() {
        unsigned self = CurrentThread();
        for (view const &v : mHeld) {
            locked lock(v);
            object *o = v.mObject;
            if (!lock || o->mOwner != self) continue;
            o->mOwner = 0;
            o->mRecursion = 0;
            o->mAbandoned = true;
            HandOff(o);
        }
    }
};

thread_local owned_mutexes tOwned;

}  // namespace

void SetError(DWORD error) { tLastError = error; }

object *New(kind k) {
    object *o = nullptr;
    {
        std::lock_guard pool(gPoolLock);
        if (!gPool.empty()) {
            o = gPool.back();
            gPool.pop_back();
        }
    }
    if (!o) o = new object;  // never freed: a stale reference always reaches an object
    std::lock_guard lock(o->mLock);
    o->mKind = k;
    o->mManual = true;
    o->mReferences = 1;
    return o;
}

HANDLE Open(object *o) {
    table &t = Table();
    std::lock_guard lock(t.mLock);
    std::uint32_t index = t.mFree;
    if (index != kNone) {
        t.mFree = t.At(index)->mNextFree;
    } else {
        index = t.mUsed;
        if (index >= kChunks * kChunkSize) {
            SetError(ERROR_NOT_ENOUGH_MEMORY);
            return nullptr;
        }
        if (!t.At(index)) t.mChunks[index >> kChunkBits].store(new slot[kChunkSize], std::memory_order_release);
        ++t.mUsed;
    }
    slot *s = t.At(index);
    std::uint32_t generation = std::uint32_t(s->mTag.load() >> 1) + 1;
    if (generation >= 0x80000000u) generation = 1;
    s->mObject.store(o);
    s->mIncarnation.store(o->mIncarnation.load());
    s->mTag.store(OpenTag(generation));
    return reinterpret_cast<HANDLE>((std::uintptr_t(generation) << 32) | (std::uintptr_t(index) + 1));
}

bool Lookup(HANDLE h, view &v) {
    std::uint32_t index, generation;
    slot *s = Decode(h, index, generation) ? Table().At(index) : nullptr;
    std::uint64_t want = OpenTag(generation);
    if (s && s->mTag.load() == want) {
        v.mObject = s->mObject.load();
        v.mIncarnation = s->mIncarnation.load();
        if (s->mTag.load() == want) return true;
    }
    SetError(ERROR_INVALID_HANDLE);
    return false;
}

object *Acquire(HANDLE h) {
    view v;
    if (!Lookup(h, v)) return nullptr;
    locked lock(v);
    if (!lock) {
        SetError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    ++v.mObject->mReferences;
    return v.mObject;
}

void AddReference(object *o) {
    std::lock_guard lock(o->mLock);
    ++o->mReferences;
}

void Release(object *o) {
    // A named object leaves the table of names with its last reference; the
    // names are locked first, as everywhere.
    std::unique_lock<std::mutex> names(gNamesLock, std::defer_lock);
    if (o->mNamed) names.lock();
    std::unique_lock lock(o->mLock);
    if (--o->mReferences > 0) return;
    if (o->mNamed) gNames.erase(o->mName);
    thread_state *state = Recycle(o);
    lock.unlock();
    if (names.owns_lock()) names.unlock();
    Forget(state);
    std::lock_guard pool(gPoolLock);
    gPool.push_back(o);
}

void NoteOwned(object *o) {
    auto &held = tOwned.mHeld;
    bool known = std::any_of(held.begin(), held.end(), [o](view const &v) { return v.mObject == o; });
    if (!known) held.push_back({o, o->mIncarnation.load(std::memory_order_relaxed)});
}

void NoteReleased(object *o) {
    auto &held = tOwned.mHeld;
    auto found = std::find_if(held.begin(), held.end(), [o](view const &v) { return v.mObject == o; });
    if (found != held.end()) held.erase(found);
}

}  // namespace platform::kernel

using namespace platform::kernel;

DWORD GetLastError() { return tLastError; }
void SetLastError(DWORD error) { tLastError = error; }

bool CloseHandle(HANDLE h) {
    std::uint32_t index, generation;
    table &t = Table();
    object *o = nullptr;
    {
        std::lock_guard lock(t.mLock);
        slot *s = Decode(h, index, generation) ? t.At(index) : nullptr;
        if (!s || s->mTag.load() != OpenTag(generation)) {
            SetError(ERROR_INVALID_HANDLE);
            return false;
        }
        s->mTag.store(std::uint64_t(generation) << 1);
        o = s->mObject.exchange(nullptr);
        s->mNextFree = t.mFree;
        t.mFree = index;
    }
    Release(o);
    return true;
}

// ---------------------------------------------------------------- events

HANDLE CreateEventW(_SECURITY_ATTRIBUTES *, bool manual, bool initial, char16_t const *name) {
    return CreateNamed(kind::event, name, [&] {
        object *o = New(kind::event);
        o->mManual = manual;
        o->mSignaled = initial;
        return o;
    });
}

bool SetEvent(HANDLE h) {
    view v;
    if (!LockedEvent(h, v)) return false;
    object *o = v.mObject;
    // Already set: no waiter can be waiting, nothing to do, no lock to take.
    if (o->mSignaled.load(std::memory_order_acquire) && o->mIncarnation.load() == v.mIncarnation) return true;
    return Signal(v) || (SetError(ERROR_INVALID_HANDLE), false);
}

bool ResetEvent(HANDLE h) {
    view v;
    if (!LockedEvent(h, v)) return false;
    if (v.mObject->mIncarnation.load() != v.mIncarnation) return SetError(ERROR_INVALID_HANDLE), false;
    v.mObject->mSignaled.store(false);
    return true;
}

bool PulseEvent(HANDLE h) {
    view v;
    if (!LockedEvent(h, v)) return false;
    return Pulse(v) || (SetError(ERROR_INVALID_HANDLE), false);
}

// ---------------------------------------------------------------- mutexes

HANDLE CreateMutexW(_SECURITY_ATTRIBUTES *, bool owner, char16_t const *name) {
    unsigned self = CurrentThread();
    return CreateNamed(kind::mutex, name, [&] {
        object *o = New(kind::mutex);
        if (owner) {
            o->mOwner = self;
            o->mRecursion = 1;
            NoteOwned(o);
        }
        return o;
    });
}

bool ReleaseMutex(HANDLE h) {
    view v;
    if (!Lookup(h, v)) return false;
    locked lock(v);
    object *o = v.mObject;
    if (!lock || o->mKind != kind::mutex || o->mOwner != CurrentThread()) {
        SetError(ERROR_NOT_OWNER);
        return false;
    }
    if (--o->mRecursion == 0) {
        o->mOwner = 0;
        NoteReleased(o);
        HandOff(o);
    }
    return true;
}

}  // namespace qor::tools
