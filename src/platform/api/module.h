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

/* Loading modules by name, as the Windows loader does.
 *
 * A module name such as "ZQFAXDEU.DLL" names the file "zqfaxdeu.dll.so":
 * lower case, ".so" appended (a name without an extension gets ".dll"
 * first; a trailing '.' means "no extension"). A bare name is looked up
 * among the modules already loaded, then next to the executable, then in
 * each folder of ZQ_MODULE_PATH (folders separated by ':'), trying the
 * derived file name before the name as given. A name with a folder (DOS or
 * Unix form) is tried as that exact file, then with the derived file name
 * in that folder.
 *
 * LoadLibraryA returns the module's instance handle (its load base) and
 * counts a reference; NULL with ERROR_MOD_NOT_FOUND when no file matches,
 * ERROR_BAD_EXE_FORMAT when the file is not a loadable module, and
 * ERROR_DLL_INIT_FAILED when its DllMain refused the attach (the module is
 * unloaded again). FreeLibrary drops one reference and unloads the module
 * at zero; TRUE also for a module that was not loaded by LoadLibraryA (it
 * stays), FALSE with ERROR_MOD_NOT_FOUND for a handle that is no module.
 * Thread-safe; DllMain may itself load modules. */
ZQ_API HMODULE WINAPI LoadLibraryA(LPCSTR lpLibFileName);
ZQ_API BOOL WINAPI FreeLibrary(HMODULE hLibModule);

/* The exported function or variable `lpProcName` of the module itself (not
 * of the modules it uses). Export ordinals do not exist here: an integer
 * name fails with ERROR_PROC_NOT_FOUND, as does a missing name. */
ZQ_API FARPROC WINAPI GetProcAddress(HMODULE hModule, LPCSTR lpProcName);

/* NULL gives the executable's handle. A name is matched against the loaded
 * modules by the rule above (without loading anything); NULL with
 * ERROR_MOD_NOT_FOUND when none matches. No reference is counted. */
ZQ_API HMODULE WINAPI GetModuleHandleA(LPCSTR lpModuleName);

/* The module's full path in DOS form (Z:\usr\bin\zq; NULL module: the
 * executable). Returns the characters written without the terminator.
 * When the path does not fit, it is cut to nSize - 1 characters and
 * terminated, the result is nSize and the last error
 * ERROR_INSUFFICIENT_BUFFER (nSize 0: nothing written). 0 with
 * ERROR_MOD_NOT_FOUND for a handle that is no module. */
ZQ_API DWORD WINAPI GetModuleFileNameA(HMODULE hModule, LPSTR lpFilename, DWORD nSize);

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
