#include "containers/zq_tree.h"

#include <utility>
#include <vector>

namespace {

template <typename Proc>
Proc Callable(Proc pfn) {
    // Through void(*)(): the generic function-pointer type every kind converts to.
    FARPROC code = reinterpret_cast<FARPROC>(reinterpret_cast<void (*)()>(pfn));
    return pfn != nullptr && !IsBadCodePtr(code) ? pfn : nullptr;
}

// Detects a walk that runs in a circle (Brent's method): the mark jumps to
// the walker at every power-of-two step, so a loop of any length is found
// within a few rounds without remembering the nodes seen.
class LoopGuard {
public:
    explicit LoopGuard(const CZqTree* start) : mark_(start) {}

    // True when `node` closes a loop of the walk.
    bool Closes(const CZqTree* node) {
        if (node == mark_) {
            return true;
        }
        if (steps_ == limit_) {
            mark_ = node;
            limit_ *= 2;
            steps_ = 0;
        }
        ++steps_;
        return false;
    }

private:
    const CZqTree* mark_;
    size_t steps_ = 0;
    size_t limit_ = 1;
};

}  // namespace

CZqTree::CZqTree(const CZqTree& other)
    : m_pParent(other.m_pParent),
      m_pNext(other.m_pNext),
      m_pPrev(other.m_pPrev),
      m_pChild(other.m_pChild),
      m_dwLevel(other.m_dwLevel),
      m_dwUserType(other.m_dwUserType),
      m_dwUserFlag(other.m_dwUserFlag),
      m_pUserData(other.m_pUserData) {}

CZqTree& CZqTree::operator=(const CZqTree& other) {
    m_pParent = other.m_pParent;
    m_pNext = other.m_pNext;
    m_pPrev = other.m_pPrev;
    m_pChild = other.m_pChild;
    m_dwLevel = other.m_dwLevel;
    m_dwUserType = other.m_dwUserType;
    m_dwUserFlag = other.m_dwUserFlag;
    m_pUserData = other.m_pUserData;
    return *this;
}

CZqTree::~CZqTree() {
    CZqTree::FreeChildren();
}

DWORD CZqTree::ClearData() {
    m_pParent = nullptr;
    m_pNext = nullptr;
    m_pPrev = nullptr;
    m_pChild = nullptr;
    m_dwLevel = 0;
    m_dwUserType = 0;
    m_dwUserFlag = 0;
    m_pUserData = nullptr;
    return 1;
}

CZqTree* CZqTree::FindEnd(CZqTree* CZqTree::*link, ZQTREEENUMPROC pfnVisit, LPVOID pValue) {
    LoopGuard guard(this);
    CZqTree* last = this;
    for (CZqTree* node = this->*link; node != nullptr; node = node->*link) {
        if (node == this || guard.Closes(node)) {
            return last;  // a circle: no end to visit
        }
        last = node;
    }
    if (ZQTREEENUMPROC visit = Callable(pfnVisit)) {
        visit(last, pValue);  // result discarded
    }
    return last;
}

CZqTree* CZqTree::FindRoot(ZQTREEENUMPROC pfnVisit, LPVOID pValue) {
    return FindEnd(&CZqTree::m_pParent, pfnVisit, pValue);
}

CZqTree* CZqTree::FindHead(ZQTREEENUMPROC pfnVisit, LPVOID pValue) {
    return FindEnd(&CZqTree::m_pPrev, pfnVisit, pValue);
}

CZqTree* CZqTree::FindTail(ZQTREEENUMPROC pfnVisit, LPVOID pValue) {
    return FindEnd(&CZqTree::m_pNext, pfnVisit, pValue);
}

BOOL CZqTree::IsSibling(CZqTree* pNode) {
    if (pNode == nullptr) {
        return FALSE;
    }
    CZqTree* head = FindHead(nullptr, nullptr);
    LoopGuard guard(head);
    for (CZqTree* node = head->m_pNext; node != nullptr && !guard.Closes(node);
         node = node->m_pNext) {
        if (node == pNode) {
            return TRUE;
        }
    }
    return FALSE;
}

BOOL CZqTree::IsChild(CZqTree* pNode) {
    if (pNode == nullptr || m_pChild == nullptr) {
        return FALSE;
    }
    if (pNode == m_pChild) {
        return TRUE;
    }
    LoopGuard guard(m_pChild);
    for (CZqTree* node = m_pChild->m_pNext; node != nullptr && !guard.Closes(node);
         node = node->m_pNext) {
        if (node == pNode) {
            return TRUE;
        }
    }
    return FALSE;
}

