// The modules (executable and shared objects) mapped into this process,
// named by their instance handle: the address where the object's first
// segment is mapped, the same value ZqModuleFromAddress gives for any
// address inside it.
#pragma once

#include <string>
#include <vector>

#include "platform/win32.h"

namespace zq::platform::internal {

struct LoadedModule {
    HMODULE handle = nullptr;
    std::string path;  // absolute Unix path
    bool is_executable = false;
};

// Every loaded module, the executable first.
std::vector<LoadedModule> ListLoadedModules();

// The executable's instance handle and its absolute path.
HMODULE ExecutableModule();
const std::string& ExecutablePath();

// The absolute path of the module with this handle; false when the handle
// names no loaded module.
bool LoadedModulePath(HMODULE module, std::string* path);

}  // namespace zq::platform::internal
