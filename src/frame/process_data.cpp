#include "frame/process_data.h"

#include <mutex>
#include <new>

namespace {

// Constant-initialised: usable when the platform attaches the library
// during static construction, whatever the order of this module's files.
std::mutex g_mutex;
DWORD g_slot = TLS_OUT_OF_INDEXES;
LONG g_attachCount = 0;
ZqGblProcessData* g_block = nullptr;  // the block of the loading thread

}  // namespace

ZqGblProcessData* ZqGblGetProcessData() {
    std::lock_guard<std::mutex> lock(g_mutex);
    if (g_slot == TLS_OUT_OF_INDEXES) {
        return nullptr;
    }
    // TlsGetValue sets the last error; callers of the library do not expect
    // a lookup of the block to change it.
    DWORD lastError = GetLastError();
    auto* block = static_cast<ZqGblProcessData*>(TlsGetValue(g_slot));
    SetLastError(lastError);
    return block;
}

namespace zq::frame {

ZqGblProcessData* AttachProcessData() {
    auto* block = new (std::nothrow) ZqGblProcessData;
    if (block == nullptr) {
        return nullptr;
    }
    std::lock_guard<std::mutex> lock(g_mutex);
    if (g_attachCount == 0) {
        g_slot = TlsAlloc();
        if (g_slot == TLS_OUT_OF_INDEXES) {
            delete block;
            return nullptr;
        }
    }
    ++g_attachCount;
    if (!TlsSetValue(g_slot, block)) {
        if (--g_attachCount == 0) {
            TlsFree(g_slot);
            g_slot = TLS_OUT_OF_INDEXES;
        }
        delete block;
        return nullptr;
    }
    g_block = block;
    return block;
}

void DetachProcessData() {
    std::lock_guard<std::mutex> lock(g_mutex);
    if (g_attachCount == 0) {
        return;
    }
    auto* block = static_cast<ZqGblProcessData*>(TlsGetValue(g_slot));
    if (block == nullptr) {
        block = g_block;  // detached from another thread than the loading one
    }
    TlsSetValue(g_slot, nullptr);
    // m_pLanguageSupport is released by the language-module functions; its
    // class is only declared here, so the block cannot delete it.
    delete block;
    g_block = nullptr;
    if (--g_attachCount == 0) {
        TlsFree(g_slot);
        g_slot = TLS_OUT_OF_INDEXES;
    }
}

}  // namespace zq::frame
