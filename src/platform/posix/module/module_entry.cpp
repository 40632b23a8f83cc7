// Entry points of modules: the DllMain calls a Windows loader would make.
#include <dlfcn.h>

#include <mutex>
#include <set>

#include "platform/win32.h"

namespace {

std::mutex& FailedMutex() {
    static std::mutex* mutex = new std::mutex;
    return *mutex;
}

std::set<HINSTANCE>& FailedModules() {
    static std::set<HINSTANCE>* failed = new std::set<HINSTANCE>;
    return *failed;
}

}  // namespace

extern "C" {

HINSTANCE WINAPI ZqModuleFromAddress(const void* address) {
    Dl_info info{};
    if (!address || dladdr(address, &info) == 0 || !info.dli_fbase) {
        return nullptr;
    }
    return static_cast<HINSTANCE>(info.dli_fbase);
}

BOOL WINAPI ZqModuleEntryAttach(const void* address_in_module, ZQ_DLL_ENTRY_PROC entry) {
    HINSTANCE module = ZqModuleFromAddress(address_in_module);
    BOOL ok = entry(module, DLL_PROCESS_ATTACH, nullptr);
    if (!ok) {
        std::lock_guard<std::mutex> lock(FailedMutex());
        FailedModules().insert(module);
    }
    return ok;
}

void WINAPI ZqModuleEntryDetach(const void* address_in_module, ZQ_DLL_ENTRY_PROC entry) {
    HINSTANCE module = ZqModuleFromAddress(address_in_module);
    {
        std::lock_guard<std::mutex> lock(FailedMutex());
        // A module whose attach failed is not detached, as on Windows.
        if (FailedModules().erase(module) != 0) {
            return;
        }
    }
    entry(module, DLL_PROCESS_DETACH, nullptr);
}

BOOL WINAPI ZqModuleAttachFailed(HINSTANCE module) {
    std::lock_guard<std::mutex> lock(FailedMutex());
    return FailedModules().count(module) != 0;
}

}  // extern "C"
