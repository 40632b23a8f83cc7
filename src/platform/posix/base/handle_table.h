// Kernel-object handles of the emulated system.
//
// Every HANDLE the platform hands out (files, processes, events ...) names an
// entry here. Handles are small multiples of 4, as on Windows, never NULL
// and never INVALID_HANDLE_VALUE. An object lives while a handle names it or
// a caller holds the shared_ptr that Lookup returned, so a call in progress
// on one thread is safe from a CloseHandle on another. Thread-safe.
#pragma once

#include <memory>

#include "platform/win32.h"

namespace zq::platform::internal {

class KernelObject {
public:
    virtual ~KernelObject() = default;
};

// Registers `object` and returns its new handle (NULL when out of handles).
HANDLE AddHandle(std::shared_ptr<KernelObject> object);

// The object of `handle` if it is one of type T, else nullptr.
std::shared_ptr<KernelObject> LookupHandle(HANDLE handle);
template <typename T>
std::shared_ptr<T> LookupHandleAs(HANDLE handle) {
    return std::dynamic_pointer_cast<T>(LookupHandle(handle));
}

// Removes the handle; false when it names nothing.
bool RemoveHandle(HANDLE handle);

}  // namespace zq::platform::internal
