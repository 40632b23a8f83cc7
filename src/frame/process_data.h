// The per-process block of the library and how it is reached.
//
// The block is made when the library is attached to a process and freed
// when it is detached. It is reached through a thread-local slot that is
// set for the thread that loaded the library only: on every other thread
// ZqGblGetProcessData() returns NULL, and the functions that need the block
// return 0 / none there. The slot is allocated at the first attach and
// freed at the last detach (a process-wide attach counter guards both).
#pragma once

#include "platform/win32.h"
#include "telephony/dialing/country_code.h"

class CZqLanguageSupport;

struct ZqGblProcessData {
    // Outstanding ZqGblLoadLanguageDLL calls; not locked.
    LONG m_nLanguageRefCount = 0;
    // This library's own module.
    HINSTANCE m_hInstance = nullptr;
    // The screen-sample control library "zqmuscrl.dll", when it loaded.
    HINSTANCE m_hSampleControl = nullptr;
    // The loaded language resource module, or NULL.
    HINSTANCE m_hLanguageModule = nullptr;
    // Made by ZqGblLoadLanguageDLL and owned by the block.
    CZqLanguageSupport* m_pLanguageSupport = nullptr;
    // The process's country list, constructed empty at attach and loaded
    // on first use (GetGlobalCountryList).
    CZqCountryCodeList m_CountryList{FALSE};
};

// The block of the calling thread: the block made at attach on the thread
// that loaded the library, NULL on every other thread or when not attached.
ZqGblProcessData* ZqGblGetProcessData();

namespace zq::frame {

// Makes the block and stores it in the slot for the calling thread; the
// slot is allocated when this is the first attach. NULL (with everything
// undone) when memory, the slot or storing into it fails.
ZqGblProcessData* AttachProcessData();

// Frees the block made by AttachProcessData (also when called from another
// thread) and releases the slot at the last detach. Does nothing when not
// attached.
void DetachProcessData();

}  // namespace zq::frame
