// Extension modules of the framework and where resources are looked up.
//
// A library that extends the framework (as this one does) registers itself
// when it is attached: AfxInitExtensionModule fills its AFX_EXTENSION_MODULE
// record, and a CDynLinkLibrary created for it joins the process-wide chain
// of extension modules. Resources that the application does not carry are
// then found in the chain: AfxFindResourceHandle and AfxLoadString search
// the resource handle (the application, unless AfxSetResourceHandle chose
// another module), then every extension module in chain order. Chain order
// is newest first: a CDynLinkLibrary is linked in at the head, as the
// classic framework does.
//
// The chain and the handles are process-wide and safe across threads.
#pragma once

#include <vector>

#include "framework/core/object.h"
#include "platform/win32.h"

struct AFX_EXTENSION_MODULE {
    BOOL bInitialized;
    HMODULE hModule;
    HMODULE hResource;
    CRuntimeClass* pFirstSharedClass;
    void* pFirstSharedFactory;
};

// One registered extension module, linked into the process-wide chain while
// it exists. Created with new at attach; deleted by AfxTermExtensionModule.
class CDynLinkLibrary : public CObject {
    DECLARE_DYNAMIC(CDynLinkLibrary)
public:
    explicit CDynLinkLibrary(AFX_EXTENSION_MODULE& state, BOOL bSystem = FALSE);
    ~CDynLinkLibrary() override;

    HMODULE m_hModule;
    HMODULE m_hResource;
    BOOL m_bSystem;
    CDynLinkLibrary* m_pNextDLL;  // next in chain order, NULL at the end
};

// Records hModule as the module's code and resource handle. TRUE; a second
// call for an initialised record changes nothing and returns TRUE.
BOOL AfxInitExtensionModule(AFX_EXTENSION_MODULE& state, HMODULE hModule);
// Deletes the module's CDynLinkLibrary records (all of them; bAll is kept
// for the classic signature) and marks the record uninitialised.
void AfxTermExtensionModule(AFX_EXTENSION_MODULE& state, BOOL bAll = FALSE);

// The application's instance handle: the running executable's.
HINSTANCE AfxGetInstanceHandle();
// The module searched first for resources; the application unless set.
HINSTANCE AfxGetResourceHandle();
void AfxSetResourceHandle(HINSTANCE hInstResource);

// The first module, in search order, that holds resource (lpszName,
// lpszType); the resource handle when none does.
HINSTANCE AfxFindResourceHandle(LPCTSTR lpszName, LPCTSTR lpszType);

// Loads string resource nID, searched in the same order, into lpszBuf
// (nMaxBuf characters including the NUL, truncated to fit). Returns the
// characters copied, 0 when no module holds the string (lpszBuf then holds
// an empty string when nMaxBuf > 0).
int AfxLoadString(UINT nID, LPTSTR lpszBuf, UINT nMaxBuf);

namespace zq::framework {
// The module handles of the registered extension modules, in chain order.
std::vector<HMODULE> ExtensionModuleChain();
}  // namespace zq::framework
