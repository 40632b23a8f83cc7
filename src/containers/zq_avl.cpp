#include "containers/zq_avl.h"

#include <new>

namespace {

using Node = SZqAVLHHEADER;

bool IsCallable(ZQAVLCOMPAREPROC pfn) {
    return pfn != nullptr &&
           !IsBadCodePtr(reinterpret_cast<FARPROC>(reinterpret_cast<void (*)()>(pfn)));
}

// Rebalances *ppLink after its left subtree grew past the limit (balance 0
// before the growth). The subtree's height is then what it was before.
void RotateAfterLeftGrowth(Node** ppLink) {
    Node* n = *ppLink;
    Node* l = n->pLeft;
    if (l->dwBalance != ZQAVL_RIGHT_HIGH) {  // left-left: single right rotation
        n->pLeft = l->pRight;
        l->pRight = n;
        n->dwBalance = ZQAVL_BALANCED;
        l->dwBalance = ZQAVL_BALANCED;
        *ppLink = l;
        return;
    }
    Node* m = l->pRight;  // left-right: double rotation through m
    l->pRight = m->pLeft;
    m->pLeft = l;
    n->pLeft = m->pRight;
    m->pRight = n;
    n->dwBalance = m->dwBalance == ZQAVL_LEFT_HIGH ? ZQAVL_RIGHT_HIGH : ZQAVL_BALANCED;
    l->dwBalance = m->dwBalance == ZQAVL_RIGHT_HIGH ? ZQAVL_LEFT_HIGH : ZQAVL_BALANCED;
    m->dwBalance = ZQAVL_BALANCED;
    *ppLink = m;
}

void RotateAfterRightGrowth(Node** ppLink) {
    Node* n = *ppLink;
    Node* r = n->pRight;
    if (r->dwBalance != ZQAVL_LEFT_HIGH) {  // right-right: single left rotation
        n->pRight = r->pLeft;
        r->pLeft = n;
        n->dwBalance = ZQAVL_BALANCED;
        r->dwBalance = ZQAVL_BALANCED;
        *ppLink = r;
        return;
    }
    Node* m = r->pLeft;  // right-left: double rotation through m
    r->pLeft = m->pRight;
    m->pRight = r;
    n->pRight = m->pLeft;
    m->pLeft = n;
    n->dwBalance = m->dwBalance == ZQAVL_RIGHT_HIGH ? ZQAVL_LEFT_HIGH : ZQAVL_BALANCED;
    r->dwBalance = m->dwBalance == ZQAVL_LEFT_HIGH ? ZQAVL_RIGHT_HIGH : ZQAVL_BALANCED;
    m->dwBalance = ZQAVL_BALANCED;
    *ppLink = m;
}

// After the left subtree of *ppLink lost a level: rebalances and returns
// whether the whole subtree is still one level lower than before.
BOOL BalanceAfterLeftShrink(Node** ppLink) {
    Node* n = *ppLink;
    switch (n->dwBalance) {
        case ZQAVL_LEFT_HIGH:
            n->dwBalance = ZQAVL_BALANCED;
            return TRUE;
        case ZQAVL_BALANCED:
            n->dwBalance = ZQAVL_RIGHT_HIGH;
            return FALSE;
        default:
            break;
    }
    Node* r = n->pRight;
    if (r->dwBalance == ZQAVL_LEFT_HIGH) {
        RotateAfterRightGrowth(ppLink);  // same double rotation as right-left insertion
        return TRUE;
    }
    n->pRight = r->pLeft;
    r->pLeft = n;
    *ppLink = r;
    if (r->dwBalance == ZQAVL_BALANCED) {
        n->dwBalance = ZQAVL_RIGHT_HIGH;
        r->dwBalance = ZQAVL_LEFT_HIGH;
        return FALSE;
    }
    n->dwBalance = ZQAVL_BALANCED;
    r->dwBalance = ZQAVL_BALANCED;
    return TRUE;
}

BOOL BalanceAfterRightShrink(Node** ppLink) {
    Node* n = *ppLink;
    switch (n->dwBalance) {
        case ZQAVL_RIGHT_HIGH:
            n->dwBalance = ZQAVL_BALANCED;
            return TRUE;
        case ZQAVL_BALANCED:
            n->dwBalance = ZQAVL_LEFT_HIGH;
            return FALSE;
        default:
            break;
    }
    Node* l = n->pLeft;
    if (l->dwBalance == ZQAVL_RIGHT_HIGH) {
        RotateAfterLeftGrowth(ppLink);  // same double rotation as left-right insertion
        return TRUE;
    }
    n->pLeft = l->pRight;
    l->pRight = n;
    *ppLink = l;
    if (l->dwBalance == ZQAVL_BALANCED) {
        n->dwBalance = ZQAVL_LEFT_HIGH;
        l->dwBalance = ZQAVL_RIGHT_HIGH;
        return FALSE;
    }
    n->dwBalance = ZQAVL_BALANCED;
    l->dwBalance = ZQAVL_BALANCED;
    return TRUE;
}

}  // namespace

