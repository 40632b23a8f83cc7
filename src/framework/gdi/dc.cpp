#include "framework/gdi/dc.h"

#include <cstring>

IMPLEMENT_DYNAMIC(CDC, CObject)

CSize CDC::GetTextExtent(LPCTSTR lpszString, int nCount) const {
    if (!lpszString || nCount == 0) {
        return CSize(0, kCharHeight);
    }
    size_t length = nCount < 0 ? std::strlen(lpszString) : static_cast<size_t>(nCount);
    return CSize(static_cast<int>(length) * kCharWidth, kCharHeight);
}

CSize CDC::GetTextExtent(const CString& str) const {
    return GetTextExtent(static_cast<LPCTSTR>(str), str.GetLength());
}
