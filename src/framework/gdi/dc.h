// Drawing: the CSize, CPoint and CRect value classes and a device context
// that measures text.
//
// Until real drawing arrives, CDC measures with a fixed metric: every
// character is kCharWidth (8) pixels wide and kCharHeight (16) pixels high,
// whatever the font. Code that shortens text to a pixel width (path
// abbreviation, column fitting) gets stable, predictable results from it.
#pragma once

#include "framework/core/cstring.h"
#include "framework/core/object.h"
#include "platform/win32.h"

class CSize : public tagSIZE {
public:
    CSize() noexcept : tagSIZE{0, 0} {}
    CSize(int initCX, int initCY) noexcept : tagSIZE{initCX, initCY} {}
    CSize(SIZE initSize) noexcept : tagSIZE(initSize) {}

    BOOL operator==(SIZE size) const { return cx == size.cx && cy == size.cy; }
    BOOL operator!=(SIZE size) const { return !(*this == size); }
    CSize operator+(SIZE size) const { return CSize(cx + size.cx, cy + size.cy); }
    CSize operator-(SIZE size) const { return CSize(cx - size.cx, cy - size.cy); }
};

class CPoint : public tagPOINT {
public:
    CPoint() noexcept : tagPOINT{0, 0} {}
    CPoint(int initX, int initY) noexcept : tagPOINT{initX, initY} {}
    CPoint(POINT initPt) noexcept : tagPOINT(initPt) {}

    void Offset(int xOffset, int yOffset) {
        x += xOffset;
        y += yOffset;
    }
    BOOL operator==(POINT point) const { return x == point.x && y == point.y; }
    BOOL operator!=(POINT point) const { return !(*this == point); }
    CPoint operator+(SIZE size) const { return CPoint(x + size.cx, y + size.cy); }
};

class CRect : public tagRECT {
public:
    CRect() noexcept : tagRECT{0, 0, 0, 0} {}
    CRect(int l, int t, int r, int b) noexcept : tagRECT{l, t, r, b} {}
    CRect(const RECT& srcRect) noexcept : tagRECT(srcRect) {}
    CRect(POINT topLeft, SIZE size) noexcept
        : tagRECT{topLeft.x, topLeft.y, topLeft.x + size.cx, topLeft.y + size.cy} {}

    int Width() const { return right - left; }
    int Height() const { return bottom - top; }
    CSize Size() const { return CSize(Width(), Height()); }
    CPoint TopLeft() const { return CPoint(left, top); }
    CPoint BottomRight() const { return CPoint(right, bottom); }
    // Empty: no area (width or height zero or negative).
    BOOL IsRectEmpty() const { return Width() <= 0 || Height() <= 0; }
    // Inside: left and top edges included, right and bottom excluded.
    BOOL PtInRect(POINT point) const {
        return point.x >= left && point.x < right && point.y >= top && point.y < bottom;
    }
    void SetRect(int l, int t, int r, int b) {
        left = l;
        top = t;
        right = r;
        bottom = b;
    }
    void OffsetRect(int x, int y) {
        left += x;
        right += x;
        top += y;
        bottom += y;
    }
    void InflateRect(int x, int y) {
        left -= x;
        right += x;
        top -= y;
        bottom += y;
    }
    BOOL operator==(const RECT& rect) const {
        return left == rect.left && top == rect.top && right == rect.right && bottom == rect.bottom;
    }
    BOOL operator!=(const RECT& rect) const { return !(*this == rect); }
};

class CDC : public CObject {
    DECLARE_DYNAMIC(CDC)
public:
    static constexpr int kCharWidth = 8;
    static constexpr int kCharHeight = 16;

    CDC() = default;
    ~CDC() override = default;

    // Width and height of the first nCount characters of lpszString (the
    // whole string up to its NUL when nCount is -1). A NULL string or a
    // count of 0 measures (0, kCharHeight).
    CSize GetTextExtent(LPCTSTR lpszString, int nCount) const;
    CSize GetTextExtent(const CString& str) const;

    HDC m_hDC = nullptr;  // no drawing surface yet
    HDC m_hAttribDC = nullptr;
};
