#include "platform/posix/registry/registry_database.h"

#include <fcntl.h>
#include <pthread.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "platform/posix/base/debug_channel.h"
#include "platform/posix/base/host.h"
#include "platform/posix/base/prefix.h"
#include "platform/posix/registry/registry_names.h"

namespace zq::platform::internal {

namespace {

constexpr int kDefaultBusyTimeoutMs = 5000;
constexpr size_t kPathCacheLimit = 4096;
constexpr size_t kValueCacheLimit = 4096;      // values
constexpr size_t kValueCacheBytes = 1u << 20;  // bytes of data in all
constexpr size_t kCachedValueMaxBytes = 4096;  // bigger values are read each time
constexpr int kWalIndexRegionBytes = 32768;    // SQLite's wal-index page size
constexpr int64_t kLocalMachineId = 1;
constexpr int64_t kUsersId = 2;

std::atomic<int> g_busy_timeout_ms{kDefaultBusyTimeoutMs};
std::atomic<unsigned> g_fork_generation{0};

// A forked child must not use the connections it inherited.
const int kForkHandler = pthread_atfork(nullptr, nullptr, [] { ++g_fork_generation; });

thread_local std::unique_ptr<RegistryDatabase> t_database;

const char* const kSql[] = {
    // kFindChild
    "SELECT id, flags FROM keys WHERE parent = ?1 AND fold = ?2",
    // kKeyExists
    "SELECT 1 FROM keys WHERE id = ?1",
    // kKeyRow: a key's write time counts the writes of its values.
    "SELECT flags, class, MAX(written, IFNULL((SELECT MAX(written) FROM vals WHERE key = ?1), 0)), "
    "parent "
    "FROM keys WHERE id = ?1",
    // kInsertKey
    "INSERT INTO keys (parent, fold, name, class, flags, written) VALUES (?1, ?2, ?3, ?4, ?5, ?6)",
    // kTouchKey
    "UPDATE keys SET written = ?2 WHERE id = ?1",
    // kHasChildren
    "SELECT 1 FROM keys WHERE parent = ?1 LIMIT 1",
    // kChildren
    "SELECT id, flags FROM keys WHERE parent = ?1",
    // kDeleteKeyValues
    "DELETE FROM vals WHERE key = ?1",
    // kDeleteKeyRow
    "DELETE FROM keys WHERE id = ?1",
    // kGetValue
    "SELECT type, data FROM vals WHERE key = ?1 AND fold = ?2",
    // kSetValue: a new value goes after the key's others; a replaced one
    // keeps its name and place.
    "INSERT INTO vals (key, fold, name, seq, type, data, written) VALUES (?1, ?2, ?3, "
    "(SELECT IFNULL(MAX(seq), 0) + 1 FROM vals WHERE key = ?1), ?4, ?5, ?6) "
    "ON CONFLICT (key, fold) DO UPDATE SET type = excluded.type, data = excluded.data, "
    "written = excluded.written",
    // kDeleteValue
    "DELETE FROM vals WHERE key = ?1 AND fold = ?2",
    // kEnumKey
    "SELECT name, class, MAX(written, IFNULL((SELECT MAX(written) FROM vals WHERE key = keys.id), "
    "0)) "
    "FROM keys WHERE parent = ?1 ORDER BY fold LIMIT 1 OFFSET ?2",
    // kEnumValue
    "SELECT name, type, data FROM vals WHERE key = ?1 ORDER BY seq LIMIT 1 OFFSET ?2",
    // kChildStats
    "SELECT COUNT(*), IFNULL(MAX(LENGTH(name)), 0), IFNULL(MAX(LENGTH(class)), 0) "
    "FROM keys WHERE parent = ?1",
    // kValueStats: Windows counts string data in UTF-16 bytes.
    "SELECT COUNT(*), IFNULL(MAX(LENGTH(name)), 0), "
    "IFNULL(MAX(CASE WHEN type IN (1, 2, 7) THEN 2 * LENGTH(data) ELSE LENGTH(data) END), 0) "
    "FROM vals WHERE key = ?1",
    // kBegin, kBeginImmediate, kCommit, kRollback
    "BEGIN",
    "BEGIN IMMEDIATE",
    "COMMIT",
    "ROLLBACK",
};
static_assert(sizeof kSql / sizeof kSql[0] == static_cast<unsigned>(Sql::kCount));

const char kSchema[] =
    "CREATE TABLE keys ("
    "  id INTEGER PRIMARY KEY AUTOINCREMENT,"
    "  parent INTEGER NOT NULL,"
    "  fold BLOB NOT NULL,"
    "  name BLOB NOT NULL,"
    "  class BLOB,"
    "  flags INTEGER NOT NULL DEFAULT 0,"
    "  written INTEGER NOT NULL,"
    "  UNIQUE (parent, fold));"
    "CREATE TABLE vals ("
    "  key INTEGER NOT NULL,"
    "  fold BLOB NOT NULL,"
    "  name BLOB NOT NULL,"
    "  seq INTEGER NOT NULL,"
    "  type INTEGER NOT NULL,"
    "  data BLOB NOT NULL,"
    "  written INTEGER NOT NULL,"
    "  PRIMARY KEY (key, fold)) WITHOUT ROWID;"
    "CREATE INDEX vals_by_seq ON vals (key, seq);"
    "CREATE TABLE meta (name TEXT PRIMARY KEY, value) WITHOUT ROWID;";

// The keys every registry has, created with the database (and kept, like
// the hive roots of Windows). Paths below the roots, separated by '\'.
struct SeedKey {
    int64_t root;
    const char* path;
};
constexpr SeedKey kSeedKeys[] = {
    {kLocalMachineId, "SOFTWARE"},
    {kLocalMachineId, "SOFTWARE\\Classes"},
    {kLocalMachineId, "SYSTEM"},
    {kLocalMachineId, "SYSTEM\\CurrentControlSet"},
    {kLocalMachineId, "SYSTEM\\CurrentControlSet\\Hardware Profiles"},
    {kLocalMachineId, "SYSTEM\\CurrentControlSet\\Hardware Profiles\\Current"},
    {kUsersId, ".DEFAULT"},
};
constexpr const char* kClassesRootPath = "SOFTWARE\\Classes";
constexpr const char* kCurrentConfigPath = "SYSTEM\\CurrentControlSet\\Hardware Profiles\\Current";

// The login name of the process's user, the name of its HKEY_USERS key.
std::string CurrentUserName() {
    std::string name;
    struct passwd pw;
    struct passwd* found = nullptr;
    char buffer[4096];
    if (getpwuid_r(geteuid(), &pw, buffer, sizeof buffer, &found) == 0 && found && found->pw_name) {
        name = found->pw_name;
    } else if (const char* user = std::getenv("USER"); user && *user) {
        name = user;
    }
    if (name.empty() || name.size() > kMaxKeyNameChars || name.find('\\') != std::string::npos) {
        name = "user" + std::to_string(geteuid());
    }
    return name;
}

// Identifies the running boot of the machine; empty when unknown (volatile
// keys then live until the database is removed).
std::string CurrentBootId() {
    std::string id;
    int fd = ::open("/proc/sys/kernel/random/boot_id", O_RDONLY | O_CLOEXEC);
    if (fd >= 0) {
        char buffer[64];
        ssize_t n = ::read(fd, buffer, sizeof buffer);
        if (n > 0) {
            id.assign(buffer, static_cast<size_t>(n));
            while (!id.empty() && (id.back() == '\n' || id.back() == ' ')) {
                id.pop_back();
            }
        }
        ::close(fd);
    }
    return id;
}

// The file is created by us, not by SQLite, so that it is private to the
// user (0600); SQLite gives its -wal and -shm files the same mode.
bool PrepareDatabaseFile(const std::string& path) {
    int fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (fd < 0) {
        return false;
    }
    struct stat st;
    if (fstat(fd, &st) == 0 && st.st_uid == geteuid() && (st.st_mode & 077) != 0) {
        fchmod(fd, st.st_mode & 0700);
    }
    ::close(fd);
    return true;
}

LONG FindPath(RegistryDatabase& db, int64_t root, const char* path, int64_t& id) {
    KeyPath parts;
    SplitKeyPath(path, parts);
    id = root;
    for (std::string_view fold : parts.folds) {
        Statement find(db, Sql::kFindChild);
        find.Bind(1, id);
        find.Bind(2, fold);
        int rc = find.Step();
        if (rc == SQLITE_DONE) {
            return ERROR_FILE_NOT_FOUND;
        }
        if (rc != SQLITE_ROW) {
            return db.Failure(rc, "find seeded key");
        }
        id = find.Int(0);
    }
    return ERROR_SUCCESS;
}

// Creates the missing keys of `path` below `root` as fixed keys (inside the
// caller's write transaction).
LONG SeedPath(RegistryDatabase& db, int64_t root, const char* path, int64_t flags, int64_t& id) {
    KeyPath parts;
    SplitKeyPath(path, parts);
    id = root;
    int64_t now = RegistryTimeNow();
    for (size_t i = 0; i < parts.folds.size(); ++i) {
        Statement find(db, Sql::kFindChild);
        find.Bind(1, id);
        find.Bind(2, parts.folds[i]);
        int rc = find.Step();
        if (rc == SQLITE_ROW) {
            id = find.Int(0);
            continue;
        }
        if (rc != SQLITE_DONE) {
            return db.Failure(rc, "find seeded key");
        }
        Statement insert(db, Sql::kInsertKey);
        insert.Bind(1, id);
        insert.Bind(2, parts.folds[i]);
        insert.Bind(3, parts.names[i]);
        insert.Bind(5, flags);
        insert.Bind(6, now);
        if (LONG error = insert.Run("seed key")) {
            return error;
        }
        id = sqlite3_last_insert_rowid(db.handle());
    }
    return ERROR_SUCCESS;
}

LONG ExecuteScript(RegistryDatabase& db, const char* sql, const char* what) {
    char* message = nullptr;
    int rc = sqlite3_exec(db.handle(), sql, nullptr, nullptr, &message);
    if (rc != SQLITE_OK) {
        ZQ_TRACE(kRegistry, "%s: %s", what, message ? message : sqlite3_errstr(rc));
        sqlite3_free(message);
        return db.Failure(rc, what);
    }
    return ERROR_SUCCESS;
}

LONG ReadPragmaText(RegistryDatabase& db, const char* sql, std::string& value) {
    sqlite3_stmt* stmt = nullptr;
    int rc = sqlite3_prepare_v2(db.handle(), sql, -1, &stmt, nullptr);
    if (rc == SQLITE_OK) {
        rc = sqlite3_step(stmt);
        if (rc == SQLITE_ROW) {
            const unsigned char* text = sqlite3_column_text(stmt, 0);
            value = text ? reinterpret_cast<const char*>(text) : "";
            rc = SQLITE_OK;
        }
    }
    sqlite3_finalize(stmt);
    return rc == SQLITE_OK ? ERROR_SUCCESS : db.Failure(rc, sql);
}

LONG ReadPragmaInt(RegistryDatabase& db, const char* sql, int64_t& value) {
    sqlite3_stmt* stmt = nullptr;
    int rc = sqlite3_prepare_v2(db.handle(), sql, -1, &stmt, nullptr);
    if (rc == SQLITE_OK) {
        rc = sqlite3_step(stmt);
        if (rc == SQLITE_ROW) {
            value = sqlite3_column_int64(stmt, 0);
            rc = SQLITE_OK;
        }
    }
    sqlite3_finalize(stmt);
    return rc == SQLITE_OK ? ERROR_SUCCESS : db.Failure(rc, sql);
}

}  // namespace

std::string RegistryDatabasePath() {
    return Prefix() + "/registry.db";
}

int64_t RegistryTimeNow() {
    // 100 ns intervals between 1601-01-01 and 1970-01-01.
    constexpr int64_t kUnixEpochAsFileTime = 116444736000000000;
    return CurrentHost().RealTimeNanos() / 100 + kUnixEpochAsFileTime;
}

void SetRegistryBusyTimeoutForTesting(int milliseconds) {
    g_busy_timeout_ms = milliseconds > 0 ? milliseconds : kDefaultBusyTimeoutMs;
}

void CloseRegistryConnectionForTesting() {
    t_database.reset();
}

RegistryDatabase* RegistryDatabase::ForThisThread(LONG& error) {
    (void)kForkHandler;
    RegistryDatabase* db = t_database.get();
    unsigned generation = g_fork_generation.load(std::memory_order_relaxed);
    if (db && db->fork_generation_ != generation) {
        // Inherited across fork: abandoned without a close, which would
        // touch locks and files that belong to the parent.
        (void)t_database.release();
        db = nullptr;
    }
    if (db) {
        int timeout = g_busy_timeout_ms.load(std::memory_order_relaxed);
        if (db->busy_timeout_ms_ != timeout) {
            sqlite3_busy_timeout(db->db_, timeout);
            db->busy_timeout_ms_ = timeout;
        }
        return db;
    }
    std::unique_ptr<RegistryDatabase> fresh(new RegistryDatabase);
    fresh->fork_generation_ = generation;
    error = fresh->Open();
    if (error != ERROR_SUCCESS) {
        return nullptr;
    }
    t_database = std::move(fresh);
    return t_database.get();
}

RegistryDatabase::~RegistryDatabase() {
    for (sqlite3_stmt*& stmt : statements_) {
        sqlite3_finalize(stmt);
        stmt = nullptr;
    }
    if (db_) {
        sqlite3_close_v2(db_);
    }
}

LONG RegistryDatabase::Failure(int sqlite_code, const char* what) {
    ZQ_TRACE(kRegistry, "%s failed: %s (%d)", what,
             db_ ? sqlite3_errmsg(db_) : sqlite3_errstr(sqlite_code), sqlite_code);
    switch (sqlite_code & 0xFF) {
        case SQLITE_NOMEM:
            return ERROR_NOT_ENOUGH_MEMORY;
        case SQLITE_FULL:
            return ERROR_DISK_FULL;
        case SQLITE_READONLY:
        case SQLITE_PERM:
        case SQLITE_AUTH:
            return ERROR_ACCESS_DENIED;
        case SQLITE_CORRUPT:
            return ERROR_REGISTRY_CORRUPT;
        case SQLITE_NOTADB:
            return ERROR_NOT_REGISTRY_FILE;
        case SQLITE_TOOBIG:
            return ERROR_INVALID_PARAMETER;
        default:
            return ERROR_REGISTRY_IO_FAILED;  // also SQLITE_BUSY after the busy timeout
    }
}

sqlite3_stmt* RegistryDatabase::Prepared(Sql which) {
    sqlite3_stmt*& stmt = statements_[static_cast<unsigned>(which)];
    if (!stmt) {
        int rc = sqlite3_prepare_v3(db_, kSql[static_cast<unsigned>(which)], -1,
                                    SQLITE_PREPARE_PERSISTENT, &stmt, nullptr);
        if (rc != SQLITE_OK) {
            Failure(rc, kSql[static_cast<unsigned>(which)]);
            sqlite3_finalize(stmt);
            stmt = nullptr;
        }
    }
    return stmt;
}

int64_t RegistryDatabase::CachedPath(int64_t parent, std::string_view folded) {
    cache_key_.assign(reinterpret_cast<const char*>(&parent), sizeof parent);
    cache_key_.append(folded);
    auto it = path_cache_.find(cache_key_);
    return it == path_cache_.end() ? 0 : it->second;
}

void RegistryDatabase::CachePath(int64_t parent, std::string_view folded, int64_t id) {
    if (path_cache_.size() >= kPathCacheLimit) {
        path_cache_.clear();
    }
    cache_key_.assign(reinterpret_cast<const char*>(&parent), sizeof parent);
    cache_key_.append(folded);
    path_cache_[cache_key_] = id;
}

LONG RegistryDatabase::Open() {
    busy_timeout_ms_ = g_busy_timeout_ms.load();
    std::string path = RegistryDatabasePath();
    if (!PrepareDatabaseFile(path)) {
        ZQ_TRACE(kRegistry, "cannot create %s", path.c_str());
        return ERROR_REGISTRY_IO_FAILED;
    }
    int rc =
        sqlite3_open_v2(path.c_str(), &db_,
                        SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
    if (rc != SQLITE_OK) {
        return Failure(rc, "open the registry");
    }
    sqlite3_extended_result_codes(db_, 1);
    sqlite3_busy_timeout(db_, busy_timeout_ms_);
    // WAL: readers never wait for the writer, a commit is one append.
    // synchronous=NORMAL: a commit survives the crash of its process.
    std::string journal;
    if (LONG error = ReadPragmaText(*this, "PRAGMA journal_mode = WAL", journal)) {
        return error;
    }
    if (LONG error =
            ExecuteScript(*this, "PRAGMA synchronous = NORMAL;", "configure the registry")) {
        return error;
    }
    if (LONG error = CreateSchema()) {
        return error;
    }
    if (LONG error = ResolvePredefinedKeys()) {
        return error;
    }
    if (LONG error = DropVolatileKeysOfEarlierBoots()) {
        return error;
    }
    if (journal == "wal") {
        MapWalIndex();
    } else {
        ZQ_TRACE(kRegistry, "journal mode %s: no read cache", journal.c_str());
    }
    return ERROR_SUCCESS;
}

void RegistryDatabase::MapWalIndex() {
    // The first region of the wal-index, which SQLite has mapped by now
    // (the connection has read the database). Its first 96 bytes hold the
    // two copies of the index header that a commit rewrites.
    sqlite3_file* file = nullptr;
    if (sqlite3_file_control(db_, "main", SQLITE_FCNTL_FILE_POINTER, &file) != SQLITE_OK || !file ||
        !file->pMethods || file->pMethods->iVersion < 2 || !file->pMethods->xShmMap) {
        return;
    }
    void volatile* region = nullptr;
    if (file->pMethods->xShmMap(file, 0, kWalIndexRegionBytes, 0, &region) == SQLITE_OK && region) {
        wal_index_ = static_cast<const volatile uint32_t*>(region);
    }
}

bool RegistryDatabase::CacheUsable() {
    if (writing_ || !wal_index_) {
        return false;
    }
    // Read as SQLite does: the first copy, then the second; a writer
    // updates them in the other order, so equal copies are a whole header.
    uint32_t first[12];
    uint32_t second[12];
    for (int i = 0; i < 12; ++i) {
        first[i] = wal_index_[i];
    }
    std::atomic_thread_fence(std::memory_order_acquire);
    for (int i = 0; i < 12; ++i) {
        second[i] = wal_index_[12 + i];
    }
    std::atomic_thread_fence(std::memory_order_acquire);
    if (std::memcmp(first, second, sizeof first) != 0) {
        return false;  // a commit is being published
    }
    if (std::memcmp(first, cache_header_, sizeof first) != 0) {
        known_keys_.clear();
        values_.clear();
        values_bytes_ = 0;
        std::memcpy(cache_header_, first, sizeof first);
    }
    return true;
}

void RegistryDatabase::RememberKey(int64_t id) {
    if (known_keys_.size() >= kPathCacheLimit) {
        known_keys_.clear();
    }
    known_keys_.insert(id);
}

const RegistryDatabase::CachedValue* RegistryDatabase::CachedValueOf(int64_t key,
                                                                     std::string_view fold) {
    cache_key_.assign(reinterpret_cast<const char*>(&key), sizeof key);
    cache_key_.append(fold);
    auto it = values_.find(cache_key_);
    return it == values_.end() ? nullptr : &it->second;
}

void RegistryDatabase::RememberValue(int64_t key, std::string_view fold, bool found, DWORD type,
                                     std::string_view data) {
    if (data.size() > kCachedValueMaxBytes) {
        return;
    }
    if (values_.size() >= kValueCacheLimit || values_bytes_ + data.size() > kValueCacheBytes) {
        values_.clear();
        values_bytes_ = 0;
    }
    cache_key_.assign(reinterpret_cast<const char*>(&key), sizeof key);
    cache_key_.append(fold);
    values_bytes_ += data.size();
    values_[cache_key_] = CachedValue{found, type, std::string(data)};
}

LONG RegistryDatabase::CreateSchema() {
    int64_t version = 0;
    if (LONG error = ReadPragmaInt(*this, "PRAGMA user_version", version)) {
        return error;
    }
    if (version == kRegistrySchemaVersion) {
        return ERROR_SUCCESS;
    }
    Transaction write(*this, Transaction::kWrite);
    if (write.status() != ERROR_SUCCESS) {
        return write.status();
    }
    if (LONG error = ReadPragmaInt(*this, "PRAGMA user_version", version)) {
        return error;
    }
    if (version == 0) {  // a new file (another process may have been first)
        if (LONG error = ExecuteScript(*this, kSchema, "create the registry")) {
            return error;
        }
        int64_t now = RegistryTimeNow();
        std::string roots =
            "INSERT INTO keys (id, parent, fold, name, flags, written) VALUES "
            "(1, 0, 'HKEY_LOCAL_MACHINE', 'HKEY_LOCAL_MACHINE', 2, " +
            std::to_string(now) + "), (2, 0, 'HKEY_USERS', 'HKEY_USERS', 2, " +
            std::to_string(now) +
            ");PRAGMA user_version = " + std::to_string(kRegistrySchemaVersion) + ";";
        if (LONG error = ExecuteScript(*this, roots.c_str(), "create the registry roots")) {
            return error;
        }
        for (const SeedKey& seed : kSeedKeys) {
            int64_t id;
            if (LONG error = SeedPath(*this, seed.root, seed.path, kKeyFixed, id)) {
                return error;
            }
        }
        return write.Commit();
    }
    if (version != kRegistrySchemaVersion) {
        ZQ_TRACE(kRegistry, "registry schema %lld is not %d", static_cast<long long>(version),
                 kRegistrySchemaVersion);
        return ERROR_BADDB;
    }
    return write.Commit();
}

LONG RegistryDatabase::ResolvePredefinedKeys() {
    predefined_.local_machine = kLocalMachineId;
    predefined_.users = kUsersId;
    if (LONG error = FindPath(*this, kLocalMachineId, kClassesRootPath, predefined_.classes_root)) {
        return error == ERROR_FILE_NOT_FOUND ? ERROR_BADDB : error;
    }
    if (LONG error =
            FindPath(*this, kLocalMachineId, kCurrentConfigPath, predefined_.current_config)) {
        return error == ERROR_FILE_NOT_FOUND ? ERROR_BADDB : error;
    }
    std::string user = CurrentUserName();
    LONG error = FindPath(*this, kUsersId, user.c_str(), predefined_.current_user);
    if (error != ERROR_FILE_NOT_FOUND) {
        return error;
    }
    // The user's first registry call: HKEY_USERS\<user> and its Software key.
    Transaction write(*this, Transaction::kWrite);
    if (write.status() != ERROR_SUCCESS) {
        return write.status();
    }
    int64_t software;
    if ((error = SeedPath(*this, kUsersId, user.c_str(), kKeyFixed, predefined_.current_user)) ||
        (error = SeedPath(*this, predefined_.current_user, "Software", 0, software))) {
        return error;
    }
    return write.Commit();
}

LONG RegistryDatabase::DropVolatileKeysOfEarlierBoots() {
    std::string boot = CurrentBootId();
    auto stored_boot = [&](bool& same) -> LONG {
        sqlite3_stmt* stmt = nullptr;
        int rc = sqlite3_prepare_v2(db_, "SELECT value FROM meta WHERE name = 'boot_id'", -1, &stmt,
                                    nullptr);
        same = false;
        if (rc == SQLITE_OK) {
            rc = sqlite3_step(stmt);
            if (rc == SQLITE_ROW) {
                const unsigned char* text = sqlite3_column_text(stmt, 0);
                same = text && boot == reinterpret_cast<const char*>(text);
            }
            rc = rc == SQLITE_ROW || rc == SQLITE_DONE ? SQLITE_OK : rc;
        }
        sqlite3_finalize(stmt);
        return rc == SQLITE_OK ? ERROR_SUCCESS : Failure(rc, "read the boot id");
    };
    bool same;
    if (LONG error = stored_boot(same); error || same) {
        return error;
    }
    Transaction write(*this, Transaction::kWrite);
    if (write.status() != ERROR_SUCCESS) {
        return write.status();
    }
    if (LONG error = stored_boot(same); error || same) {
        return error;
    }
    // Below a volatile key there are only volatile keys, so no row is left
    // without its parent.
    std::string sql =
        "DELETE FROM vals WHERE key IN (SELECT id FROM keys WHERE flags & 1);"
        "DELETE FROM keys WHERE flags & 1;"
        "INSERT OR REPLACE INTO meta (name, value) VALUES ('boot_id', ";
    char* quoted = sqlite3_mprintf("%Q", boot.c_str());
    sql += quoted ? quoted : "''";
    sqlite3_free(quoted);
    sql += ");";
    if (LONG error = ExecuteScript(*this, sql.c_str(), "drop volatile keys")) {
        return error;
    }
    return write.Commit();
}

LONG Statement::Run(const char* what) {
    int rc = Step();
    if (rc == SQLITE_DONE || rc == SQLITE_ROW) {
        return ERROR_SUCCESS;
    }
    return db_.Failure(rc, what);
}

Transaction::Transaction(RegistryDatabase& db, Kind kind) : db_(db), write_(kind == kWrite) {
    Statement begin(db, write_ ? Sql::kBeginImmediate : Sql::kBegin);
    status_ = begin.Run(write_ ? "begin a write" : "begin a read");
    open_ = status_ == ERROR_SUCCESS;
    if (open_ && write_) {
        db_.SetWriting(true);
    }
}

Transaction::~Transaction() {
    if (open_) {
        Statement rollback(db_, Sql::kRollback);
        rollback.Run("roll back");
    }
    if (write_) {
        db_.SetWriting(false);
    }
}

LONG Transaction::Commit() {
    if (!open_) {
        return status_;
    }
    Statement commit(db_, Sql::kCommit);
    LONG error = commit.Run("commit");
    if (error == ERROR_SUCCESS) {
        open_ = false;
    }
    return error;
}

}  // namespace zq::platform::internal