CZqAvl::CZqAvl() : m_pRoot(nullptr) {}

CZqAvl::CZqAvl(const CZqAvl& other) : m_pRoot(other.m_pRoot) {}

CZqAvl& CZqAvl::operator=(const CZqAvl& other) {
    m_pRoot = other.m_pRoot;  // shallow on purpose: both now share the nodes
    return *this;
}

CZqAvl::~CZqAvl() {
    AvlFreeTree();
}

LPVOID CZqAvl::AvlNewUserData() {
    return nullptr;
}

void CZqAvl::AvlDeleteUserData(LPVOID pData) {
    if (pData != nullptr) {
        ::operator delete(pData);
    }
}

SZqAVLHHEADER* CZqAvl::AvlNewHeader(LPVOID pData) {
    Node* node = new (std::nothrow) Node;
    if (node == nullptr) {
        return nullptr;
    }
    node->pLeft = nullptr;
    node->pRight = nullptr;
    node->dwBalance = ZQAVL_BALANCED;
    node->pData = pData != nullptr ? pData : AvlNewUserData();
    return node;
}

DWORD CZqAvl::AvlInsertHeader(SZqAVLHHEADER* pNode, LPVOID* ppExisting,
                              ZQAVLCOMPAREPROC pfnCompare) {
    if (!IsCallable(pfnCompare)) {
        return ZQAVL_ERROR_NOT_CODE;
    }
    if (ppExisting == nullptr) {
        return ZQAVL_ERROR_NULL_POINTER;
    }
    *ppExisting = nullptr;
    if (m_pRoot == nullptr) {
        m_pRoot = pNode;
        return 0;
    }
    BOOL grew = TRUE;
    return InsertBelow(&m_pRoot, pNode, ppExisting, pfnCompare, &grew);
}

DWORD CZqAvl::InsertBelow(SZqAVLHHEADER** ppLink, SZqAVLHHEADER* pNode, LPVOID* ppExisting,
                          ZQAVLCOMPAREPROC pfnCompare, BOOL* pbGrew) {
    Node* n = *ppLink;
    INT order = pfnCompare(n->pData, pNode->pData);
    if (order == 0) {
        *ppExisting = n->pData;  // duplicates are refused; the caller keeps pNode
        return ZQAVL_ERROR_DUPLICATE;
    }
    if (order > 0) {
        if (n->pLeft == nullptr) {
            n->pLeft = pNode;
            *pbGrew = TRUE;
        } else {
            DWORD status = InsertBelow(&n->pLeft, pNode, ppExisting, pfnCompare, pbGrew);
            if (status != 0) {
                return status;
            }
        }
        if (*pbGrew) {
            if (n->dwBalance == ZQAVL_RIGHT_HIGH) {
                n->dwBalance = ZQAVL_BALANCED;
                *pbGrew = FALSE;
            } else if (n->dwBalance == ZQAVL_BALANCED) {
                n->dwBalance = ZQAVL_LEFT_HIGH;
            } else {
                RotateAfterLeftGrowth(ppLink);
                *pbGrew = FALSE;
            }
        }
        return 0;
    }
    if (n->pRight == nullptr) {
        n->pRight = pNode;
        *pbGrew = TRUE;
    } else {
        DWORD status = InsertBelow(&n->pRight, pNode, ppExisting, pfnCompare, pbGrew);
        if (status != 0) {
            return status;
        }
    }
    if (*pbGrew) {
        if (n->dwBalance == ZQAVL_LEFT_HIGH) {
            n->dwBalance = ZQAVL_BALANCED;
            *pbGrew = FALSE;
        } else if (n->dwBalance == ZQAVL_BALANCED) {
            n->dwBalance = ZQAVL_RIGHT_HIGH;
        } else {
            RotateAfterRightGrowth(ppLink);
            *pbGrew = FALSE;
        }
    }
    return 0;
}

