// The registry's database: $ZQ_PREFIX/registry.db, one SQLite file shared by
// every process of the emulated system.
//
// Schema (PRAGMA user_version 1):
//   keys(id, parent, fold, name, class, flags, written)
//       one row per key; the top-level roots have parent 0. `fold` is the
//       name in its comparison form (registry_names.h): UNIQUE(parent, fold)
//       finds a child and lists children in Windows' order. `name` keeps
//       the case given at creation. `flags`: kKeyVolatile, kKeyFixed.
//       `written` (a FILETIME count) is when the key, a subkey or a deleted
//       value last changed. Ids are never reused (AUTOINCREMENT), so a
//       handle that remembers an id can tell that its key was deleted even
//       when a new key took its place.
//   vals(key, fold, name, seq, type, data, written), primary key (key, fold)
//       one row per value; `seq` orders a key's values by creation. A key's
//       last write time is the latest `written` of the key and its values,
//       so that setting a value changes one page of the file.
//   meta(name, value)
//       "boot_id": the machine boot the volatile keys belong to.
//
// Durability: WAL journal with synchronous=NORMAL. A commit has reached the
// operating system when it returns, so it survives the crash of the
// process; a power failure can lose the last commits but never leaves the
// file inconsistent. RegFlushKey checkpoints, which syncs the log.
//
// Connections: one per thread, opened on the thread's first registry call
// and closed when the thread ends, so threads never wait for each other in
// this process; each caches its prepared statements and a table of resolved
// key paths. A forked child never touches its parent's connection (SQLite
// connections must not cross a fork); it opens its own, but, as SQLite
// advises, a child should exec before it uses the registry.
//
// Read cache: each connection remembers the keys it saw exist and the
// values it read, as long as nobody commits. The WAL index header in the
// shared memory of the database changes with every commit of any process
// (it is written under the write lock before the commit returns), so a
// connection compares it with the header it saw when it filled the cache
// and drops the cache when they differ. Reading the header costs a few
// loads from shared memory, where a query costs two lock system calls.
//
// Locking: writes run in BEGIN IMMEDIATE transactions; a connection waits
// for another process's lock at most the busy timeout (5 s), then the call
// fails with ERROR_REGISTRY_IO_FAILED.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "platform/win32.h"

namespace zq::platform::internal {

inline constexpr int kRegistrySchemaVersion = 1;
inline constexpr int64_t kKeyVolatile = 1;  // removed at the next boot
inline constexpr int64_t kKeyFixed = 2;     // a root or a predefined key: never deleted

// The statements a connection prepares (once, on first use).
enum class Sql : unsigned {
    kFindChild,        // ?1 parent, ?2 fold -> id, flags
    kKeyExists,        // ?1 id -> 1
    kKeyRow,           // ?1 id -> flags, class, written, parent
    kInsertKey,        // ?1 parent, ?2 fold, ?3 name, ?4 class, ?5 flags, ?6 written
    kTouchKey,         // ?1 id, ?2 written
    kHasChildren,      // ?1 id -> 1
    kChildren,         // ?1 id -> id, flags
    kDeleteKeyValues,  // ?1 id
    kDeleteKeyRow,     // ?1 id
    kGetValue,         // ?1 key, ?2 fold -> type, data
    kSetValue,         // ?1 key, ?2 fold, ?3 name, ?4 type, ?5 data, ?6 written
    kDeleteValue,      // ?1 key, ?2 fold
    kEnumKey,          // ?1 parent, ?2 index -> name, class, written
    kEnumValue,        // ?1 key, ?2 index -> name, type, data
    kChildStats,       // ?1 parent -> count, max name length, max class length
    kValueStats,       // ?1 key -> count, max name length, max data length (strings counted wide)
    kBegin,
    kBeginImmediate,
    kCommit,
    kRollback,
    kCount
};

// Keys behind the predefined handles, resolved when the connection opens.
struct PredefinedKeys {
    int64_t local_machine = 0;
    int64_t users = 0;
    int64_t classes_root = 0;
    int64_t current_user = 0;
    int64_t current_config = 0;
};

class RegistryDatabase {
public:
    // The calling thread's connection, opened when needed; nullptr with
    // `error` set when the database cannot be opened (the next call tries
    // again).
    static RegistryDatabase* ForThisThread(LONG& error);

    ~RegistryDatabase();
    RegistryDatabase(const RegistryDatabase&) = delete;
    RegistryDatabase& operator=(const RegistryDatabase&) = delete;

    sqlite3* handle() const { return db_; }
    const PredefinedKeys& predefined() const { return predefined_; }

    // The prepared statement, or nullptr (error traced) when it cannot be
    // prepared.
    sqlite3_stmt* Prepared(Sql which);

