#include "platform/posix/user/user_objects.h"

#include <unordered_map>

namespace zq::platform::internal {

namespace {

struct UserTable {
    std::unordered_map<uintptr_t, std::unique_ptr<UserObject>> objects;
    // Spaced out and far from the kernel handles, so a handle of one kind
    // is never mistaken for another.
    uintptr_t next = 0x10020;
};

UserTable& Table() {
    static UserTable* table = new UserTable;  // never destroyed: used during exit
    return *table;
}

}  // namespace

std::mutex& UserLock() {
    static std::mutex* lock = new std::mutex;
    return *lock;
}

uintptr_t AddUserObjectLocked(std::unique_ptr<UserObject> object) {
    UserTable& t = Table();
    for (int tries = 0; tries < 1 << 20; ++tries) {
        uintptr_t value = t.next;
        t.next = t.next + 4 > 0x3FFFFFFC ? 0x10020 : t.next + 4;
        if (t.objects.find(value) == t.objects.end()) {
            t.objects.emplace(value, std::move(object));
            return value;
        }
    }
    return 0;
}

UserObject* FindUserObjectLocked(const void* handle) {
    UserTable& t = Table();
    auto it = t.objects.find(reinterpret_cast<uintptr_t>(handle));
    return it == t.objects.end() ? nullptr : it->second.get();
}

std::unique_ptr<UserObject> RemoveUserObjectLocked(const void* handle) {
    UserTable& t = Table();
    auto it = t.objects.find(reinterpret_cast<uintptr_t>(handle));
    if (it == t.objects.end()) {
        return nullptr;
    }
    std::unique_ptr<UserObject> object = std::move(it->second);
    t.objects.erase(it);
    return object;
}

}  // namespace zq::platform::internal
