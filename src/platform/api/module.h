/* Modules (shared libraries) and their entry points.
 *
 * A module's instance handle (HINSTANCE/HMODULE) is its load base address,
 * as on Windows. A module that has a DllMain names it once, at namespace
 * scope in one of its C++ files:
 *
 *     ZQ_MODULE_ENTRY_POINT(DllMain);
 *
 * and the platform then calls it as the Windows loader would: with
 * DLL_PROCESS_ATTACH when the module is loaded (before the process's main,
 * or inside LoadLibraryA) and with DLL_PROCESS_DETACH when it is unloaded.
 * On Windows the macro expands to nothing; the loader finds DllMain itself. */
#ifndef ZQ_PLATFORM_API_MODULE_H
#define ZQ_PLATFORM_API_MODULE_H

#include "platform/api/types.h"

#define DLL_PROCESS_DETACH 0
#define DLL_PROCESS_ATTACH 1
#define DLL_THREAD_ATTACH 2
#define DLL_THREAD_DETACH 3

typedef BOOL(WINAPI* ZQ_DLL_ENTRY_PROC)(HINSTANCE hinstDLL, DWORD fdwReason, LPVOID lpvReserved);

ZQ_EXTERN_C_BEGIN

/* The instance handle (load base) of the module that contains `address`,
 * or NULL when no loaded module contains it. */
ZQ_API HINSTANCE WINAPI ZqModuleFromAddress(const void* address);

/* Called by ZQ_MODULE_ENTRY_POINT at load and unload; not for direct use.
 * Attach returns the entry point's result. A module whose attach returned
 * FALSE is refused by LoadLibraryA (ERROR_DLL_INIT_FAILED). */
ZQ_API BOOL WINAPI ZqModuleEntryAttach(const void* address_in_module, ZQ_DLL_ENTRY_PROC entry);
ZQ_API void WINAPI ZqModuleEntryDetach(const void* address_in_module, ZQ_DLL_ENTRY_PROC entry);

/* Whether the module with this instance handle refused its attach. */
ZQ_API BOOL WINAPI ZqModuleAttachFailed(HINSTANCE module);

ZQ_EXTERN_C_END

#ifdef __cplusplus
namespace zq::platform {
// Calls the entry point at static construction and destruction of the
// module that holds the registrar.
class ModuleEntryRegistrar {
public:
    explicit ModuleEntryRegistrar(ZQ_DLL_ENTRY_PROC entry) : entry_(entry) {
        ZqModuleEntryAttach(this, entry_);
    }
    ~ModuleEntryRegistrar() { ZqModuleEntryDetach(this, entry_); }
    ModuleEntryRegistrar(const ModuleEntryRegistrar&) = delete;
    ModuleEntryRegistrar& operator=(const ModuleEntryRegistrar&) = delete;

private:
    ZQ_DLL_ENTRY_PROC entry_;
};
}  // namespace zq::platform
#define ZQ_MODULE_ENTRY_POINT(entry) \
    static ::zq::platform::ModuleEntryRegistrar zq_module_entry_registrar_(entry)
#endif

#endif /* ZQ_PLATFORM_API_MODULE_H */
