// The Win32 registry functions over the registry database.
//
// A key handle is an entry of the kernel handle table that remembers the
// key's id and the access it was opened with; each call checks that the key
// still exists as part of its own query, so a handle costs nothing while it
// is open. Predefined handles are not in the table: they name the keys the
// connection resolved when it opened.
#include <cstring>
#include <memory>
#include <new>
#include <string>

#include "platform/posix/base/debug_channel.h"
#include "platform/posix/base/handle_table.h"
#include "platform/posix/registry/registry_database.h"
#include "platform/posix/registry/registry_names.h"
#include "platform/posix/registry/registry_store.h"
#include "platform/win32.h"

namespace zq::platform::internal {

namespace {

constexpr DWORD kMaxValueDataBytes = 1u << 20;
constexpr DWORD kAllKeyRights = KEY_ALL_ACCESS;

class RegistryKeyObject final : public KernelObject {
public:
    RegistryKeyObject(int64_t id, DWORD access) : id(id), access(access) {}
    const int64_t id;
    const DWORD access;
};

enum class Predefined {
    kNone,
    kClassesRoot,
    kCurrentUser,
    kLocalMachine,
    kUsers,
    kUnbacked,
    kCurrentConfig
};

// Only the low 32 bits name a predefined key, as on 64-bit Windows.
Predefined PredefinedOf(HKEY key) {
    auto low = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(key));
    switch (low) {
        case 0x80000000u:
            return Predefined::kClassesRoot;
        case 0x80000001u:
            return Predefined::kCurrentUser;
        case 0x80000002u:
            return Predefined::kLocalMachine;
        case 0x80000003u:
            return Predefined::kUsers;
        case 0x80000004u:  // HKEY_PERFORMANCE_DATA: no counters here
        case 0x80000006u:  // HKEY_DYN_DATA: Windows 95 only
            return Predefined::kUnbacked;
        case 0x80000005u:
            return Predefined::kCurrentConfig;
        default:
            return Predefined::kNone;
    }
}

struct ResolvedKey {
    RegistryDatabase* db = nullptr;
    int64_t id = 0;
    DWORD access = 0;
    bool predefined = false;
};

// The key behind `key`; the database is opened only for a handle that can
// name a key.
LONG Resolve(HKEY key, ResolvedKey& out) {
    if (!key) {
        return ERROR_INVALID_HANDLE;
    }
    Predefined which = PredefinedOf(key);
    std::shared_ptr<RegistryKeyObject> object;
    if (which == Predefined::kUnbacked) {
        return ERROR_INVALID_HANDLE;
    }
    if (which == Predefined::kNone) {
        object = LookupHandleAs<RegistryKeyObject>(reinterpret_cast<HANDLE>(key));
        if (!object) {
            return ERROR_INVALID_HANDLE;
        }
    }
    LONG error = ERROR_SUCCESS;
    out.db = RegistryDatabase::ForThisThread(error);
    if (!out.db) {
        return error;
    }
    if (object) {
        out.id = object->id;
        out.access = object->access;
        out.predefined = false;
        return ERROR_SUCCESS;
    }
    const PredefinedKeys& keys = out.db->predefined();
    switch (which) {
        case Predefined::kClassesRoot:
            out.id = keys.classes_root;
            break;
        case Predefined::kCurrentUser:
            out.id = keys.current_user;
            break;
        case Predefined::kLocalMachine:
            out.id = keys.local_machine;
            break;
        case Predefined::kUsers:
            out.id = keys.users;
            break;
        default:
            out.id = keys.current_config;
            break;
    }
    out.access = kAllKeyRights;
    out.predefined = true;
    return ERROR_SUCCESS;
}

DWORD MapAccess(REGSAM sam) {
    DWORD access = sam & kAllKeyRights;
    if (sam & GENERIC_READ)
        access |= KEY_READ;
    if (sam & GENERIC_WRITE)
        access |= KEY_WRITE;
    if (sam & GENERIC_EXECUTE)
        access |= KEY_EXECUTE;
    if (sam & (GENERIC_ALL | MAXIMUM_ALLOWED))
        access |= kAllKeyRights;
    return access;
}

LONG NewHandle(int64_t id, DWORD access, PHKEY result) {
    HANDLE handle = AddHandle(std::make_shared<RegistryKeyObject>(id, access));
    if (!handle) {
        return ERROR_NO_SYSTEM_RESOURCES;
    }
    *result = reinterpret_cast<HKEY>(handle);
    return ERROR_SUCCESS;
}

bool IsStringType(DWORD type) {
    return type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ;
}

// Hands value data to a caller's buffer the way RegQueryValueExA does.
// `capacity` is the buffer size read before anything was written, since
// callers may pass one variable for both the type and the size.
LONG DeliverValue(DWORD type, std::string_view data, LPDWORD type_out, LPBYTE buffer,
                  DWORD capacity, DWORD& size_out) {
    auto size = static_cast<DWORD>(data.size());
    LONG result = ERROR_SUCCESS;
    if (buffer) {
        if (size > capacity) {
            result = ERROR_MORE_DATA;  // the buffer stays untouched
        } else {
            if (size > 0) {
                std::memcpy(buffer, data.data(), size);
            }
            // A string stored without its terminator gets one when there
            // is room for it; the size does not count it.
            if (IsStringType(type) && size > 0 && data[size - 1] != '\0' && capacity > size) {
                buffer[size] = 0;
            }
        }
    }
    if (type_out) {
        *type_out = type;
    }
    size_out = size;
    return result;
}

// Copies `text` and a terminator into a buffer known to have room.
void CopyName(std::string_view text, LPSTR buffer) {
    if (!text.empty()) {
        std::memcpy(buffer, text.data(), text.size());
    }
    buffer[text.size()] = '\0';
}

void ToFileTime(int64_t count, PFILETIME out) {
    out->dwLowDateTime = static_cast<DWORD>(static_cast<uint64_t>(count));
    out->dwHighDateTime = static_cast<DWORD>(static_cast<uint64_t>(count) >> 32);
}

// No exception leaves a registry function.
template <typename Body>
LONG Guarded(Body&& body) noexcept {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        return ERROR_NOT_ENOUGH_MEMORY;
    } catch (...) {
        return ERROR_REGISTRY_IO_FAILED;
    }
}

