// Enumerating the process's ELF objects through the dynamic linker.
#include "platform/posix/module/loaded_modules.h"

#include <dlfcn.h>
#include <limits.h>
#include <link.h>
#include <stdlib.h>
#include <sys/auxv.h>
#include <unistd.h>

namespace zq::platform::internal {
namespace {

HMODULE HandleOfObject(const dl_phdr_info* info) {
    for (int i = 0; i < info->dlpi_phnum; ++i) {
        if (info->dlpi_phdr[i].p_type == PT_LOAD) {
            return ZqModuleFromAddress(
                reinterpret_cast<const void*>(info->dlpi_addr + info->dlpi_phdr[i].p_vaddr));
        }
    }
    return nullptr;
}

std::string Absolute(const char* path) {
    char resolved[PATH_MAX];
    if (path && *path && realpath(path, resolved))
        return resolved;
    return path ? path : "";
}

}  // namespace

HMODULE ExecutableModule() {
    static const HMODULE handle = [] {
        auto entry = reinterpret_cast<const void*>(getauxval(AT_ENTRY));
        return ZqModuleFromAddress(entry);
    }();
    return handle;
}

const std::string& ExecutablePath() {
    static const std::string* path = new std::string(Absolute("/proc/self/exe"));
    return *path;
}

std::vector<LoadedModule> ListLoadedModules() {
    std::vector<LoadedModule> modules;
    const HMODULE executable = ExecutableModule();
    modules.push_back(LoadedModule{executable, ExecutablePath(), true});
    dl_iterate_phdr(
        [](dl_phdr_info* info, size_t, void* context) -> int {
            auto* list = static_cast<std::vector<LoadedModule>*>(context);
            HMODULE handle = HandleOfObject(info);
            if (!handle || !info->dlpi_name || !*info->dlpi_name)
                return 0;
            for (const LoadedModule& known : *list) {
                if (known.handle == handle)
                    return 0;
            }
            list->push_back(LoadedModule{handle, Absolute(info->dlpi_name), false});
            return 0;
        },
        &modules);
    return modules;
}

bool LoadedModulePath(HMODULE module, std::string* path) {
    if (!module)
        return false;
    for (const LoadedModule& loaded : ListLoadedModules()) {
        if (loaded.handle == module) {
            *path = loaded.path;
            return true;
        }
    }
    return false;
}

}  // namespace zq::platform::internal
