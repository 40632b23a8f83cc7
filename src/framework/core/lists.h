// Doubly linked lists: the CList template and the named lists built on it
// (CStringList, CPtrList, CObList).
//
// A POSITION names one element and stays valid until that element is
// removed, whatever else is added or removed. Iteration:
//
//     for (POSITION pos = list.GetHeadPosition(); pos != NULL;) {
//         CString& item = list.GetNext(pos);  // pos moves on (NULL at the end)
//     }
//
// GetHead/GetTail/RemoveHead/RemoveTail require a non-empty list and
// GetAt/GetNext/GetPrev/SetAt/RemoveAt a valid position, as in the classic
// framework; InsertBefore/InsertAfter with NULL add at the head / tail.
// Pointer lists never delete what they point to.
// Not safe for concurrent use without outside locking.
#pragma once

#include <type_traits>
#include <utility>

#include "framework/core/collection_helpers.h"
#include "framework/core/cstring.h"
#include "framework/core/object.h"
#include "platform/win32.h"

template <class TYPE, class ARG_TYPE = const TYPE&>
class CList : public CObject {
    struct CNode {
        explicit CNode(ARG_TYPE value) : data(value) {}
        CNode* pNext = nullptr;
        CNode* pPrev = nullptr;
        TYPE data;
    };

public:
    explicit CList(int nBlockSize = 10) { (void)nBlockSize; }
    ~CList() override { RemoveAll(); }

    int GetCount() const { return count_; }
    int GetSize() const { return count_; }
    BOOL IsEmpty() const { return count_ == 0; }

    TYPE& GetHead() { return head_->data; }
    const TYPE& GetHead() const { return head_->data; }
    TYPE& GetTail() { return tail_->data; }
    const TYPE& GetTail() const { return tail_->data; }

    TYPE RemoveHead() {
        TYPE value(std::move(head_->data));
        RemoveAt(Position(head_));
        return value;
    }
    TYPE RemoveTail() {
        TYPE value(std::move(tail_->data));
        RemoveAt(Position(tail_));
        return value;
    }

    POSITION AddHead(ARG_TYPE newElement) { return InsertBefore(Position(head_), newElement); }
    POSITION AddTail(ARG_TYPE newElement) { return InsertAfter(Position(tail_), newElement); }
    // Copies of the elements of pNewList (which may be this list).
    void AddHead(CList* pNewList) {
        if (pNewList == nullptr) {
            return;
        }
        CList copy;
        copy.AddTail(pNewList);
        for (CNode* node = copy.tail_; node != nullptr; node = node->pPrev) {
            AddHead(node->data);
        }
    }
    void AddTail(CList* pNewList) {
        if (pNewList == nullptr) {
            return;
        }
        // Stop at the old tail so that appending ourselves ends.
        CNode* last = pNewList->tail_;
        for (CNode* node = pNewList->head_; node != nullptr; node = node->pNext) {
            AddTail(node->data);
            if (node == last) {
                break;
            }
        }
    }
    void RemoveAll() {
        for (CNode* node = head_; node != nullptr;) {
            CNode* next = node->pNext;
            delete node;
            node = next;
        }
        head_ = tail_ = nullptr;
        count_ = 0;
    }

    POSITION GetHeadPosition() const { return Position(head_); }
    POSITION GetTailPosition() const { return Position(tail_); }
    TYPE& GetNext(POSITION& rPosition) {
        CNode* node = Node(rPosition);
        rPosition = Position(node->pNext);
        return node->data;
    }
    const TYPE& GetNext(POSITION& rPosition) const {
        CNode* node = Node(rPosition);
        rPosition = Position(node->pNext);
        return node->data;
    }
    TYPE& GetPrev(POSITION& rPosition) {
        CNode* node = Node(rPosition);
        rPosition = Position(node->pPrev);
        return node->data;
    }
    const TYPE& GetPrev(POSITION& rPosition) const {
        CNode* node = Node(rPosition);
        rPosition = Position(node->pPrev);
        return node->data;
    }
    TYPE& GetAt(POSITION position) { return Node(position)->data; }
    const TYPE& GetAt(POSITION position) const { return Node(position)->data; }
    void SetAt(POSITION pos, ARG_TYPE newElement) { Node(pos)->data = newElement; }

    void RemoveAt(POSITION position) {
        CNode* node = Node(position);
        (node->pPrev ? node->pPrev->pNext : head_) = node->pNext;
        (node->pNext ? node->pNext->pPrev : tail_) = node->pPrev;
        delete node;
        --count_;
    }
    POSITION InsertBefore(POSITION position, ARG_TYPE newElement) {
        CNode* at = Node(position);
        if (at == nullptr) {
            at = head_;
        }
        CNode* node = new CNode(newElement);
        node->pNext = at;
        node->pPrev = at ? at->pPrev : nullptr;
        (node->pPrev ? node->pPrev->pNext : head_) = node;
        (at ? at->pPrev : tail_) = node;
        ++count_;
        return Position(node);
    }
    POSITION InsertAfter(POSITION position, ARG_TYPE newElement) {
        CNode* at = Node(position);
        if (at == nullptr) {
            at = tail_;
        }
        CNode* node = new CNode(newElement);
        node->pPrev = at;
        node->pNext = at ? at->pNext : nullptr;
        (node->pNext ? node->pNext->pPrev : tail_) = node;
        (at ? at->pNext : head_) = node;
        ++count_;
        return Position(node);
    }

    // The first element equal to searchValue after startAfter (from the
    // head when NULL); NULL when none.
    POSITION Find(ARG_TYPE searchValue, POSITION startAfter = nullptr) const {
        using Arg = std::remove_cvref_t<ARG_TYPE>;
        const Arg& value = searchValue;
        CNode* node = startAfter ? Node(startAfter)->pNext : head_;
        for (; node != nullptr; node = node->pNext) {
            if (CompareElements<TYPE, Arg>(&node->data, &value)) {
                return Position(node);
            }
        }
        return nullptr;
    }
    // The element at zero-based nIndex; NULL when out of range.
    POSITION FindIndex(int nIndex) const {
        if (nIndex < 0 || nIndex >= count_) {
            return nullptr;
        }
        CNode* node = head_;
        while (nIndex-- > 0) {
            node = node->pNext;
        }
        return Position(node);
    }

private:
    static POSITION Position(CNode* node) { return reinterpret_cast<POSITION>(node); }
    static CNode* Node(POSITION position) { return reinterpret_cast<CNode*>(position); }

    CNode* head_ = nullptr;
    CNode* tail_ = nullptr;
    int count_ = 0;
};

class CStringList : public CList<CString, const CString&> {
    DECLARE_DYNAMIC(CStringList)
public:
    explicit CStringList(int nBlockSize = 10) : CList(nBlockSize) {}
};

class CPtrList : public CList<void*, void*> {
    DECLARE_DYNAMIC(CPtrList)
public:
    explicit CPtrList(int nBlockSize = 10) : CList(nBlockSize) {}
};

class CObList : public CList<CObject*, CObject*> {
    DECLARE_DYNAMIC(CObList)
public:
    explicit CObList(int nBlockSize = 10) : CList(nBlockSize) {}
};
