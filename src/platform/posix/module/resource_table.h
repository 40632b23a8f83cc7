// The resources that loaded modules registered, by instance handle.
//
// Each module built with resources registers the .res images of its
// .rsrc section from a static constructor and unregisters them from the
// matching destructor. The data stays where the module maps it; the table
// keeps only the parsed entry lists. A resource handle (HRSRC) is the
// address of an entry; it stays valid until its module is unregistered.
// Thread-safe.
#pragma once

#include <cstdint>

#include "platform/posix/module/resource_directory.h"
#include "platform/win32.h"

namespace zq::platform::internal {

struct FoundResource {
    const ResourceEntry* entry = nullptr;
    const uint8_t* data = nullptr;
    uint32_t size = 0;
};

// Registers the images in [begin, begin + size) for the module containing
// them; false when they do not parse (nothing is registered then).
bool RegisterResources(const uint8_t* begin, size_t size);
void UnregisterResources(const uint8_t* begin);

// Looks up a resource of `module` (already resolved: never NULL). On
// failure returns false with the Win32 error in `*error`.
bool FindModuleResource(HMODULE module, const ResourceName& type, const ResourceName& name,
                        uint16_t language, bool any_language, FoundResource* out, DWORD* error);

// The entry behind a resource handle, or false when it is none.
bool ResolveResourceHandle(HRSRC handle, FoundResource* out);

}  // namespace zq::platform::internal