DWORD CZqTree::EnumPath(ZQTREEENUMPROC pfnVisit, LPVOID pValue) {
    ZQTREEENUMPROC visit = Callable(pfnVisit);
    if (visit == nullptr) {
        return 0;
    }
    std::vector<CZqTree*> ancestors;
    LoopGuard guard(this);
    for (CZqTree* node = m_pParent; node != nullptr; node = node->m_pParent) {
        if (node == this || guard.Closes(node)) {
            return ZQTREE_ERROR_CYCLE;
        }
        ancestors.push_back(node);
    }
    for (auto it = ancestors.rbegin(); it != ancestors.rend(); ++it) {
        if (DWORD result = visit(*it, pValue)) {
            return result;
        }
    }
    return 0;
}

DWORD CZqTree::EnumList(ZQTREEENUMPROC pfnVisit, LPVOID pValue) {
    ZQTREEENUMPROC visit = Callable(pfnVisit);
    if (visit == nullptr) {
        return 0;
    }
    CZqTree* head = FindHead(nullptr, nullptr);
    LoopGuard guard(head);
    for (CZqTree* node = head; node != nullptr;) {
        if (DWORD result = visit(node, pValue)) {
            return result;
        }
        node = node->m_pNext;
        if (node != nullptr && guard.Closes(node)) {
            break;
        }
    }
    return 0;
}

DWORD CZqTree::InsertItem(CZqTree* pNew, CZqTree* pRef, DWORD nMode) {
    if (pNew == nullptr || pRef == nullptr || pNew == pRef || nMode < ZQTREE_INSERT_FIRST ||
        nMode > ZQTREE_INSERT_AFTER) {
        return ZQTREE_ERROR_INVALID_ARGUMENT;
    }
    switch (nMode) {
        case ZQTREE_INSERT_FIRST: {
            CZqTree* head = pRef->FindHead(nullptr, nullptr);
            if (head == nullptr || head == this) {
                pNew->m_pPrev = nullptr;
                pNew->m_pNext = nullptr;
                break;
            }
            pNew->m_pPrev = nullptr;
            pNew->m_pNext = head;
            head->m_pPrev = pNew;
            if (head->m_pParent != nullptr) {
                head->m_pParent->m_pChild = pNew;
            }
            break;
        }
        case ZQTREE_INSERT_LAST: {
            CZqTree* tail = pRef->FindTail(nullptr, nullptr);
            if (tail == nullptr || tail == this) {
                pNew->m_pPrev = nullptr;
                pNew->m_pNext = nullptr;
                break;
            }
            pNew->m_pPrev = tail;
            pNew->m_pNext = nullptr;
            tail->m_pNext = pNew;
            break;
        }
        case ZQTREE_INSERT_BEFORE: {
            CZqTree* old_prev = pRef->m_pPrev;
            pNew->m_pNext = pRef;
            pNew->m_pPrev = old_prev;
            pRef->m_pPrev = pNew;
            if (pRef->m_pParent != nullptr && pRef->m_pParent->m_pChild == pRef) {
                pRef->m_pParent->m_pChild = pNew;
            }
            if (old_prev != nullptr) {
                old_prev->m_pNext = pNew;
                // Kept as it always was: when the old previous node is its
                // parent's first child, that link moves to the new node too,
                // although the old previous node still stands before it.
                if (old_prev->m_pParent != nullptr && old_prev->m_pParent->m_pChild == old_prev) {
                    old_prev->m_pParent->m_pChild = pNew;
                }
            }
            break;
        }
        default: {  // ZQTREE_INSERT_AFTER
            CZqTree* old_next = pRef->m_pNext;
            pNew->m_pPrev = pRef;
            pNew->m_pNext = old_next;
            pRef->m_pNext = pNew;
            if (old_next != nullptr) {
                old_next->m_pPrev = pNew;
            }
            break;
        }
    }
    return 0;
}

DWORD CZqTree::RemoveItem(CZqTree* /*pNode*/) {
    return 0;
}

DWORD CZqTree::SortList(ZQTREESORTPROC pfnSort, LPVOID pValue, BOOL bRecursive) {
    ZQTREESORTPROC sort = Callable(pfnSort);
    if (sort == nullptr) {
        return 0;
    }
    DWORD last_code = 0;
    bool changed = true;
    while (changed) {
        changed = false;
        CZqTree* a = FindHead(nullptr, nullptr);
        CZqTree* b = a->m_pNext;
        while (b != nullptr) {
            DWORD code = static_cast<DWORD>(sort(a, b, pValue));
            switch (code) {
                case 0:  // the same pair again
                    continue;
                case 1:
                    return 0;
                case 2:
                case 3:
                case 9:
                case 10:
                    changed = true;
                    a = b->m_pNext;
                    break;
                case 4:
                case 7:
                    a = b->m_pNext;
                    break;
                case 5:
                case 6:
                case 8:
                case 11:
                case 12:
                    changed = true;
                    a = a->m_pNext;
                    break;
                default:  // 13 and above, negative codes included
                    return code;
            }
            last_code = code;
            b = a != nullptr ? a->m_pNext : nullptr;
        }
    }
    if (!bRecursive) {
        return last_code;
    }
    CZqTree* head = FindHead(nullptr, nullptr);
    LoopGuard guard(head);
    for (CZqTree* node = head; node != nullptr;) {
        if (DWORD result = node->SortChildren(sort, pValue, bRecursive)) {
            return result;
        }
        node = node->m_pNext;
        if (node != nullptr && guard.Closes(node)) {
            break;
        }
    }
    return last_code;
}

