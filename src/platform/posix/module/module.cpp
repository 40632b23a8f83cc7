// Loading modules by their Windows names: LoadLibraryA and its companions.
#include <dlfcn.h>
#include <link.h>
#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "platform/posix/base/debug_channel.h"
#include "platform/posix/file/dos_path.h"
#include "platform/posix/module/loaded_modules.h"
#include "platform/win32.h"

namespace zq::platform::internal {
namespace {

struct LoadedByName {
    void* dl_handle = nullptr;
    long references = 0;
};

std::mutex& LibraryMutex() {
    static std::mutex* mutex = new std::mutex;
    return *mutex;
}

// Modules loaded through LoadLibraryA, with their counted references.
std::map<HMODULE, LoadedByName>& LoadedLibraries() {
    static auto* libraries = new std::map<HMODULE, LoadedByName>;
    return *libraries;
}

std::string Lower(std::string text) {
    for (char& c : text)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

bool IsRegularFile(const std::string& path) {
    struct stat info {};
    return stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

std::string Folder(const std::string& path) {
    size_t slash = path.rfind('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

std::string BaseName(const std::string& path) {
    size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

// The file name a Windows module name stands for: "ZQFAXDEU.DLL" ->
// "zqfaxdeu.dll.so"; no extension means ".dll"; a trailing '.' means none.
std::string DerivedFileName(const std::string& name) {
    std::string file = name;
    if (!file.empty() && file.back() == '.') {
        file.pop_back();
    } else if (file.find('.') == std::string::npos) {
        file += ".dll";
    }
    return Lower(file) + ".so";
}

bool HasFolder(const char* name) {
    return std::strchr(name, '/') || std::strchr(name, '\\') ||
           (std::isalpha(static_cast<unsigned char>(name[0])) && name[1] == ':');
}

std::vector<std::string> SearchFolders() {
    std::vector<std::string> folders{Folder(ExecutablePath())};
    if (const char* extra = std::getenv("ZQ_MODULE_PATH")) {
        std::string list = extra;
        size_t at = 0;
        while (at <= list.size()) {
            size_t colon = list.find(':', at);
            if (colon == std::string::npos)
                colon = list.size();
            if (colon > at)
                folders.push_back(list.substr(at, colon - at));
            at = colon + 1;
        }
    }
    return folders;
}

// The loaded module a name refers to, without loading anything.
HMODULE FindLoadedByName(const char* name) {
    std::vector<LoadedModule> modules = ListLoadedModules();
    if (HasFolder(name)) {
        UnixPath converted = DosToUnix(name);
        if (!converted)
            return {};
        const std::string& unix_path = converted.path;
        std::string derived = Folder(unix_path) + "/" + DerivedFileName(BaseName(unix_path));
        for (const LoadedModule& module : modules) {
            if (module.path == unix_path || module.path == derived)
                return module.handle;
        }
        return nullptr;
    }
    const std::string derived = DerivedFileName(name);
    const std::string literal = Lower(name);
    for (const LoadedModule& module : modules) {
        std::string base = Lower(BaseName(module.path));
        if (base == derived || base == literal)
            return module.handle;
    }
    return nullptr;
}

// The file LoadLibraryA should open for `name`, or "" when none exists.
std::string LocateModuleFile(const char* name) {
    if (HasFolder(name)) {
        UnixPath converted = DosToUnix(name);
        if (!converted)
            return {};
        const std::string& unix_path = converted.path;
        if (IsRegularFile(unix_path))
            return unix_path;
        std::string derived = Folder(unix_path) + "/" + DerivedFileName(BaseName(unix_path));
        return IsRegularFile(derived) ? derived : std::string();
    }
    const std::string derived = DerivedFileName(name);
    for (const std::string& folder : SearchFolders()) {
        for (const std::string& file : {derived, std::string(name)}) {
            std::string candidate = folder + "/" + file;
            if (IsRegularFile(candidate))
                return candidate;
        }
    }
    return {};
}

HMODULE HandleOfDlHandle(void* dl_handle) {
    link_map* map = nullptr;
    if (dlinfo(dl_handle, RTLD_DI_LINKMAP, &map) != 0 || !map)
        return nullptr;
    if (map->l_ld)
        return ZqModuleFromAddress(map->l_ld);
    return nullptr;
}

std::string PathOfModule(HMODULE module) {
    std::string path;
    if (!module || module == ExecutableModule())
        return ExecutablePath();
    return LoadedModulePath(module, &path) ? path : std::string();
}

}  // namespace
}  // namespace zq::platform::internal

using namespace zq::platform::internal;

extern "C" {

HMODULE WINAPI LoadLibraryA(LPCSTR lpLibFileName) {
    if (!lpLibFileName) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    std::string file;
    if (*lpLibFileName) {
        HMODULE loaded = FindLoadedByName(lpLibFileName);
        if (loaded && loaded == ExecutableModule())
            return loaded;  // the program itself: nothing to load
        if (loaded)
            file = PathOfModule(loaded);
        if (file.empty())
            file = LocateModuleFile(lpLibFileName);
    }
    if (file.empty()) {
        ZQ_TRACE(kModule, "LoadLibraryA(%s): not found", lpLibFileName);
        SetLastError(ERROR_MOD_NOT_FOUND);
        return nullptr;
    }
    // No lock here: the module's constructors and DllMain may load modules too.
    void* dl_handle = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!dl_handle) {
        ZQ_TRACE(kModule, "LoadLibraryA(%s): %s", lpLibFileName, dlerror());
        SetLastError(ERROR_BAD_EXE_FORMAT);
        return nullptr;
    }
    HMODULE module = HandleOfDlHandle(dl_handle);
    if (!module || ZqModuleAttachFailed(module)) {
        dlclose(dl_handle);
        SetLastError(module ? ERROR_DLL_INIT_FAILED : ERROR_BAD_EXE_FORMAT);
        return nullptr;
    }
    {
        std::lock_guard<std::mutex> lock(LibraryMutex());
        LoadedByName& entry = LoadedLibraries()[module];
        if (!entry.dl_handle)
            entry.dl_handle = dl_handle;
        ++entry.references;
    }
    ZQ_TRACE(kModule, "LoadLibraryA(%s) -> %p (%s)", lpLibFileName, static_cast<void*>(module),
             file.c_str());
    return module;
}

BOOL WINAPI FreeLibrary(HMODULE hLibModule) {
    void* dl_handle = nullptr;
    {
        std::lock_guard<std::mutex> lock(LibraryMutex());
        auto found = LoadedLibraries().find(hLibModule);
        if (found != LoadedLibraries().end()) {
            dl_handle = found->second.dl_handle;
            if (--found->second.references == 0)
                LoadedLibraries().erase(found);
        }
    }
    if (dl_handle) {
        dlclose(dl_handle);  // each LoadLibraryA made one dlopen reference
        return TRUE;
    }
    if (hLibModule && ZqModuleFromAddress(hLibModule) == hLibModule)
        return TRUE;
    SetLastError(ERROR_MOD_NOT_FOUND);
    return FALSE;
}

FARPROC WINAPI GetProcAddress(HMODULE hModule, LPCSTR lpProcName) {
    if (!lpProcName || IS_INTRESOURCE(lpProcName)) {
        SetLastError(ERROR_PROC_NOT_FOUND);  // export ordinals do not exist for ELF modules
        return nullptr;
    }
    HMODULE module = hModule ? hModule : ExecutableModule();
    std::string path = PathOfModule(module);
    if (path.empty()) {
        SetLastError(ERROR_MOD_NOT_FOUND);
        return nullptr;
    }
    void* dl_handle = module == ExecutableModule() ? dlopen(nullptr, RTLD_LAZY)
                                                   : dlopen(path.c_str(), RTLD_LAZY | RTLD_NOLOAD);
    if (!dl_handle) {
        SetLastError(ERROR_MOD_NOT_FOUND);
        return nullptr;
    }
    void* symbol = dlsym(dl_handle, lpProcName);
    dlclose(dl_handle);
    // dlsym also searches the module's dependencies; Windows looks in the module alone.
    if (!symbol || ZqModuleFromAddress(symbol) != module) {
        SetLastError(ERROR_PROC_NOT_FOUND);
        return nullptr;
    }
    FARPROC proc = nullptr;
    static_assert(sizeof(proc) == sizeof(symbol));
    std::memcpy(&proc, &symbol, sizeof(proc));
    return proc;
}

HMODULE WINAPI GetModuleHandleA(LPCSTR lpModuleName) {
    if (!lpModuleName)
        return ExecutableModule();
    HMODULE module = *lpModuleName ? FindLoadedByName(lpModuleName) : nullptr;
    if (!module)
        SetLastError(ERROR_MOD_NOT_FOUND);
    return module;
}

DWORD WINAPI GetModuleFileNameA(HMODULE hModule, LPSTR lpFilename, DWORD nSize) {
    std::string path = PathOfModule(hModule);
    if (path.empty()) {
        SetLastError(ERROR_MOD_NOT_FOUND);
        return 0;
    }
    const std::string dos = UnixToDos(path);
    if (!lpFilename || nSize == 0) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    if (dos.size() < nSize) {
        std::memcpy(lpFilename, dos.c_str(), dos.size() + 1);
        return static_cast<DWORD>(dos.size());
    }
    // Too long: cut to nSize - 1 characters and terminate, return nSize (Windows Vista and later).
    std::memcpy(lpFilename, dos.data(), nSize - 1);
    lpFilename[nSize - 1] = '\0';
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return nSize;
}

}  // extern "C"
