// One root of the registry store: a SQLite database of keys (a tree by parent
// id, names kept as given and compared folded) and values (typed blobs), in
// the order they were made. Each call is one statement or one transaction;
// the connection is the process's for that root, used under a lock.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "qor/tools/platform/registry.h"

namespace qor::tools::platform::reg {

using key_id = std::int64_t;  // 0 is the root itself

struct value {
    std::string mName;  // UTF-8
    DWORD mType = 0;
    std::string mData;
};

class store {
public:
    // The store of a predefined root, or null for any other handle.
    static store *Of(HKEY root);

    // The key at `path` (backslash-separated UTF-8) below `base`; with
    // `create`, missing keys are made (`created` tells whether the last was).
    LSTATUS Resolve(key_id base, std::string const &path, bool create, key_id &id, bool *created);
    LSTATUS Set(key_id key, value const &v);
    LSTATUS Get(key_id key, std::string const &name, value &v);
    LSTATUS Delete(key_id key, std::string const &name);
    LSTATUS DeleteKey(key_id key, std::string const &path);
    LSTATUS EnumValue(key_id key, DWORD index, value &v);
    LSTATUS EnumKey(key_id key, DWORD index, std::string &name);

private:
    class statement;

    explicit store(std::string path) : mPath(std::move(path)) {}
    ~store();

    // Kept by the address of its text (each a literal of this store's code).
    sqlite3_stmt *Prepared(char const *sql, int &code);
    LSTATUS Ready();
    LSTATUS Status(int code) const;
    bool Exists(key_id key);
    LSTATUS Find(key_id parent, std::string const &name, key_id &id);

    std::string mPath;
    sqlite3 *mDb = nullptr;
    LSTATUS mOpenStatus = -1;  // not tried yet
    std::unordered_map<char const *, sqlite3_stmt *> mStatements;
    std::mutex mLock;
};

}  // namespace qor::tools::platform::reg