    // Resolved paths: (parent id, folded path) -> key id. Entries are only
    // hints: a user checks that the key still exists.
    int64_t CachedPath(int64_t parent, std::string_view folded);
    void CachePath(int64_t parent, std::string_view folded, int64_t id);

    // The Win32 code for a failed SQLite call (the message is traced).
    LONG Failure(int sqlite_code, const char* what);

    // Read cache. CacheUsable() must be asked before the query whose result
    // is to be cached; it drops the cache when another commit happened and
    // is false inside a write transaction or while a commit is under way.
    struct CachedValue {
        bool found;
        DWORD type;
        std::string data;
    };
    bool CacheUsable();
    bool KnownKey(int64_t id) const { return known_keys_.count(id) != 0; }
    void RememberKey(int64_t id);
    const CachedValue* CachedValueOf(int64_t key, std::string_view fold);
    void RememberValue(int64_t key, std::string_view fold, bool found, DWORD type,
                       std::string_view data);
    void SetWriting(bool writing) { writing_ = writing; }

private:
    RegistryDatabase() = default;
    LONG Open();
    LONG CreateSchema();
    LONG ResolvePredefinedKeys();
    LONG DropVolatileKeysOfEarlierBoots();
    void MapWalIndex();

    sqlite3* db_ = nullptr;
    sqlite3_stmt* statements_[static_cast<unsigned>(Sql::kCount)] = {};
    PredefinedKeys predefined_;
    std::unordered_map<std::string, int64_t> path_cache_;
    std::string cache_key_;                         // scratch for the cache lookups
    const volatile uint32_t* wal_index_ = nullptr;  // the shared WAL index, when in WAL mode
    uint32_t cache_header_[12] = {};
    std::unordered_set<int64_t> known_keys_;
    std::unordered_map<std::string, CachedValue> values_;
    size_t values_bytes_ = 0;
    bool writing_ = false;
    unsigned fork_generation_ = 0;
    int busy_timeout_ms_ = 0;
};

// A prepared statement in use: bindings and reset are undone when it goes
// out of scope, so the cached statement is ready for the next user.
class Statement {
public:
    Statement(RegistryDatabase& db, Sql which) : db_(db), stmt_(db.Prepared(which)) {}
    ~Statement() {
        if (stmt_) {
            sqlite3_reset(stmt_);
            sqlite3_clear_bindings(stmt_);
        }
    }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    bool ok() const { return stmt_ != nullptr; }
    void Bind(int index, int64_t value) { sqlite3_bind_int64(stmt_, index, value); }
    // The bytes must stay valid until the statement is done (not copied).
    void Bind(int index, std::string_view bytes) {
        sqlite3_bind_blob64(stmt_, index, bytes.empty() ? "" : bytes.data(), bytes.size(),
                            SQLITE_STATIC);
    }
    // SQLITE_ROW, SQLITE_DONE or an error code.
    int Step() { return stmt_ ? sqlite3_step(stmt_) : SQLITE_ERROR; }
    int64_t Int(int column) const { return sqlite3_column_int64(stmt_, column); }
    bool IsNull(int column) const { return sqlite3_column_type(stmt_, column) == SQLITE_NULL; }
    // Valid until the next Step or the end of the statement.
    std::string_view Bytes(int column) const {
        const void* data = sqlite3_column_blob(stmt_, column);
        int size = sqlite3_column_bytes(stmt_, column);
        return data ? std::string_view(static_cast<const char*>(data), static_cast<size_t>(size))
                    : std::string_view();
    }
    // Runs a statement that returns no rows; ERROR_SUCCESS or the mapped error.
    LONG Run(const char* what);

private:
    RegistryDatabase& db_;
    sqlite3_stmt* stmt_;
};

// One transaction; rolled back unless committed. Reads that take several
// statements use kRead so that they see one state of the database.
class Transaction {
public:
    enum Kind { kRead, kWrite };
    Transaction(RegistryDatabase& db, Kind kind);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    // ERROR_SUCCESS when the transaction began.
    LONG status() const { return status_; }
    LONG Commit();

private:
    RegistryDatabase& db_;
    bool write_;
    LONG status_;
    bool open_ = false;
};

// Current time as a FILETIME count (100 ns since 1601).
int64_t RegistryTimeNow();

// Tests: the lock wait of every connection (the default is 5000 ms) and
// closing the calling thread's connection.
void SetRegistryBusyTimeoutForTesting(int milliseconds);
void CloseRegistryConnectionForTesting();
// Absolute path of the database file.
std::string RegistryDatabasePath();

}  // namespace zq::platform::internal