SZqAVLHHEADER* CZqAvl::AvlFindNode(SZqAVLHHEADER* pStart, SZqAVLHHEADER* pKey,
                                   ZQAVLCOMPAREPROC pfnCompare) {
    if (pStart == nullptr || pKey == nullptr || !IsCallable(pfnCompare)) {
        return nullptr;
    }
    // Only the exact results -1, 0 and 1 steer the search; any other value
    // ends it, so a callback returning raw differences finds only on equality.
    for (Node* n = pStart; n != nullptr;) {
        switch (pfnCompare(pKey->pData, n->pData)) {
            case 0:
                return n;
            case -1:
                n = n->pLeft;
                break;
            case 1:
                n = n->pRight;
                break;
            default:
                return nullptr;
        }
    }
    return nullptr;
}

int CZqAvl::AvlFreeNode(LPVOID pKeyData, ZQAVLCOMPAREPROC pfnCompare) {
    if (!IsCallable(pfnCompare) || pKeyData == nullptr) {
        return 0;
    }
    BOOL shrank = FALSE;
    RemoveBelow(&m_pRoot, pKeyData, pfnCompare, &shrank);
    return 0;  // constant, also after a removal
}

void CZqAvl::RemoveBelow(SZqAVLHHEADER** ppLink, LPVOID pKeyData, ZQAVLCOMPAREPROC pfnCompare,
                         BOOL* pbShrank) {
    Node* n = *ppLink;
    if (n == nullptr) {
        *pbShrank = FALSE;  // not stored
        return;
    }
    INT order = pfnCompare(pKeyData, n->pData);
    if (order < 0) {
        RemoveBelow(&n->pLeft, pKeyData, pfnCompare, pbShrank);
        if (*pbShrank) {
            *pbShrank = BalanceAfterLeftShrink(ppLink);
        }
        return;
    }
    if (order > 0) {
        RemoveBelow(&n->pRight, pKeyData, pfnCompare, pbShrank);
        if (*pbShrank) {
            *pbShrank = BalanceAfterRightShrink(ppLink);
        }
        return;
    }
    if (n->pRight == nullptr) {
        *ppLink = n->pLeft;
        *pbShrank = TRUE;
    } else if (n->pLeft == nullptr) {
        *ppLink = n->pRight;
        *pbShrank = TRUE;
    } else {
        // The rightmost node of the left subtree takes n's place.
        BOOL left_shrank = FALSE;
        Node* heir = DetachRightmost(&n->pLeft, &left_shrank);
        heir->pLeft = n->pLeft;
        heir->pRight = n->pRight;
        heir->dwBalance = n->dwBalance;
        *ppLink = heir;
        *pbShrank = left_shrank ? BalanceAfterLeftShrink(ppLink) : FALSE;
    }
    DisposeNode(n);
}

SZqAVLHHEADER* CZqAvl::DetachRightmost(SZqAVLHHEADER** ppLink, BOOL* pbShrank) {
    Node* n = *ppLink;
    if (n->pRight != nullptr) {
        Node* rightmost = DetachRightmost(&n->pRight, pbShrank);
        if (*pbShrank) {
            *pbShrank = BalanceAfterRightShrink(ppLink);
        }
        return rightmost;
    }
    *ppLink = n->pLeft;
    *pbShrank = TRUE;
    return n;
}

void CZqAvl::DisposeNode(SZqAVLHHEADER* pNode) {
    if (pNode->pData != nullptr) {
        AvlDeleteUserData(pNode->pData);
    }
    if (m_pRoot == pNode) {
        m_pRoot = nullptr;
    }
    delete pNode;
}

void CZqAvl::AvlFreeBranch(SZqAVLHHEADER* pNode) {
    if (pNode == nullptr) {
        return;
    }
    AvlFreeBranch(pNode->pLeft);
    AvlFreeBranch(pNode->pRight);
    DisposeNode(pNode);
}

void CZqAvl::AvlFreeTree() {
    AvlFreeBranch(m_pRoot);
    m_pRoot = nullptr;
}
