// thread::message: the base of everything workers send each other, a number
// and the sender. Made on the heap by the sender; ownership passes with each
// hand-over. Derive from it to carry a payload (broadcasts carry only the base).
#pragma once

#include "qor/tools/export.h"

namespace qor::tools::thread {

class worker;

class QOR_TOOLS_API message {
public:
    // A message numbered `id` from `from`; copies carry both.
    explicit message(unsigned long id = 0, worker *from = nullptr) noexcept : mWorker(from), mId(id) {}
    explicit message(int id, worker *from = nullptr) noexcept : message(static_cast<unsigned long>(id), from) {}
    message(message const &) noexcept = default;
    explicit message(message *other) noexcept : mWorker(other->mWorker), mId(other->mId) {}
    message &operator=(message const &) noexcept = default;
    virtual ~message() = default;

    worker *mWorker;     // the sender (set by Send and Broadcast)
    unsigned long mId;   // the message's number
};

}  // namespace qor::tools::thread
