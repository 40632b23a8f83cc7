#include "platform/posix/registry/registry_store.h"

#include <vector>

namespace zq::platform::internal {

LONG RegistryStore::Missing(int rc, int64_t key, LONG absent, const char* what) {
    if (rc != SQLITE_DONE) {
        return db_.Failure(rc, what);
    }
    LONG exists = KeyExists(key);
    return exists == ERROR_SUCCESS ? absent : exists;
}

LONG RegistryStore::KeyExists(int64_t id) {
    bool cacheable = db_.CacheUsable();
    if (cacheable && db_.KnownKey(id)) {
        return ERROR_SUCCESS;
    }
    Statement exists(db_, Sql::kKeyExists);
    exists.Bind(1, id);
    int rc = exists.Step();
    if (rc == SQLITE_ROW) {
        if (cacheable) {
            db_.RememberKey(id);
        }
        return ERROR_SUCCESS;
    }
    return rc == SQLITE_DONE ? ERROR_KEY_DELETED : db_.Failure(rc, "look up a key");
}

LONG RegistryStore::LoadValue(int64_t key, std::string_view fold,
                              const RegistryDatabase::CachedValue*& value) {
    bool cacheable = db_.CacheUsable();
    if (cacheable) {
        if ((value = db_.CachedValueOf(key, fold))) {
            return ERROR_SUCCESS;
        }
    }
    Statement get(db_, Sql::kGetValue);
    get.Bind(1, key);
    get.Bind(2, fold);
    int rc = get.Step();
    if (rc == SQLITE_ROW) {
        scratch_.found = true;
        scratch_.type = static_cast<DWORD>(get.Int(0));
        scratch_.data.assign(get.Bytes(1));
    } else {
        LONG error = Missing(rc, key, ERROR_FILE_NOT_FOUND, "read a value");
        if (error != ERROR_FILE_NOT_FOUND) {
            return error;
        }
        scratch_.found = false;
        scratch_.type = REG_NONE;
        scratch_.data.clear();
    }
    if (cacheable) {
        db_.RememberValue(key, fold, scratch_.found, scratch_.type, scratch_.data);
    }
    value = &scratch_;
    return ERROR_SUCCESS;
}

LONG RegistryStore::OpenPath(int64_t parent, const KeyPath& path, bool remember, int64_t& id) {
    if (path.folds.empty()) {
        LONG error = KeyExists(parent);
        if (error == ERROR_SUCCESS) {
            id = parent;
        }
        return error;
    }
    // A remembered path only needs its key to exist: keys are never renamed
    // or moved, and ids are never reused.
    if (int64_t cached = db_.CachedPath(parent, path.folded)) {
        LONG error = KeyExists(cached);
        if (error == ERROR_SUCCESS) {
            id = cached;
            return ERROR_SUCCESS;
        }
        if (error != ERROR_KEY_DELETED) {
            return error;
        }
    }
    int64_t current = parent;
    for (size_t i = 0; i < path.folds.size(); ++i) {
        Statement find(db_, Sql::kFindChild);
        find.Bind(1, current);
        find.Bind(2, path.folds[i]);
        int rc = find.Step();
        if (rc != SQLITE_ROW) {
            // Below the first level the parent was just seen to exist.
            return i == 0
                       ? Missing(rc, parent, ERROR_FILE_NOT_FOUND, "open a key")
                       : (rc == SQLITE_DONE ? ERROR_FILE_NOT_FOUND : db_.Failure(rc, "open a key"));
        }
        current = find.Int(0);
    }
    if (remember) {
        db_.CachePath(parent, path.folded, current);
    }
    id = current;
    return ERROR_SUCCESS;
}

LONG RegistryStore::CreatePath(int64_t parent, const KeyPath& path, bool has_class,
                               std::string_view key_class, bool volatile_keys, int64_t& id,
                               bool& created) {
    Statement row(db_, Sql::kKeyRow);
    row.Bind(1, parent);
    int rc = row.Step();
    if (rc != SQLITE_ROW) {
        return rc == SQLITE_DONE ? ERROR_KEY_DELETED : db_.Failure(rc, "look up a key");
    }
    int64_t flags = row.Int(0);
    int64_t now = RegistryTimeNow();
    int64_t current = parent;
    created = false;
    for (size_t i = 0; i < path.folds.size(); ++i) {
        Statement find(db_, Sql::kFindChild);
        find.Bind(1, current);
        find.Bind(2, path.folds[i]);
        rc = find.Step();
        if (rc == SQLITE_ROW) {
            current = find.Int(0);
            flags = find.Int(1);
            created = false;
            continue;
        }
        if (rc != SQLITE_DONE) {
            return db_.Failure(rc, "find a key");
        }
        if ((flags & kKeyVolatile) && !volatile_keys) {
            return ERROR_CHILD_MUST_BE_VOLATILE;
        }
        Statement insert(db_, Sql::kInsertKey);
        insert.Bind(1, current);
        insert.Bind(2, path.folds[i]);
        insert.Bind(3, path.names[i]);
        if (has_class && i + 1 == path.folds.size()) {
            insert.Bind(4, key_class);
        }
        flags = volatile_keys ? kKeyVolatile : 0;
        insert.Bind(5, flags);
        insert.Bind(6, now);
        if (LONG error = insert.Run("create a key")) {
            return error;
        }
        int64_t child = sqlite3_last_insert_rowid(db_.handle());
        Statement touch(db_, Sql::kTouchKey);
        touch.Bind(1, current);
        touch.Bind(2, now);
        if (LONG error = touch.Run("update a key")) {
            return error;
        }
        current = child;
        created = true;
    }
    id = current;
    return ERROR_SUCCESS;
}

LONG RegistryStore::DeleteKey(int64_t id) {
    Statement row(db_, Sql::kKeyRow);
    row.Bind(1, id);
    int rc = row.Step();
    if (rc != SQLITE_ROW) {
        return rc == SQLITE_DONE ? ERROR_KEY_DELETED : db_.Failure(rc, "look up a key");
    }
    if (row.Int(0) & kKeyFixed) {
        return ERROR_ACCESS_DENIED;
    }
    int64_t parent = row.Int(3);
    Statement children(db_, Sql::kHasChildren);
    children.Bind(1, id);
    rc = children.Step();
    if (rc == SQLITE_ROW) {
        return ERROR_ACCESS_DENIED;  // Windows NT refuses keys that have subkeys
    }
    if (rc != SQLITE_DONE) {
        return db_.Failure(rc, "look for subkeys");
    }
    Statement values(db_, Sql::kDeleteKeyValues);
    values.Bind(1, id);
    if (LONG error = values.Run("delete values")) {
        return error;
    }
    Statement key(db_, Sql::kDeleteKeyRow);
    key.Bind(1, id);
    if (LONG error = key.Run("delete a key")) {
        return error;
    }
    Statement touch(db_, Sql::kTouchKey);
    touch.Bind(1, parent);
    touch.Bind(2, RegistryTimeNow());
    return touch.Run("update a key");
}

LONG RegistryStore::DeleteTree(int64_t id, bool itself) {
    Statement row(db_, Sql::kKeyRow);
    row.Bind(1, id);
    int rc = row.Step();
    if (rc != SQLITE_ROW) {
        return rc == SQLITE_DONE ? ERROR_KEY_DELETED : db_.Failure(rc, "look up a key");
    }
    if (itself && (row.Int(0) & kKeyFixed)) {
        return ERROR_ACCESS_DENIED;
    }
    int64_t parent = row.Int(3);
    // The whole tree first, so that a fixed key stops it before any change.
    std::vector<int64_t> tree{id};
    for (size_t i = 0; i < tree.size(); ++i) {
        Statement children(db_, Sql::kChildren);
        children.Bind(1, tree[i]);
        while ((rc = children.Step()) == SQLITE_ROW) {
            if (children.Int(1) & kKeyFixed) {
                return ERROR_ACCESS_DENIED;
            }
            tree.push_back(children.Int(0));
        }
        if (rc != SQLITE_DONE) {
            return db_.Failure(rc, "list subkeys");
        }
    }
    for (size_t i = 0; i < tree.size(); ++i) {
        Statement values(db_, Sql::kDeleteKeyValues);
        values.Bind(1, tree[i]);
        if (LONG error = values.Run("delete values")) {
            return error;
        }
        if (i == 0 && !itself) {
            continue;
        }
        Statement key(db_, Sql::kDeleteKeyRow);
        key.Bind(1, tree[i]);
        if (LONG error = key.Run("delete a key")) {
            return error;
        }
    }
    Statement touch(db_, Sql::kTouchKey);
    touch.Bind(1, itself ? parent : id);
    touch.Bind(2, RegistryTimeNow());
    return touch.Run("update a key");
}

LONG RegistryStore::WriteValue(int64_t key, std::string_view name, DWORD type,
                               std::string_view data) {
    if (LONG error = KeyExists(key)) {
        return error;
    }
    std::string fold = FoldName(name);
    Statement set(db_, Sql::kSetValue);
    set.Bind(1, key);
    set.Bind(2, fold);
    set.Bind(3, name);
    set.Bind(4, static_cast<int64_t>(type));
    set.Bind(5, data);
    set.Bind(6, RegistryTimeNow());
    return set.Run("set a value");
}

LONG RegistryStore::RemoveValue(int64_t key, std::string_view fold) {
    Statement remove(db_, Sql::kDeleteValue);
    remove.Bind(1, key);
    remove.Bind(2, fold);
    if (LONG error = remove.Run("delete a value")) {
        return error;
    }
    if (sqlite3_changes(db_.handle()) == 0) {
        LONG exists = KeyExists(key);
        return exists == ERROR_SUCCESS ? ERROR_FILE_NOT_FOUND : exists;
    }
    Statement touch(db_, Sql::kTouchKey);
    touch.Bind(1, key);
    touch.Bind(2, RegistryTimeNow());
    return touch.Run("update a key");
}

LONG RegistryStore::Info(int64_t key, KeyInfo& info) {
    {
        Statement row(db_, Sql::kKeyRow);
        row.Bind(1, key);
        int rc = row.Step();
        if (rc != SQLITE_ROW) {
            return rc == SQLITE_DONE ? ERROR_KEY_DELETED : db_.Failure(rc, "look up a key");
        }
        info_class_.assign(row.Bytes(1));
        info.key_class = info_class_;
        info.written = row.Int(2);
    }
    {
        Statement children(db_, Sql::kChildStats);
        children.Bind(1, key);
        int rc = children.Step();
        if (rc != SQLITE_ROW) {
            return db_.Failure(rc, "count subkeys");
        }
        info.subkeys = static_cast<DWORD>(children.Int(0));
        info.max_subkey_name = static_cast<DWORD>(children.Int(1));
        info.max_subkey_class = static_cast<DWORD>(children.Int(2));
    }
    Statement values(db_, Sql::kValueStats);
    values.Bind(1, key);
    int rc = values.Step();
    if (rc != SQLITE_ROW) {
        return db_.Failure(rc, "count values");
    }
    info.values = static_cast<DWORD>(values.Int(0));
    info.max_value_name = static_cast<DWORD>(values.Int(1));
    info.max_value_data = static_cast<DWORD>(values.Int(2));
    return ERROR_SUCCESS;
}

}  // namespace zq::platform::internal
