#include "platform/posix/base/handle_table.h"

#include <mutex>
#include <unordered_map>

namespace zq::platform::internal {

namespace {

struct Table {
    std::mutex mutex;
    std::unordered_map<uintptr_t, std::shared_ptr<KernelObject>> objects;
    uintptr_t next = 4;
};

Table& GetTable() {
    static Table* table = new Table;  // never destroyed: handles may be closed during exit
    return *table;
}

}  // namespace

HANDLE AddHandle(std::shared_ptr<KernelObject> object) {
    Table& t = GetTable();
    std::lock_guard<std::mutex> lock(t.mutex);
    // Values wrap far beyond any real use; skip ones still taken.
    for (int tries = 0; tries < 1 << 20; ++tries) {
        uintptr_t value = t.next;
        t.next = t.next + 4 > 0x3FFFFFFC ? 4 : t.next + 4;
        if (t.objects.emplace(value, object).second) {
            return reinterpret_cast<HANDLE>(value);
        }
    }
    return nullptr;
}

std::shared_ptr<KernelObject> LookupHandle(HANDLE handle) {
    Table& t = GetTable();
    std::lock_guard<std::mutex> lock(t.mutex);
    auto it = t.objects.find(reinterpret_cast<uintptr_t>(handle));
    return it == t.objects.end() ? nullptr : it->second;
}

bool RemoveHandle(HANDLE handle) {
    std::shared_ptr<KernelObject> doomed;  // destroyed after the lock is released
    {
        Table& t = GetTable();
        std::lock_guard<std::mutex> lock(t.mutex);
        auto it = t.objects.find(reinterpret_cast<uintptr_t>(handle));
        if (it == t.objects.end()) {
            return false;
        }
        doomed = std::move(it->second);
        t.objects.erase(it);
    }
    return true;
}

}  // namespace zq::platform::internal

extern "C" BOOL WINAPI CloseHandle(HANDLE hObject) {
    if (!zq::platform::internal::RemoveHandle(hObject)) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    return TRUE;
}
