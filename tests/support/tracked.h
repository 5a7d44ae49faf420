// A value that counts how many of its kind are alive, for ownership tests.
#pragma once

namespace qor::tools::testing {

struct tracked {
    tracked() = default;
    explicit tracked(int *alive) : mAlive(alive) { ++*mAlive; }
    tracked(tracked const &other) : mAlive(other.mAlive) {
        if (mAlive) ++*mAlive;
    }
    tracked &operator=(tracked const &) = delete;
    ~tracked() {
        if (mAlive) --*mAlive;
    }
    bool operator==(tracked const &other) const { return mAlive == other.mAlive; }
    int *mAlive = nullptr;
};

}  // namespace qor::tools::testing
