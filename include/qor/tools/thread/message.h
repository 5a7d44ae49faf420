// thread::message: the base of everything workers send each other, a number
// and the sender. Made on the heap by the sender; ownership passes with each
// hand-over. Derive from it to carry a payload (broadcasts carry only the base).
#pragma once

#include <cstddef>
#include <new>

#include "qor/tools/export.h"

namespace qor::tools::thread {

class worker;
template <typename T, typename P>
class queue;

class QOR_TOOLS_API message {
public:
    // A message numbered `id` from `from`; copies carry both.
    explicit message(unsigned long id = 0, worker *from = nullptr) noexcept : mWorker(from), mId(id) {}
    explicit message(int id, worker *from = nullptr) noexcept : message(static_cast<unsigned long>(id), from) {}
    message(message const &other) noexcept : mWorker(other.mWorker), mId(other.mId) {}
    explicit message(message *other) noexcept : mWorker(other->mWorker), mId(other->mId) {}
    message &operator=(message const &other) noexcept {
        mWorker = other.mWorker;
        mId = other.mId;
        return *this;
    }
    virtual ~message() = default;

    // Messages (derived ones too) come from a heap of their own, which hands
    // blocks freed by a receiving thread back to sending threads in batches:
    // between two busy workers this costs far less than the general heap.
    // Make them with new and end them with delete, as any object.
    static void *operator new(std::size_t size);
    static void operator delete(void *block, std::size_t size) noexcept;
    // Over-aligned messages come from the general heap, aligned.
    static void *operator new(std::size_t size, std::align_val_t alignment);
    static void operator delete(void *block, std::size_t size, std::align_val_t alignment) noexcept;
    // Placement, which the operators above would otherwise hide.
    static void *operator new(std::size_t, void *place) noexcept { return place; }
    static void operator delete(void *, void *) noexcept {}

    worker *mWorker;     // the sender (set by Send and Broadcast)
    unsigned long mId;   // the message's number

private:
    template <typename T, typename P>
    friend class queue;
    // The next message in the line of the queue that holds this one: a
    // message is linked into a worker's line through itself, never copied.
    message *mNext = nullptr;
};

}  // namespace qor::tools::thread
