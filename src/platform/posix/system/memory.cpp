// Global and local memory blocks.
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <unordered_map>

#include "platform/win32.h"

namespace {

struct Block {
    void* memory = nullptr;
    SIZE_T size = 0;
    bool moveable = false;
    DWORD locks = 0;
};

constexpr UINT kKnownFlags =
    GMEM_MOVEABLE | GMEM_NOCOMPACT | GMEM_NODISCARD | GMEM_ZEROINIT | GMEM_DISCARDABLE | GMEM_SHARE;

// Every live block by its handle: the memory itself for a fixed block, a
// separate token for a moveable one.
struct Blocks {
    std::mutex mutex;
    std::unordered_map<const void*, Block> by_handle;
};

Blocks& AllBlocks() {
    static Blocks* blocks = new Blocks;  // never destroyed: blocks may be freed during exit
    return *blocks;
}

HANDLE Allocate(UINT flags, SIZE_T bytes) {
    if (flags & ~kKnownFlags) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    // One byte at least, so that every block has an address of its own.
    void* memory = (flags & GMEM_ZEROINIT) ? std::calloc(bytes ? bytes : 1, 1)
                                           : std::malloc(bytes ? bytes : 1);
    void* token = (flags & GMEM_MOVEABLE) ? std::malloc(1) : memory;
    if (!memory || !token) {
        std::free(memory);
        if (token != memory) {
            std::free(token);
        }
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    Blocks& blocks = AllBlocks();
    std::lock_guard<std::mutex> lock(blocks.mutex);
    blocks.by_handle[token] = Block{memory, bytes, (flags & GMEM_MOVEABLE) != 0, 0};
    return token;
}

LPVOID Lock(HANDLE handle) {
    Blocks& blocks = AllBlocks();
    std::lock_guard<std::mutex> lock(blocks.mutex);
    auto it = blocks.by_handle.find(handle);
    if (it == blocks.by_handle.end()) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    if (it->second.moveable) {
        ++it->second.locks;
    }
    return it->second.memory;
}

BOOL Unlock(HANDLE handle) {
    Blocks& blocks = AllBlocks();
    std::lock_guard<std::mutex> lock(blocks.mutex);
    auto it = blocks.by_handle.find(handle);
    if (it == blocks.by_handle.end()) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    Block& block = it->second;
    if (!block.moveable) {
        return TRUE;
    }
    if (block.locks == 0) {
        SetLastError(ERROR_NOT_LOCKED);
        return FALSE;
    }
    if (--block.locks == 0) {
        SetLastError(NO_ERROR);
        return FALSE;
    }
    return TRUE;
}

HANDLE Free(HANDLE handle) {
    if (!handle) {
        return nullptr;
    }
    Block block;
    {
        Blocks& blocks = AllBlocks();
        std::lock_guard<std::mutex> lock(blocks.mutex);
        auto it = blocks.by_handle.find(handle);
        if (it == blocks.by_handle.end()) {
            SetLastError(ERROR_INVALID_HANDLE);
            return handle;
        }
        block = it->second;
        blocks.by_handle.erase(it);
    }
    std::free(block.memory);
    if (block.moveable) {
        std::free(handle);
    }
    return nullptr;
}

SIZE_T Size(HANDLE handle) {
    Blocks& blocks = AllBlocks();
    std::lock_guard<std::mutex> lock(blocks.mutex);
    auto it = blocks.by_handle.find(handle);
    if (it == blocks.by_handle.end()) {
        SetLastError(ERROR_INVALID_HANDLE);
        return 0;
    }
    return it->second.size;
}

}  // namespace

extern "C" {

HGLOBAL WINAPI GlobalAlloc(UINT uFlags, SIZE_T dwBytes) {
    return Allocate(uFlags, dwBytes);
}
LPVOID WINAPI GlobalLock(HGLOBAL hMem) {
    return Lock(hMem);
}
BOOL WINAPI GlobalUnlock(HGLOBAL hMem) {
    return Unlock(hMem);
}
HGLOBAL WINAPI GlobalFree(HGLOBAL hMem) {
    return Free(hMem);
}
SIZE_T WINAPI GlobalSize(HGLOBAL hMem) {
    return Size(hMem);
}

HLOCAL WINAPI LocalAlloc(UINT uFlags, SIZE_T uBytes) {
    return Allocate(uFlags, uBytes);
}
LPVOID WINAPI LocalLock(HLOCAL hMem) {
    return Lock(hMem);
}
BOOL WINAPI LocalUnlock(HLOCAL hMem) {
    return Unlock(hMem);
}
HLOCAL WINAPI LocalFree(HLOCAL hMem) {
    return Free(hMem);
}
SIZE_T WINAPI LocalSize(HLOCAL hMem) {
    return Size(hMem);
}

}  // extern "C"
