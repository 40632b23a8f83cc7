// Dynamic arrays: the CArray template, the named arrays built on it
// (CStringArray, CByteArray, CWordArray, CDWordArray, CUIntArray,
// CPtrArray, CObArray) and CTypedPtrArray over the pointer arrays.
//
// Indices are ints from 0 to GetUpperBound(). Reading out of range
// (GetAt, the const operator[]) yields a default element (empty string,
// 0, NULL); SetAt out of range does nothing; RemoveAt removes only what is
// in range; InsertAt and SetAtGrow beyond the end grow the array, filling
// the gap with default elements. ElementAt and the non-const operator[]
// hand out a reference and require a valid index, as in the classic
// framework. Pointer arrays never delete what they point to.
//
// An element passed by reference may be one of the array's own elements.
// Not safe for concurrent use without outside locking.
#pragma once

#include <algorithm>
#include <vector>

#include "framework/core/cstring.h"
#include "framework/core/object.h"
#include "platform/win32.h"

template <class TYPE, class ARG_TYPE = const TYPE&>
class CArray : public CObject {
public:
    CArray() = default;

    int GetSize() const { return static_cast<int>(items_.size()); }
    int GetCount() const { return GetSize(); }
    BOOL IsEmpty() const { return items_.empty(); }
    int GetUpperBound() const { return GetSize() - 1; }

    // New elements are default elements; nGrowBy is a hint only.
    void SetSize(int nNewSize, int nGrowBy = -1) {
        if (nGrowBy >= 0) {
            growBy_ = nGrowBy;
        }
        nNewSize = std::max(nNewSize, 0);
        if (growBy_ > 0 && static_cast<size_t>(nNewSize) > items_.capacity()) {
            items_.reserve(static_cast<size_t>(nNewSize) + static_cast<size_t>(growBy_));
        }
        items_.resize(static_cast<size_t>(nNewSize));
    }
    void FreeExtra() { items_.shrink_to_fit(); }
    void RemoveAll() {
        items_.clear();
        items_.shrink_to_fit();
    }

    TYPE GetAt(int nIndex) const { return InRange(nIndex) ? items_[Index(nIndex)] : TYPE(); }
    void SetAt(int nIndex, ARG_TYPE newElement) {
        if (InRange(nIndex)) {
            items_[Index(nIndex)] = newElement;
        }
    }
    TYPE& ElementAt(int nIndex) { return items_[Index(nIndex)]; }
    const TYPE& ElementAt(int nIndex) const { return items_[Index(nIndex)]; }
    TYPE operator[](int nIndex) const { return GetAt(nIndex); }
    TYPE& operator[](int nIndex) { return ElementAt(nIndex); }

    // NULL when the array is empty.
    const TYPE* GetData() const { return items_.empty() ? nullptr : items_.data(); }
    TYPE* GetData() { return items_.empty() ? nullptr : items_.data(); }

    // Grows the array when nIndex is past the end; negative: nothing.
    void SetAtGrow(int nIndex, ARG_TYPE newElement) {
        if (nIndex < 0) {
            return;
        }
        TYPE copy(newElement);
        if (nIndex >= GetSize()) {
            SetSize(nIndex + 1);
        }
        items_[Index(nIndex)] = std::move(copy);
    }
    // Returns the new element's index.
    int Add(ARG_TYPE newElement) {
        items_.push_back(TYPE(newElement));
        return GetUpperBound();
    }
    // Appends a copy of src (which may be this array); returns the index of
    // the first appended element.
    int Append(const CArray& src) {
        int first = GetSize();
        if (&src == this) {
            std::vector<TYPE> copy(items_);
            items_.insert(items_.end(), copy.begin(), copy.end());
        } else {
            items_.insert(items_.end(), src.items_.begin(), src.items_.end());
        }
        return first;
    }
    void Copy(const CArray& src) {
        if (&src != this) {
            items_ = src.items_;
        }
    }