// Scratch space reused by the calls of a thread.
KeyPath& ScratchPath() {
    thread_local KeyPath path;
    return path;
}

std::string& ScratchFold(const char* name) {
    thread_local std::string fold;
    fold.clear();
    if (name) {
        AppendFoldedName(name, fold);
    }
    return fold;
}

LONG QueryValue(const ResolvedKey& key, LPCSTR name, LPDWORD type, LPBYTE data, DWORD capacity,
                DWORD& size) {
    RegistryStore store(*key.db);
    return store.ReadValue(key.id, ScratchFold(name),
                           [&](DWORD stored_type, std::string_view bytes) {
                               return DeliverValue(stored_type, bytes, type, data, capacity, size);
                           });
}

}  // namespace

}  // namespace zq::platform::internal

using namespace zq::platform::internal;

extern "C" {

LONG WINAPI RegOpenKeyExA(HKEY hKey, LPCSTR lpSubKey, DWORD /*ulOptions*/, REGSAM samDesired,
                          PHKEY phkResult) {
    if (!phkResult) {
        return ERROR_INVALID_PARAMETER;
    }
    return Guarded([&]() -> LONG {
        ResolvedKey parent;
        if (LONG error = Resolve(hKey, parent)) {
            return error;  // *phkResult untouched, as the ANSI form on Windows
        }
        *phkResult = nullptr;
        KeyPath& path = ScratchPath();
        if (LONG error = SplitKeyPath(lpSubKey, path)) {
            return error;
        }
        if (path.names.empty() && parent.predefined) {
            *phkResult = hKey;  // a predefined key opens as itself
            return ERROR_SUCCESS;
        }
        RegistryStore store(*parent.db);
        int64_t id = 0;
        if (LONG error = store.OpenPath(parent.id, path, true, id)) {
            ZQ_TRACE(kRegistry, "RegOpenKeyExA(%s) -> %d", lpSubKey ? lpSubKey : "(null)", error);
            return error;
        }
        return NewHandle(id, MapAccess(samDesired), phkResult);
    });
}

LONG WINAPI RegCreateKeyExA(HKEY hKey, LPCSTR lpSubKey, DWORD /*Reserved*/, LPSTR lpClass,
                            DWORD dwOptions, REGSAM samDesired,
                            const LPSECURITY_ATTRIBUTES /*lpSecurityAttributes*/, PHKEY phkResult,
                            LPDWORD lpdwDisposition) {
    if (!phkResult) {
        return ERROR_BADKEY;
    }
    constexpr DWORD kKnownOptions = REG_OPTION_VOLATILE | REG_OPTION_CREATE_LINK |
                                    REG_OPTION_BACKUP_RESTORE | REG_OPTION_OPEN_LINK;
    if ((dwOptions & ~kKnownOptions) || (dwOptions & REG_OPTION_CREATE_LINK)) {
        return ERROR_INVALID_PARAMETER;  // symbolic links are not supported
    }
    return Guarded([&]() -> LONG {
        ResolvedKey parent;
        if (LONG error = Resolve(hKey, parent)) {
            return error;
        }
        KeyPath& path = ScratchPath();
        if (LONG error = SplitKeyPath(lpSubKey, path)) {
            return error;
        }
        RegistryStore store(*parent.db);
        int64_t id = 0;
        bool created = false;
        // Most calls find the key: no write lock for them.
        LONG error = store.OpenPath(parent.id, path, true, id);
        if (error == ERROR_FILE_NOT_FOUND) {
            Transaction write(*parent.db, Transaction::kWrite);
            if ((error = write.status()) == ERROR_SUCCESS &&
                (error = store.CreatePath(
                     parent.id, path, lpClass != nullptr, lpClass ? lpClass : "",
                     (dwOptions & REG_OPTION_VOLATILE) != 0, id, created)) == ERROR_SUCCESS) {
                error = write.Commit();
            }
            if (error == ERROR_SUCCESS) {
                parent.db->CachePath(parent.id, path.folded, id);
            }
        }
        if (error != ERROR_SUCCESS) {
            ZQ_TRACE(kRegistry, "RegCreateKeyExA(%s) -> %d", lpSubKey ? lpSubKey : "(null)", error);
            return error;
        }
        HKEY handle = nullptr;
        if ((error = NewHandle(id, MapAccess(samDesired), &handle))) {
            return error;
        }
        *phkResult = handle;
        if (lpdwDisposition) {
            *lpdwDisposition = created ? REG_CREATED_NEW_KEY : REG_OPENED_EXISTING_KEY;
        }
        return ERROR_SUCCESS;
    });
}

LONG WINAPI RegQueryValueExA(HKEY hKey, LPCSTR lpValueName, LPDWORD lpReserved, LPDWORD lpType,
                             LPBYTE lpData, LPDWORD lpcbData) {
    if ((lpData && !lpcbData) || lpReserved) {
        return ERROR_INVALID_PARAMETER;
    }
    return Guarded([&]() -> LONG {
        ResolvedKey key;
        if (LONG error = Resolve(hKey, key)) {
            return error;
        }
        if (!(key.access & KEY_QUERY_VALUE)) {
            return ERROR_ACCESS_DENIED;
        }
        DWORD capacity = lpcbData ? *lpcbData : 0;
        DWORD size = 0;
        LONG error = QueryValue(key, lpValueName, lpType, lpData, capacity, size);
        if (error == ERROR_SUCCESS || error == ERROR_MORE_DATA) {
            if (lpcbData) {
                *lpcbData = size;
            }
        } else if (error == ERROR_FILE_NOT_FOUND) {
            if (lpType) {
                *lpType = REG_NONE;
            }
            if (lpcbData && !lpData) {
                *lpcbData = 0;
            }
        }
        return error;
    });
}

LONG WINAPI RegSetValueExA(HKEY hKey, LPCSTR lpValueName, DWORD /*Reserved*/, DWORD dwType,
                           const BYTE* lpData, DWORD cbData) {
    return Guarded([&]() -> LONG {
        ResolvedKey key;
        if (LONG error = Resolve(hKey, key)) {
            return error;
        }
        if (!(key.access & KEY_SET_VALUE)) {
            return ERROR_ACCESS_DENIED;
        }
        if (!lpData && cbData) {
            return ERROR_NOACCESS;
        }
        const char* name = lpValueName ? lpValueName : "";
        size_t name_length = strnlen(name, kMaxValueNameChars + 1);
        if (name_length > kMaxValueNameChars || cbData > kMaxValueDataBytes) {
            return ERROR_INVALID_PARAMETER;
        }
        DWORD size = cbData;
        // Windows quirk kept: a string whose terminator was not counted,
        // but follows the data, is stored with it.
        if (IsStringType(dwType) && size > 0 && lpData[size - 1] != 0 && lpData[size] == 0) {
            ++size;
        }
        Transaction write(*key.db, Transaction::kWrite);
        if (write.status() != ERROR_SUCCESS) {
            return write.status();
        }
        RegistryStore store(*key.db);
        std::string_view data(
            reinterpret_cast<const char*>(lpData ? lpData : reinterpret_cast<const BYTE*>("")),
            size);
        if (LONG error =
                store.WriteValue(key.id, std::string_view(name, name_length), dwType, data)) {
            return error;
        }
        return write.Commit();
    });
}

LONG WINAPI RegDeleteValueA(HKEY hKey, LPCSTR lpValueName) {
    return Guarded([&]() -> LONG {
        ResolvedKey key;
        if (LONG error = Resolve(hKey, key)) {
            return error;
        }
        if (!(key.access & KEY_SET_VALUE)) {
            return ERROR_ACCESS_DENIED;
        }
        Transaction write(*key.db, Transaction::kWrite);
        if (write.status() != ERROR_SUCCESS) {
            return write.status();
        }
        RegistryStore store(*key.db);
        if (LONG error = store.RemoveValue(key.id, ScratchFold(lpValueName))) {
            return error;
        }
        return write.Commit();
    });
}

LONG WINAPI RegDeleteKeyA(HKEY hKey, LPCSTR lpSubKey) {
    if (!lpSubKey) {
        return ERROR_INVALID_PARAMETER;
    }
    return Guarded([&]() -> LONG {
        ResolvedKey parent;
        if (LONG error = Resolve(hKey, parent)) {
            return error;
        }
        KeyPath& path = ScratchPath();
        if (LONG error = SplitKeyPath(lpSubKey, path)) {
            return error;
        }
        Transaction write(*parent.db, Transaction::kWrite);
        if (write.status() != ERROR_SUCCESS) {
            return write.status();
        }
        RegistryStore store(*parent.db);
        int64_t id = 0;
        LONG error = store.OpenPath(parent.id, path, false, id);
        if (error == ERROR_SUCCESS) {
            error = store.DeleteKey(id);
        }
        if (error == ERROR_SUCCESS) {
            error = write.Commit();
        }
        return error;
    });
}

LONG WINAPI RegDeleteTreeA(HKEY hKey, LPCSTR lpSubKey) {
    return Guarded([&]() -> LONG {
        ResolvedKey parent;
        if (LONG error = Resolve(hKey, parent)) {
            return error;
        }
        KeyPath& path = ScratchPath();
        if (LONG error = SplitKeyPath(lpSubKey, path)) {
            return error;
        }
        Transaction write(*parent.db, Transaction::kWrite);
        if (write.status() != ERROR_SUCCESS) {
            return write.status();
        }
        RegistryStore store(*parent.db);
        int64_t id = 0;
        LONG error = store.OpenPath(parent.id, path, false, id);
        if (error == ERROR_SUCCESS) {
            error = store.DeleteTree(id, !path.names.empty());
        }
        if (error == ERROR_SUCCESS) {
            error = write.Commit();
        }
        return error;
    });
}

LONG WINAPI RegCloseKey(HKEY hKey) {
    if (!hKey) {
        return ERROR_INVALID_HANDLE;
    }
    if (PredefinedOf(hKey) != Predefined::kNone) {
        return ERROR_SUCCESS;
    }
    auto handle = reinterpret_cast<HANDLE>(hKey);
    if (!LookupHandleAs<RegistryKeyObject>(handle)) {
        return ERROR_INVALID_HANDLE;  // not a key, or closed already
    }
    return RemoveHandle(handle) ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
}

LONG WINAPI RegFlushKey(HKEY hKey) {
    return Guarded([&]() -> LONG {
        ResolvedKey key;
        if (LONG error = Resolve(hKey, key)) {
            return error;
        }
        RegistryStore store(*key.db);
        if (LONG error = store.KeyExists(key.id)) {
            return error;
        }
        // The checkpoint syncs the log, and the database file once the log
        // is copied into it.
        int rc = sqlite3_wal_checkpoint_v2(key.db->handle(), nullptr, SQLITE_CHECKPOINT_PASSIVE,
                                           nullptr, nullptr);
        return rc == SQLITE_OK || rc == SQLITE_BUSY ? ERROR_SUCCESS : key.db->Failure(rc, "flush");
    });
}

LONG WINAPI RegEnumKeyExA(HKEY hKey, DWORD dwIndex, LPSTR lpName, LPDWORD lpcchName,
                          LPDWORD /*lpReserved*/, LPSTR lpClass, LPDWORD lpcchClass,
                          PFILETIME lpftLastWriteTime) {
    if (!lpName || !lpcchName || (lpClass && !lpcchClass)) {
        return ERROR_INVALID_PARAMETER;
    }
    return Guarded([&]() -> LONG {
        ResolvedKey key;
        if (LONG error = Resolve(hKey, key)) {
            return error;
        }
        if (!(key.access & KEY_ENUMERATE_SUB_KEYS)) {
            return ERROR_ACCESS_DENIED;
        }
        RegistryStore store(*key.db);
        return store.ReadSubkey(
            key.id, dwIndex,
            [&](std::string_view name, std::string_view key_class, int64_t written) -> LONG {
                if (name.size() >= *lpcchName || (lpClass && key_class.size() >= *lpcchClass)) {
                    return ERROR_MORE_DATA;  // names and sizes untouched
                }
                CopyName(name, lpName);
                *lpcchName = static_cast<DWORD>(name.size());
                if (lpClass) {
                    CopyName(key_class, lpClass);
                }
                if (lpcchClass) {
                    *lpcchClass = static_cast<DWORD>(key_class.size());
                }
                if (lpftLastWriteTime) {
                    ToFileTime(written, lpftLastWriteTime);
                }
                return ERROR_SUCCESS;
            });
    });
}

LONG WINAPI RegEnumValueA(HKEY hKey, DWORD dwIndex, LPSTR lpValueName, LPDWORD lpcchValueName,
                          LPDWORD /*lpReserved*/, LPDWORD lpType, LPBYTE lpData, LPDWORD lpcbData) {
    if (!lpValueName || !lpcchValueName || (lpData && !lpcbData)) {
        return ERROR_INVALID_PARAMETER;
    }
    return Guarded([&]() -> LONG {
        ResolvedKey key;
        if (LONG error = Resolve(hKey, key)) {
            return error;
        }
        if (!(key.access & KEY_QUERY_VALUE)) {
            return ERROR_ACCESS_DENIED;
        }
        DWORD capacity = lpcbData ? *lpcbData : 0;
        DWORD name_capacity = *lpcchValueName;
        RegistryStore store(*key.db);
        return store.ReadValueAt(
            key.id, dwIndex, [&](std::string_view name, DWORD type, std::string_view data) -> LONG {
                if (lpData && data.size() > capacity) {
                    // Data too big: only its size and type are told.
                    if (lpType) {
                        *lpType = type;
                    }
                    *lpcbData = static_cast<DWORD>(data.size());
                    return ERROR_MORE_DATA;
                }
                bool name_fits = name.size() < name_capacity;
                if (name_fits) {
                    CopyName(name, lpValueName);
                    *lpcchValueName = static_cast<DWORD>(name.size());
                } else if (name_capacity > 0) {
                    CopyName(name.substr(0, name_capacity - 1),
                             lpValueName);  // cut, size untouched
                }
                DWORD size = 0;
                DeliverValue(type, data, lpType, lpData, capacity, size);
                if (lpcbData) {
                    *lpcbData = size;
                }
                return name_fits ? ERROR_SUCCESS : ERROR_MORE_DATA;
            });
    });
}

LONG WINAPI RegQueryInfoKeyA(HKEY hKey, LPSTR lpClass, LPDWORD lpcchClass, LPDWORD lpReserved,
                             LPDWORD lpcSubKeys, LPDWORD lpcbMaxSubKeyLen, LPDWORD lpcbMaxClassLen,
                             LPDWORD lpcValues, LPDWORD lpcbMaxValueNameLen,
                             LPDWORD lpcbMaxValueLen, LPDWORD lpcbSecurityDescriptor,
                             PFILETIME lpftLastWriteTime) {
    return Guarded([&]() -> LONG {
        ResolvedKey key;
        if (LONG error = Resolve(hKey, key)) {
            return error;
        }
        if ((lpClass && !lpcchClass) || lpReserved) {
            return ERROR_INVALID_PARAMETER;
        }
        if (!(key.access & KEY_QUERY_VALUE)) {
            return ERROR_ACCESS_DENIED;
        }
        Transaction read(*key.db, Transaction::kRead);
        if (read.status() != ERROR_SUCCESS) {
            return read.status();
        }
        RegistryStore store(*key.db);
        KeyInfo info;
        if (LONG error = store.Info(key.id, info)) {
            return error;
        }
        LONG result = ERROR_SUCCESS;
        if (lpcchClass) {
            auto length = static_cast<DWORD>(info.key_class.size());
            if (!lpClass) {
                *lpcchClass = length;
            } else if (*lpcchClass == 0) {
                // Nothing fits, not even the terminator: Windows reports
                // success with a length of 0.
            } else if (length >= *lpcchClass) {
                DWORD copied = *lpcchClass - 1;
                CopyName(info.key_class.substr(0, copied), lpClass);
                *lpcchClass = copied;
                result = ERROR_MORE_DATA;
            } else {
                CopyName(info.key_class, lpClass);
                *lpcchClass = length;
            }
        }
        if (lpcSubKeys)
            *lpcSubKeys = info.subkeys;
        if (lpcbMaxSubKeyLen)
            *lpcbMaxSubKeyLen = info.max_subkey_name;
        if (lpcbMaxClassLen)
            *lpcbMaxClassLen = info.max_subkey_class;
        if (lpcValues)
            *lpcValues = info.values;
        if (lpcbMaxValueNameLen)
            *lpcbMaxValueNameLen = info.max_value_name;
        if (lpcbMaxValueLen)
            *lpcbMaxValueLen = info.max_value_data;
        if (lpcbSecurityDescriptor)
            *lpcbSecurityDescriptor = 0;
        if (lpftLastWriteTime)
            ToFileTime(info.written, lpftLastWriteTime);
        return result;
    });
}

LONG WINAPI RegOpenKeyA(HKEY hKey, LPCSTR lpSubKey, PHKEY phkResult) {
    if (!phkResult) {
        return ERROR_INVALID_PARAMETER;
    }
    if (!lpSubKey || !*lpSubKey) {
        if (PredefinedOf(hKey) == Predefined::kUnbacked) {
            return ERROR_INVALID_HANDLE;
        }
        *phkResult = hKey;  // the same handle, not even checked, as on Windows
        return ERROR_SUCCESS;
    }
    return RegOpenKeyExA(hKey, lpSubKey, 0, MAXIMUM_ALLOWED, phkResult);
}

LONG WINAPI RegCreateKeyA(HKEY hKey, LPCSTR lpSubKey, PHKEY phkResult) {
    if (!phkResult) {
        return ERROR_INVALID_PARAMETER;
    }
    return RegCreateKeyExA(hKey, lpSubKey, 0, nullptr, REG_OPTION_NON_VOLATILE, MAXIMUM_ALLOWED,
                           nullptr, phkResult, nullptr);
}

LONG WINAPI RegQueryValueA(HKEY hKey, LPCSTR lpSubKey, LPSTR lpData, PLONG lpcbData) {
    if (lpData && !lpcbData) {
        return ERROR_INVALID_PARAMETER;
    }
    return Guarded([&]() -> LONG {
        ResolvedKey key;
        if (LONG error = Resolve(hKey, key)) {
            return error;
        }
        KeyPath& path = ScratchPath();
        if (LONG error = SplitKeyPath(lpSubKey, path)) {
            return error;
        }
        if (path.names.empty()) {
            if (!(key.access & KEY_QUERY_VALUE)) {
                return ERROR_ACCESS_DENIED;
            }
        } else {
            RegistryStore store(*key.db);
            if (LONG error = store.OpenPath(key.id, path, true, key.id)) {
                return error;
            }
        }
        auto buffer = reinterpret_cast<LPBYTE>(lpData);
        DWORD capacity = lpcbData ? static_cast<DWORD>(*lpcbData) : 0;
        DWORD size = 0;
        LONG error = QueryValue(key, nullptr, nullptr, buffer, capacity, size);
        if (error == ERROR_FILE_NOT_FOUND) {
            // A key without a default value reads as the empty string.
            error = DeliverValue(REG_SZ, std::string_view("", 1), nullptr, buffer, capacity, size);
        }
        if ((error == ERROR_SUCCESS || error == ERROR_MORE_DATA) && lpcbData) {
            *lpcbData = static_cast<LONG>(size);
        }
        return error;
    });
}

LONG WINAPI RegSetValueA(HKEY hKey, LPCSTR lpSubKey, DWORD dwType, LPCSTR lpData,
                         DWORD /*cbData*/) {
    if (dwType != REG_SZ || !lpData) {
        return ERROR_INVALID_PARAMETER;
    }
    return Guarded([&]() -> LONG {
        ResolvedKey key;
        if (LONG error = Resolve(hKey, key)) {
            return error;
        }
        KeyPath& path = ScratchPath();
        if (LONG error = SplitKeyPath(lpSubKey, path)) {
            return error;
        }
        if (path.names.empty() && !(key.access & KEY_SET_VALUE)) {
            return ERROR_ACCESS_DENIED;
        }
        size_t size = std::strlen(lpData) + 1;  // the size argument is ignored, as on Windows
        if (size > kMaxValueDataBytes) {
            return ERROR_INVALID_PARAMETER;
        }
        Transaction write(*key.db, Transaction::kWrite);
        if (write.status() != ERROR_SUCCESS) {
            return write.status();
        }
        RegistryStore store(*key.db);
        int64_t target = key.id;
        bool created = false;
        if (!path.names.empty()) {
            if (LONG error = store.CreatePath(key.id, path, false, "", false, target, created)) {
                return error;
            }
        }
        if (LONG error = store.WriteValue(target, "", REG_SZ, std::string_view(lpData, size))) {
            return error;
        }
        LONG error = write.Commit();
        if (error == ERROR_SUCCESS && !path.names.empty()) {
            key.db->CachePath(key.id, path.folded, target);
        }
        return error;
    });
}

LONG WINAPI RegEnumKeyA(HKEY hKey, DWORD dwIndex, LPSTR lpName, DWORD cchName) {
    DWORD size = cchName;
    return RegEnumKeyExA(hKey, dwIndex, lpName, &size, nullptr, nullptr, nullptr, nullptr);
}

}  // extern "C"
