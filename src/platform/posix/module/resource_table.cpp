// Registered resource images and lookups in them.
#include "platform/posix/module/resource_table.h"

#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/posix/base/debug_channel.h"

namespace zq::platform::internal {
namespace {

struct Registration {
    const uint8_t* begin = nullptr;
    size_t size = 0;
    std::vector<ResourceEntry> entries;
};

struct Table {
    std::mutex mutex;
    std::map<HMODULE, std::vector<std::shared_ptr<const Registration>>> modules;
};

Table& TheTable() {
    static Table* table = new Table;  // outlives every module's destructor
    return *table;
}

FoundResource Found(const Registration& registration, const ResourceEntry& entry) {
    return FoundResource{&entry, registration.begin + entry.offset, entry.size};
}

}  // namespace

bool RegisterResources(const uint8_t* begin, size_t size) {
    auto registration = std::make_shared<Registration>();
    registration->begin = begin;
    registration->size = size;
    if (!ParseResImage(ByteView(begin, size), 0, &registration->entries)) {
        ZQ_TRACE(kResource, "module resources at %p do not parse", static_cast<const void*>(begin));
        return false;
    }
    HMODULE module = ZqModuleFromAddress(begin);
    Table& table = TheTable();
    std::lock_guard<std::mutex> lock(table.mutex);
    table.modules[module].push_back(std::move(registration));
    ZQ_TRACE(kResource, "module %p: %zu resource bytes registered", static_cast<void*>(module),
             size);
    return true;
}

void UnregisterResources(const uint8_t* begin) {
    HMODULE module = ZqModuleFromAddress(begin);
    Table& table = TheTable();
    std::lock_guard<std::mutex> lock(table.mutex);
    auto found = table.modules.find(module);
    if (found == table.modules.end())
        return;
    auto& list = found->second;
    for (auto it = list.begin(); it != list.end(); ++it) {
        if ((*it)->begin == begin) {
            list.erase(it);
            break;
        }
    }
    if (list.empty())
        table.modules.erase(found);
}

bool FindModuleResource(HMODULE module, const ResourceName& type, const ResourceName& name,
                        uint16_t language, bool any_language, FoundResource* out, DWORD* error) {
    std::vector<std::shared_ptr<const Registration>> registrations;
    {
        Table& table = TheTable();
        std::lock_guard<std::mutex> lock(table.mutex);
        auto found = table.modules.find(module);
        if (found != table.modules.end())
            registrations = found->second;
    }
    *error = ERROR_RESOURCE_DATA_NOT_FOUND;
    for (const auto& registration : registrations) {
        LookupFailure failure = LookupFailure::kNoResources;
        long index =
            SelectResourceIn(registration->entries, type, name, language, any_language, &failure);
        if (index >= 0) {
            *out = Found(*registration, registration->entries[static_cast<size_t>(index)]);
            return true;
        }
        // Keep the most specific reason over all registrations (the codes grow with it).
        if (static_cast<DWORD>(failure) > *error)
            *error = static_cast<DWORD>(failure);
    }
    return false;
}

bool ResolveResourceHandle(HRSRC handle, FoundResource* out) {
    if (!handle)
        return false;
    const auto wanted = reinterpret_cast<uintptr_t>(handle);
    Table& table = TheTable();
    std::lock_guard<std::mutex> lock(table.mutex);
    for (const auto& [module, list] : table.modules) {
        for (const auto& registration : list) {
            const auto& entries = registration->entries;
            const auto first = reinterpret_cast<uintptr_t>(entries.data());
            if (wanted < first)
                continue;
            const uintptr_t bytes = wanted - first;
            if (bytes % sizeof(ResourceEntry) != 0 ||
                bytes / sizeof(ResourceEntry) >= entries.size())
                continue;
            *out = Found(*registration, entries[bytes / sizeof(ResourceEntry)]);
            return true;
        }
    }
    return false;
}

}  // namespace zq::platform::internal
