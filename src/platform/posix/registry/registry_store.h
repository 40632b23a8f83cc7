// Keys and values of the registry database, addressed by key id.
//
// Writes must run inside the caller's write Transaction; reads may run on
// their own (each statement then sees the latest committed state) or inside
// a read Transaction. Every function returns ERROR_SUCCESS or a Win32 code:
// ERROR_KEY_DELETED when the key given by id no longer exists,
// ERROR_FILE_NOT_FOUND for a missing subkey or value, ERROR_NO_MORE_ITEMS
// past the end of an enumeration, or the code of a database failure.
#pragma once

#include <cstdint>
#include <string_view>

#include "platform/posix/registry/registry_database.h"
#include "platform/posix/registry/registry_names.h"

namespace zq::platform::internal {

struct KeyInfo {
    std::string_view key_class;  // valid until the next call on the store
    int64_t written = 0;
    DWORD subkeys = 0;
    DWORD max_subkey_name = 0;
    DWORD max_subkey_class = 0;
    DWORD values = 0;
    DWORD max_value_name = 0;
    DWORD max_value_data = 0;
};

class RegistryStore {
public:
    explicit RegistryStore(RegistryDatabase& db) : db_(db) {}

    LONG KeyExists(int64_t id);

    // The key at `path` below `parent` (`parent` itself for an empty
    // path). With `remember`, a found path is kept in the connection's path
    // table: only for keys known to be committed.
    LONG OpenPath(int64_t parent, const KeyPath& path, bool remember, int64_t& id);

    // Opens or creates every key of `path` below `parent`. `key_class` (when
    // `has_class`) goes to the last key if this call creates it; `volatile_keys`
    // marks the keys it creates. `created` tells whether the last key is new.
    LONG CreatePath(int64_t parent, const KeyPath& path, bool has_class, std::string_view key_class,
                    bool volatile_keys, int64_t& id, bool& created);

    // Removes a key and its values; ERROR_ACCESS_DENIED when it has subkeys
    // or is a fixed key.
    LONG DeleteKey(int64_t id);

    // Removes the subkeys and values below a key, and with `itself` the key
    // too; nothing when a key of the tree is fixed (ERROR_ACCESS_DENIED).
    LONG DeleteTree(int64_t id, bool itself);

    LONG WriteValue(int64_t key, std::string_view name, DWORD type, std::string_view data);
    LONG RemoveValue(int64_t key, std::string_view fold);

    // Calls visit(type, data) for the value and returns what it returns.
    template <typename Visit>
    LONG ReadValue(int64_t key, std::string_view fold, Visit&& visit) {
        const RegistryDatabase::CachedValue* value = nullptr;
        if (LONG error = LoadValue(key, fold, value)) {
            return error;
        }
        return value->found ? visit(value->type, std::string_view(value->data))
                            : ERROR_FILE_NOT_FOUND;
    }

    // Calls visit(name, class, written) for subkey number `index`, in the
    // order of the folded names.
    template <typename Visit>
    LONG ReadSubkey(int64_t key, DWORD index, Visit&& visit) {
        Statement get(db_, Sql::kEnumKey);
        get.Bind(1, key);
        get.Bind(2, static_cast<int64_t>(index));
        int rc = get.Step();
        if (rc == SQLITE_ROW) {
            return visit(get.Bytes(0), get.Bytes(1), get.Int(2));
        }
        return Missing(rc, key, ERROR_NO_MORE_ITEMS, "enumerate subkeys");
    }

    // Calls visit(name, type, data) for value number `index`, in creation
    // order.
    template <typename Visit>
    LONG ReadValueAt(int64_t key, DWORD index, Visit&& visit) {
        Statement get(db_, Sql::kEnumValue);
        get.Bind(1, key);
        get.Bind(2, static_cast<int64_t>(index));
        int rc = get.Step();
        if (rc == SQLITE_ROW) {
            return visit(get.Bytes(0), static_cast<DWORD>(get.Int(1)), get.Bytes(2));
        }
        return Missing(rc, key, ERROR_NO_MORE_ITEMS, "enumerate values");
    }

    // Counts and sizes; call inside a read Transaction for one consistent view.
    LONG Info(int64_t key, KeyInfo& info);

private:
    // After a lookup that found no row (rc SQLITE_DONE): ERROR_KEY_DELETED
    // when `key` is gone, else `absent`. Other rc: the database failure.
    LONG Missing(int rc, int64_t key, LONG absent, const char* what);
    // The value from the read cache or the database (`found` false when the
    // key exists without it); valid until the next call on the store.
    LONG LoadValue(int64_t key, std::string_view fold, const RegistryDatabase::CachedValue*& value);

    RegistryDatabase& db_;
    std::string info_class_;
    RegistryDatabase::CachedValue scratch_{false, 0, {}};
};

}  // namespace zq::platform::internal
