#include "registry_store.h"

#include <glib.h>
#include <sys/stat.h>

#include <cstdlib>
#include <map>
#include <memory>

namespace qor::tools::platform::reg {

namespace {

constexpr char kSchema[] =
    "PRAGMA journal_mode=WAL;"
    "PRAGMA synchronous=NORMAL;"
    "CREATE TABLE IF NOT EXISTS keys(id INTEGER PRIMARY KEY, parent INTEGER NOT NULL, name TEXT NOT NULL,"
    " folded TEXT NOT NULL, UNIQUE(parent, folded));"
    "CREATE TABLE IF NOT EXISTS vals(key INTEGER NOT NULL, name TEXT NOT NULL, folded TEXT NOT NULL,"
    " type INTEGER NOT NULL, data BLOB NOT NULL, UNIQUE(key, folded));";

std::string Folded(std::string const &name) {
    gchar *folded = g_utf8_casefold(name.c_str(), gssize(name.size()));
    std::string result = folded ? folded : name;
    g_free(folded);
    return result;
}

}  // namespace

// One use of a statement the store keeps prepared, reset at the end of the scope.
class store::statement {
public:
    statement(store &owner, char const *sql) : mStmt(owner.Prepared(sql, mCode)) {}
    statement(statement const &) = delete;
    statement &operator=(statement const &) = delete;
    ~statement() {
        if (!mStmt) return;
        sqlite3_reset(mStmt);
        sqlite3_clear_bindings(mStmt);
    }

