// CZqCustomResource: a raw-data (RT_RCDATA) resource of a module, found by
// name or by numeric id, loaded and locked for reading.
//
// Results of the load and query functions (0 is success):
//    2 no module handle            7 no name given
//    3 neither name nor id         8 name of 31 characters or more
//    4 resource not found          9 id 0
//    5 resource could not be loaded
//    6 resource could not be locked (all fields cleared)
//   10 no buffer for the name     11 name buffer shorter than 31 bytes
// Every load first clears what a previous load left. The data stays valid
// while the module is loaded; it needs no release of its own.
#pragma once

#include "framework/core/object.h"
#include "platform/win32.h"

class CZqCustomResource : public CObject {
    DECLARE_DYNAMIC(CZqCustomResource)

public:
    static constexpr int kMaxNameLength = 30;

    CZqCustomResource();
    ~CZqCustomResource() override;

    virtual DWORD LoadCustomResource(HINSTANCE hModule, const char* lpszName);
    virtual DWORD LoadCustomResource(HINSTANCE hModule, UINT nId);
    // Clears every field; returns 0.
    virtual DWORD FreeCustomResource();
    // Copies the name (empty for a resource loaded by id) into a buffer of
    // at least 31 bytes.
    virtual DWORD GetResourceName(char* lpszBuffer, DWORD dwSize);
    virtual UINT GetResourceIndex();
    virtual void* GetResourceData();
    virtual DWORD GetResourceSize();

private:
    DWORD Load();

    char m_szName[kMaxNameLength + 1];
    UINT m_nIndex;
    HINSTANCE m_hModule;
    void* m_pData;
    DWORD m_dwSize;
    HRSRC m_hResource;
    HGLOBAL m_hGlobal;
};
