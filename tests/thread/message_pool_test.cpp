#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <new>
#include <set>
#include <thread>
#include <vector>

#include "qor/tools/thread/message.h"

using namespace qor::tools::thread;

namespace {

// A message with N bytes of payload, filled with a pattern that tells one
// message from another.
template <std::size_t N>
struct payload : message {
    explicit payload(unsigned long id) : message(id) { std::memset(mBytes, int(id & 0xFF), N); }
    bool IsIntact() const {
        for (unsigned char b : mBytes) {
            if (b != (mId & 0xFF)) return false;
        }
        return true;
    }
    unsigned char mBytes[N];
};

template <std::size_t N>
void MakeHereDeleteThere(int count) {
    std::vector<payload<N> *> made;
    for (int i = 0; i < count; ++i) made.push_back(new payload<N>(static_cast<unsigned long>(i)));
    bool intact = true;
    std::thread([&] {
        for (payload<N> *m : made) {
            intact = intact && m->IsIntact();
            delete static_cast<message *>(m);  // through the base, as a receiver does
        }
    }).join();
    EXPECT_TRUE(intact) << "payload of " << N << " bytes";
}

std::set<void *> MakeAndEndOnAnotherThread(int count) {
    std::vector<message *> made;
    for (int i = 0; i < count; ++i) made.push_back(new message(1));
    std::set<void *> places(made.begin(), made.end());
    std::thread([&] {
        for (message *m : made) delete m;
    }).join();
    return places;
}

}  // namespace

TEST(MessagePool, EverySizeKeepsItsPayloadAcrossThreads) {
    // Rounds of each size, so that blocks come back from the other thread and
    // serve again; sizes around the classes' edges and beyond the pooled ones.
    for (int round = 0; round < 4; ++round) {
        MakeHereDeleteThere<1>(200);
        MakeHereDeleteThere<8>(200);
        MakeHereDeleteThere<9>(200);
        MakeHereDeleteThere<40>(200);
        MakeHereDeleteThere<232>(200);
        MakeHereDeleteThere<233>(200);
        MakeHereDeleteThere<4000>(50);
    }
}

TEST(MessagePool, BlocksFreedByAReceiverServeTheSenderAgain) {
    // The receiving thread ends after deleting; what it freed reaches the
    // sender again through the depot instead of staying with a dead thread.
    std::set<void *> first = MakeAndEndOnAnotherThread(1000);
    std::vector<message *> again;
    int reused = 0;
    for (int i = 0; i < 1000; ++i) {
        again.push_back(new message(2));
        reused += first.count(again.back()) ? 1 : 0;
    }
    for (message *m : again) delete m;
    EXPECT_GE(reused, 32);
}

TEST(MessagePool, PlacementAndSameThreadUse) {
    alignas(message) unsigned char place[sizeof(message)];
    message *m = new (place) message(7);
    EXPECT_EQ(m->mId, 7u);
    EXPECT_EQ(static_cast<void *>(m), static_cast<void *>(place));
    m->~message();

    // Made and ended on one thread, over and over: the same few blocks.
    std::set<void *> places;
    for (int i = 0; i < 1000; ++i) {
        message *n = new message(i);
        places.insert(n);
        delete n;
    }
    EXPECT_LE(places.size(), 2u);
}

#if defined(__SANITIZE_ADDRESS__)
TEST(MessagePoolDeathTest, AMessageUsedAfterItsDeleteIsReported) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            auto *m = new message(3);
            auto *id = reinterpret_cast<volatile unsigned char *>(&m->mId);
            delete m;
            // Its number, read as bytes (a member access would meet the
            // vptr check first).
            volatile unsigned char first = *id;
            (void)first;
        },
        "use-after-poison");
}
#endif

TEST(MessagePool, OverAlignedMessagesKeepTheirAlignment) {
    struct alignas(64) wide : message {
        explicit wide(unsigned long id) : message(id) {}
        char mLine[64] = {};
    };
    std::vector<message *> made;
    for (int i = 0; i < 16; ++i) {
        auto *m = new wide(static_cast<unsigned long>(i));
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(m) % 64, 0u);
        made.push_back(m);
    }
    for (message *m : made) delete m;  // through the base: the aligned delete
}
