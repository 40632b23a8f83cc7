#include "frame/custom_resource.h"

#include <cstring>

IMPLEMENT_DYNAMIC(CZqCustomResource, CObject)

CZqCustomResource::CZqCustomResource() {
    FreeCustomResource();
}

CZqCustomResource::~CZqCustomResource() {
    FreeCustomResource();
}

DWORD CZqCustomResource::FreeCustomResource() {
    std::memset(m_szName, 0, sizeof m_szName);
    m_nIndex = 0;
    m_hModule = nullptr;
    m_pData = nullptr;
    m_dwSize = 0;
    m_hResource = nullptr;
    m_hGlobal = nullptr;
    return 0;
}

DWORD CZqCustomResource::LoadCustomResource(HINSTANCE hModule, const char* lpszName) {
    FreeCustomResource();
    if (!lpszName)
        return 7;
    const size_t length = std::strlen(lpszName);
    if (length > static_cast<size_t>(kMaxNameLength))
        return 8;  // refused before any search
    std::memcpy(m_szName, lpszName, length + 1);
    m_hModule = hModule;
    return Load();
}

DWORD CZqCustomResource::LoadCustomResource(HINSTANCE hModule, UINT nId) {
    FreeCustomResource();
    if (nId == 0)
        return 9;
    m_nIndex = nId;
    m_hModule = hModule;
    return Load();
}

DWORD CZqCustomResource::Load() {
    HINSTANCE module = m_hModule;
    m_hModule = nullptr;  // remembered only once the data is in hand
    if (!module)
        return 2;
    if (m_szName[0] == '\0' && m_nIndex == 0)
        return 3;
    LPCSTR name = m_szName[0] != '\0' ? m_szName : MAKEINTRESOURCEA(m_nIndex);
    m_hResource = FindResourceA(module, name, RT_RCDATA);
    if (!m_hResource)
        return 4;
    m_dwSize = SizeofResource(module, m_hResource);
    m_hGlobal = LoadResource(module, m_hResource);
    if (!m_hGlobal)
        return 5;
    m_pData = LockResource(m_hGlobal);
    if (!m_pData) {
        FreeCustomResource();
        return 6;
    }
    m_hModule = module;
    return 0;
}

DWORD CZqCustomResource::GetResourceName(char* lpszBuffer, DWORD dwSize) {
    if (!lpszBuffer)
        return 10;
    if (dwSize < sizeof m_szName)
        return 11;
    std::memcpy(lpszBuffer, m_szName, sizeof m_szName);
    return 0;
}

UINT CZqCustomResource::GetResourceIndex() {
    return m_nIndex;
}

void* CZqCustomResource::GetResourceData() {
    return m_pData;
}

DWORD CZqCustomResource::GetResourceSize() {
    return m_dwSize;
}