    statement &Bind(int i, key_id v) {
        Note(sqlite3_bind_int64(mStmt, i, v));
        return *this;
    }
    statement &Bind(int i, std::string const &v) {
        Note(sqlite3_bind_text(mStmt, i, v.data(), int(v.size()), SQLITE_TRANSIENT));
        return *this;
    }
    statement &Blob(int i, std::string const &v) {
        Note(sqlite3_bind_blob(mStmt, i, v.data(), int(v.size()), SQLITE_TRANSIENT));
        return *this;
    }
    // SQLITE_ROW, SQLITE_DONE or the failure.
    int Step() { return mCode == SQLITE_OK ? sqlite3_step(mStmt) : mCode; }
    key_id Int(int column) const { return sqlite3_column_int64(mStmt, column); }
    std::string Text(int column) const {
        auto const *p = static_cast<char const *>(sqlite3_column_blob(mStmt, column));
        return p ? std::string(p, std::size_t(sqlite3_column_bytes(mStmt, column))) : std::string();
    }

private:
    void Note(int code) {
        if (mCode == SQLITE_OK) mCode = code;
    }
    int mCode = SQLITE_OK;
    sqlite3_stmt *mStmt;
};

namespace {

std::string Folder() {
    if (char const *dir = std::getenv("QORTOOLS_REGISTRY_DIR"); dir && *dir) return dir;
    return {};
}

std::string UserFolder() {
    std::string folder = Folder();
    if (!folder.empty()) return folder;
    return std::string(g_get_user_config_dir()) + "/qortools/registry";
}

std::string SystemFolder() {
    std::string folder = Folder();
    return folder.empty() ? "/var/lib/qortools/registry" : folder;
}

}  // namespace

// The file is looked up at every call, so that a change of the folder the
// environment names takes effect; each file has one connection in the process.
store *store::Of(HKEY root) {
    std::string path;
    if (root == HKEY_CURRENT_USER) {
        path = UserFolder() + "/current_user.db";
    } else if (root == HKEY_LOCAL_MACHINE) {
        path = SystemFolder() + "/local_machine.db";
    } else if (root == HKEY_CLASSES_ROOT) {
        path = SystemFolder() + "/classes_root.db";
    } else {
        return nullptr;
    }
    static std::mutex lock;
    static auto *stores = new std::map<std::string, store *>;  // kept for the life of the process
    std::lock_guard guard(lock);
    store *&found = (*stores)[path];
    if (!found) found = new store(path);
    return found;
}

store::~store() {
    for (auto &kept : mStatements) sqlite3_finalize(kept.second);
    sqlite3_close(mDb);
}

sqlite3_stmt *store::Prepared(char const *sql, int &code) {
    sqlite3_stmt *&kept = mStatements[sql];
    code = kept ? SQLITE_OK : sqlite3_prepare_v3(mDb, sql, -1, SQLITE_PREPARE_PERSISTENT, &kept, nullptr);
    return kept;
}

LSTATUS store::Status(int code) const {
    switch (code & 0xff) {
        case SQLITE_OK:
        case SQLITE_DONE:
        case SQLITE_ROW: return LSTATUS(ERROR_SUCCESS);
        case SQLITE_READONLY:
        case SQLITE_PERM:
        case SQLITE_CANTOPEN:
        case SQLITE_AUTH: return LSTATUS(ERROR_ACCESS_DENIED);
        case SQLITE_BUSY:
        case SQLITE_LOCKED: return LSTATUS(ERROR_BUSY);
        case SQLITE_FULL: return LSTATUS(ERROR_DISK_FULL);
        case SQLITE_NOMEM: return LSTATUS(ERROR_NOT_ENOUGH_MEMORY);
        default: return LSTATUS(ERROR_BADDB);
    }
}

// Opened at the first call; a file that is there but empty is taken for a
// damaged store and left alone rather than made anew.
LSTATUS store::Ready() {
    if (mOpenStatus >= 0 && mDb) return mOpenStatus;
    struct stat st {};
    if (::stat(mPath.c_str(), &st) == 0 && S_ISREG(st.st_mode) && st.st_size == 0) return LSTATUS(ERROR_BADDB);
    std::string folder = mPath.substr(0, mPath.rfind('/'));
    g_mkdir_with_parents(folder.c_str(), 0700);
    sqlite3 *db = nullptr;
    int code = sqlite3_open_v2(mPath.c_str(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX,
                               nullptr);
    if (code == SQLITE_OK) {
        sqlite3_busy_timeout(db, 30000);
        code = sqlite3_exec(db, kSchema, nullptr, nullptr, nullptr);
    }
    if (code != SQLITE_OK) {
        sqlite3_close(db);
        return Status(code);
    }
    mDb = db;
    mOpenStatus = LSTATUS(ERROR_SUCCESS);
    return mOpenStatus;
}

bool store::Exists(key_id key) {
    if (key == 0) return true;
    statement s(*this, "SELECT 1 FROM keys WHERE id = ?");
    return s.Bind(1, key).Step() == SQLITE_ROW;
}

LSTATUS store::Find(key_id parent, std::string const &name, key_id &id) {
    statement s(*this, "SELECT id FROM keys WHERE parent = ? AND folded = ?");
    int code = s.Bind(1, parent).Bind(2, Folded(name)).Step();
    if (code == SQLITE_ROW) {
        id = s.Int(0);
        return LSTATUS(ERROR_SUCCESS);
    }
    return code == SQLITE_DONE ? LSTATUS(ERROR_FILE_NOT_FOUND) : Status(code);
}

// A key that is there is found without a write transaction; only a path
// with keys to make takes one, and looks again inside it.
LSTATUS store::Resolve(key_id base, std::string const &path, bool create, key_id &id, bool *created) {
    if (create) {
        LSTATUS found = Resolve(base, path, false, id, nullptr);
        if (found != LSTATUS(ERROR_FILE_NOT_FOUND)) {
            if (created) *created = false;
            return found;
        }
    }
    std::lock_guard guard(mLock);
    LSTATUS status = Ready();
    if (status != 0) return status;
    if (create && (status = Status(sqlite3_exec(mDb, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr))) != 0) return status;
    id = base;
    bool made = false;
    if (!Exists(base)) status = LSTATUS(ERROR_KEY_DELETED);
    std::size_t start = 0;
    while (status == 0 && start < path.size()) {
        std::size_t end = path.find('\\', start);
        if (end == std::string::npos) end = path.size();
        std::string part = path.substr(start, end - start);
        start = end + 1;
        if (part.empty()) continue;
        key_id next = 0;
        status = Find(id, part, next);
        made = false;
        if (status == LSTATUS(ERROR_FILE_NOT_FOUND) && create) {
            statement insert(*this, "INSERT INTO keys(parent, name, folded) VALUES (?, ?, ?)");
            status = Status(insert.Bind(1, id).Bind(2, part).Bind(3, Folded(part)).Step());
            next = sqlite3_last_insert_rowid(mDb);
            made = true;
        }
        id = next;
    }
    if (create) sqlite3_exec(mDb, status == 0 ? "COMMIT" : "ROLLBACK", nullptr, nullptr, nullptr);
    if (created) *created = made;
    return status;
}

// One statement: the value goes in only while its key is there, and a value
// set again keeps its place in the enumeration.
LSTATUS store::Set(key_id key, value const &v) {
    std::lock_guard guard(mLock);
    LSTATUS status = Ready();
    if (status != 0) return status;
    statement s(*this,
                "INSERT INTO vals(key, name, folded, type, data) SELECT ?1, ?2, ?3, ?4, ?5"
                " WHERE ?1 = 0 OR EXISTS(SELECT 1 FROM keys WHERE id = ?1)"
                " ON CONFLICT(key, folded) DO UPDATE SET name = excluded.name, type = excluded.type, data = excluded.data");
    int code = s.Bind(1, key).Bind(2, v.mName).Bind(3, Folded(v.mName)).Bind(4, key_id(v.mType)).Blob(5, v.mData).Step();
    if (code != SQLITE_DONE) return Status(code);
    return sqlite3_changes(mDb) ? LSTATUS(ERROR_SUCCESS) : LSTATUS(ERROR_KEY_DELETED);
}

LSTATUS store::Get(key_id key, std::string const &name, value &v) {
    std::lock_guard guard(mLock);
    LSTATUS status = Ready();
    if (status != 0) return status;
    statement s(*this, "SELECT name, type, data FROM vals WHERE key = ? AND folded = ?");
    int code = s.Bind(1, key).Bind(2, Folded(name)).Step();
    if (code == SQLITE_ROW) {
        v = value{s.Text(0), DWORD(s.Int(1)), s.Text(2)};
        return LSTATUS(ERROR_SUCCESS);
    }
    if (code != SQLITE_DONE) return Status(code);
    return Exists(key) ? LSTATUS(ERROR_FILE_NOT_FOUND) : LSTATUS(ERROR_KEY_DELETED);
}

LSTATUS store::Delete(key_id key, std::string const &name) {
    std::lock_guard guard(mLock);
    LSTATUS status = Ready();
    if (status != 0) return status;
    statement s(*this, "DELETE FROM vals WHERE key = ? AND folded = ?");
    int code = s.Bind(1, key).Bind(2, Folded(name)).Step();
    if (code != SQLITE_DONE) return Status(code);
    return sqlite3_changes(mDb) ? LSTATUS(ERROR_SUCCESS) : LSTATUS(ERROR_FILE_NOT_FOUND);
}

LSTATUS store::DeleteKey(key_id key, std::string const &path) {
    key_id target = 0;
    LSTATUS status = Resolve(key, path, false, target, nullptr);
    if (status != 0) return status;
    if (target == 0) return LSTATUS(ERROR_ACCESS_DENIED);  // a root stays
    std::lock_guard guard(mLock);
    if ((status = Status(sqlite3_exec(mDb, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr))) != 0) return status;
    statement children(*this, "SELECT 1 FROM keys WHERE parent = ?");
    int code = children.Bind(1, target).Step();
    if (code == SQLITE_ROW) {
        status = LSTATUS(ERROR_ACCESS_DENIED);
    } else if (code != SQLITE_DONE) {
        status = Status(code);
    } else {
        statement values(*this, "DELETE FROM vals WHERE key = ?");
        statement self(*this, "DELETE FROM keys WHERE id = ?");
        status = Status(values.Bind(1, target).Step());
        if (status == 0) status = Status(self.Bind(1, target).Step());
        if (status == 0 && sqlite3_changes(mDb) == 0) status = LSTATUS(ERROR_FILE_NOT_FOUND);
    }
    sqlite3_exec(mDb, status == 0 ? "COMMIT" : "ROLLBACK", nullptr, nullptr, nullptr);
    return status;
}

LSTATUS store::EnumValue(key_id key, DWORD index, value &v) {
    std::lock_guard guard(mLock);
    LSTATUS status = Ready();
    if (status != 0) return status;
    statement s(*this, "SELECT name, type, data FROM vals WHERE key = ? ORDER BY rowid LIMIT 1 OFFSET ?");
    int code = s.Bind(1, key).Bind(2, key_id(index)).Step();
    if (code == SQLITE_ROW) {
        v = value{s.Text(0), DWORD(s.Int(1)), s.Text(2)};
        return LSTATUS(ERROR_SUCCESS);
    }
    return code == SQLITE_DONE ? LSTATUS(ERROR_NO_MORE_ITEMS) : Status(code);
}

LSTATUS store::EnumKey(key_id key, DWORD index, std::string &name) {
    std::lock_guard guard(mLock);
    LSTATUS status = Ready();
    if (status != 0) return status;
    statement s(*this, "SELECT name FROM keys WHERE parent = ? ORDER BY id LIMIT 1 OFFSET ?");
    int code = s.Bind(1, key).Bind(2, key_id(index)).Step();
    if (code == SQLITE_ROW) {
        name = s.Text(0);
        return LSTATUS(ERROR_SUCCESS);
    }
    return code == SQLITE_DONE ? LSTATUS(ERROR_NO_MORE_ITEMS) : Status(code);
}

}  // namespace qor::tools::platform::reg