DWORD CZqTree::AddOneChild(ZQTREEENUMPROC pfnVisit, LPVOID pValue, CZqTree* pNode) {
    ZQTREEENUMPROC visit = Callable(pfnVisit);
    if (pNode == nullptr) {
        return visit != nullptr ? visit(this, pValue) : 0;
    }
    pNode->m_pPrev = nullptr;
    pNode->m_pNext = m_pChild;
    if (m_pChild != nullptr) {
        m_pChild->m_pPrev = pNode;
    }
    m_pChild = pNode;
    return visit != nullptr ? visit(pNode, pValue) : 0;
}

DWORD CZqTree::AddAllChilren(ZQTREEENUMPROC pfnVisit, LPVOID pValue) {
    ZQTREEENUMPROC visit = Callable(pfnVisit);
    return visit != nullptr ? visit(this, pValue) : 0;
}

DWORD CZqTree::FreeChild(CZqTree* pNode) {
    if (pNode == nullptr || pNode == this) {
        return 0;
    }
    if (pNode == m_pChild) {
        m_pChild = pNode->m_pNext;
        if (m_pChild != nullptr) {
            m_pChild->m_pPrev = nullptr;
            m_pChild->m_pParent = this;
        }
    } else if (m_pChild != nullptr) {
        LoopGuard guard(m_pChild);
        for (CZqTree* node = m_pChild->m_pNext; node != nullptr && !guard.Closes(node);
             node = node->m_pNext) {
            if (node == pNode) {
                if (pNode->m_pPrev != nullptr) {
                    pNode->m_pPrev->m_pNext = pNode->m_pNext;
                }
                if (pNode->m_pNext != nullptr) {
                    pNode->m_pNext->m_pPrev = pNode->m_pPrev;
                }
                break;
            }
        }
    }
    // Destroyed also when it was not found among the children: callers pass
    // only their own children.
    delete pNode;
    return 0;
}

void CZqTree::FreeChildren() {
    while (m_pChild != nullptr) {
        CZqTree* doomed = m_pChild;
        m_pChild = doomed->m_pNext;
        if (m_pChild != nullptr) {
            m_pChild->m_pParent = this;
            m_pChild->m_pPrev = doomed->m_pPrev;
        }
        delete doomed;
    }
}

DWORD CZqTree::EnumChildren(ZQTREEENUMPROC pfnVisit, LPVOID pValue) {
    return m_pChild != nullptr ? m_pChild->EnumList(pfnVisit, pValue) : 0;
}

DWORD CZqTree::SortChildren(ZQTREESORTPROC pfnSort, LPVOID pValue, BOOL bRecursive) {
    return m_pChild != nullptr ? m_pChild->SortList(pfnSort, pValue, bRecursive) : 0;
}

DWORD CZqTree::SetUserType(DWORD dwType) {
    m_dwUserType = dwType;
    return 0;
}

DWORD CZqTree::GetUserType() {
    return m_dwUserType;
}

DWORD CZqTree::SetUserFlag(DWORD dwFlag) {
    m_dwUserFlag = dwFlag;
    return 0;
}

DWORD CZqTree::GetUserFlag() {
    return m_dwUserFlag;
}

DWORD CZqTree::SetUserData(LPVOID pData) {
    m_pUserData = pData;
    return 0;
}

LPVOID CZqTree::GetUserData() {
    return m_pUserData;
}

CZqTree* CZqTree::SetParent(CZqTree* pNode) {
    return std::exchange(m_pParent, pNode);
}
CZqTree* CZqTree::SetNext(CZqTree* pNode) {
    return std::exchange(m_pNext, pNode);
}
CZqTree* CZqTree::SetPrev(CZqTree* pNode) {
    return std::exchange(m_pPrev, pNode);
}
CZqTree* CZqTree::SetChild(CZqTree* pNode) {
    return std::exchange(m_pChild, pNode);
}
DWORD CZqTree::SetLevel(DWORD dwLevel) {
    return std::exchange(m_dwLevel, dwLevel);
}