    // nCount copies of newElement before nIndex; past the end, the array
    // first grows to nIndex. Negative nIndex or nCount < 1: nothing.
    void InsertAt(int nIndex, ARG_TYPE newElement, int nCount = 1) {
        if (nIndex < 0 || nCount < 1) {
            return;
        }
        TYPE copy(newElement);
        if (nIndex >= GetSize()) {
            SetSize(nIndex);
        }
        items_.insert(items_.begin() + nIndex, static_cast<size_t>(nCount), copy);
    }
    // The elements of pNewArray (which may be this array) before nStartIndex.
    void InsertAt(int nStartIndex, CArray* pNewArray) {
        if (pNewArray == nullptr || nStartIndex < 0 || pNewArray->IsEmpty()) {
            return;
        }
        std::vector<TYPE> copy(pNewArray->items_);
        if (nStartIndex >= GetSize()) {
            SetSize(nStartIndex);
        }
        items_.insert(items_.begin() + nStartIndex, copy.begin(), copy.end());
    }
    void RemoveAt(int nIndex, int nCount = 1) {
        if (nIndex < 0 || nCount < 1 || nIndex >= GetSize()) {
            return;
        }
        nCount = std::min(nCount, GetSize() - nIndex);
        items_.erase(items_.begin() + nIndex, items_.begin() + nIndex + nCount);
    }

private:
    bool InRange(int nIndex) const { return nIndex >= 0 && nIndex < GetSize(); }
    static size_t Index(int nIndex) { return static_cast<size_t>(nIndex); }

    std::vector<TYPE> items_;
    int growBy_ = 0;
};

class CStringArray : public CArray<CString, const CString&> {
    DECLARE_DYNAMIC(CStringArray)
};

class CByteArray : public CArray<BYTE, BYTE> {
    DECLARE_DYNAMIC(CByteArray)
};

class CWordArray : public CArray<WORD, WORD> {
    DECLARE_DYNAMIC(CWordArray)
};

class CDWordArray : public CArray<DWORD, DWORD> {
    DECLARE_DYNAMIC(CDWordArray)
};

class CUIntArray : public CArray<UINT, UINT> {
    DECLARE_DYNAMIC(CUIntArray)
};

class CPtrArray : public CArray<void*, void*> {
    DECLARE_DYNAMIC(CPtrArray)
};

class CObArray : public CArray<CObject*, CObject*> {
    DECLARE_DYNAMIC(CObArray)
};

// A pointer array (BASE_CLASS: CPtrArray or CObArray) whose elements are
// typed TYPE (a pointer type); it is still usable as its base.
template <class BASE_CLASS, class TYPE>
class CTypedPtrArray : public BASE_CLASS {
public:
    TYPE GetAt(int nIndex) const { return static_cast<TYPE>(BASE_CLASS::GetAt(nIndex)); }
    TYPE& ElementAt(int nIndex) { return reinterpret_cast<TYPE&>(BASE_CLASS::ElementAt(nIndex)); }
    void SetAt(int nIndex, TYPE ptr) { BASE_CLASS::SetAt(nIndex, ptr); }
    void SetAtGrow(int nIndex, TYPE newElement) { BASE_CLASS::SetAtGrow(nIndex, newElement); }
    int Add(TYPE newElement) { return BASE_CLASS::Add(newElement); }
    int Append(const CTypedPtrArray& src) { return BASE_CLASS::Append(src); }
    void Copy(const CTypedPtrArray& src) { BASE_CLASS::Copy(src); }
    void InsertAt(int nIndex, TYPE newElement, int nCount = 1) {
        BASE_CLASS::InsertAt(nIndex, newElement, nCount);
    }
    void InsertAt(int nStartIndex, CTypedPtrArray* pNewArray) {
        BASE_CLASS::InsertAt(nStartIndex, pNewArray);
    }
    TYPE operator[](int nIndex) const { return GetAt(nIndex); }
    TYPE& operator[](int nIndex) { return ElementAt(nIndex); }
};
