// CZqTree: an intrusive node for ordered trees of any breadth.
//
// Every node is itself a CZqTree (or a class derived from it) and carries
// its links: parent, next and previous sibling, first child. Sibling lists
// are doubly linked; a parent points only at its first child. Besides the
// links a node holds a level kept for the user (the tree never computes
// it) and three free user fields. Walks, searches and sorts take plain
// callbacks and a caller value.
//
// The constructor sets no field: the creator or a derived class must call
// ClearData (or set every link) before the node is used. Copies are shallow:
// they take all eight fields, links included.
//
// Destroying a node destroys its children first. The user-data pointer is
// never freed by the tree. Not thread-safe.
#pragma once

#include "platform/win32.h"

class CZqTree;

// Visitor: a non-zero result stops a walk and becomes its result.
typedef DWORD(WINAPI* ZQTREEENUMPROC)(CZqTree* pNode, LPVOID pValue);
// Sort callback: gets neighbouring nodes (a, b), may relink them itself and
// returns a code that says how the walk goes on (see SortList).
typedef INT(WINAPI* ZQTREESORTPROC)(CZqTree* pA, CZqTree* pB, LPVOID pValue);

// Status codes.
#define ZQTREE_ERROR_INVALID_ARGUMENT 0x24004407u
#define ZQTREE_ERROR_CYCLE 0x24004437u

// Positions for InsertItem.
#define ZQTREE_INSERT_FIRST 2   // at the head of the reference node's list
#define ZQTREE_INSERT_LAST 3    // at its tail
#define ZQTREE_INSERT_BEFORE 4  // in front of the reference node
#define ZQTREE_INSERT_AFTER 5   // behind the reference node

// Sort codes: 0 compares the same pair again; 1 stops with result 0;
// 2, 3, 9, 10 mark the pass changed and step past b; 4, 7 step past b;
// 5, 6, 8, 11, 12 mark the pass changed and step one node; 13 and above
// (and negative codes) stop and become the result.

class CZqTree {
public:
    // Sets no field on purpose (see above).
    CZqTree() {}
    CZqTree(const CZqTree& other);
    CZqTree& operator=(const CZqTree& other);
    // Destroys every child first (FreeChildren).
    virtual ~CZqTree();

    // The parent chain's ancestors from the root down to the parent get the
    // visitor; the first non-zero result is returned. 0 without a visitor;
    // ZQTREE_ERROR_CYCLE, with no call, when the chain returns to this node
    // (or loops anywhere).
    virtual DWORD EnumPath(ZQTREEENUMPROC pfnVisit, LPVOID pValue);
    // Links pNew into pRef's sibling list at position nMode (2 to 5).
    // ZQTREE_ERROR_INVALID_ARGUMENT for a null node, pNew == pRef or another
    // mode, with nothing changed. pNew's parent link is left for the caller.
    virtual DWORD InsertItem(CZqTree* pNew, CZqTree* pRef, DWORD nMode);
    // Does nothing and returns 0; FreeChild removes nodes.
    virtual DWORD RemoveItem(CZqTree* pNode);
    // Visits every sibling from the head on; first non-zero result, else 0.
    virtual DWORD EnumList(ZQTREEENUMPROC pfnVisit, LPVOID pValue);
    // Exchange sort of this node's sibling list driven by the callback;
    // recursive: then sorts every node's children the same way, from the
    // head on. Returns 0 without a callable callback, 0 or a stopping code
    // (13 and above) when the callback stopped the sort, else the first
    // non-zero result of the recursion, else the last code (0 when no pair).
    virtual DWORD SortList(ZQTREESORTPROC pfnSort, LPVOID pValue, BOOL bRecursive);
    // Puts pNode (sibling links cleared) in front of the first child and
    // makes it the first child, then returns the visitor's result on it;
    // without a node returns the visitor's result on this node. The child's
    // parent link is left for the caller.
    virtual DWORD AddOneChild(ZQTREEENUMPROC pfnVisit, LPVOID pValue, CZqTree* pNode);
    // Calls the visitor once on this node (0 without one); the visitor is
    // expected to create the children.
    virtual DWORD AddAllChilren(ZQTREEENUMPROC pfnVisit, LPVOID pValue);
    // Unlinks pNode from the children and destroys it. It is destroyed even
    // when it is not found among the children, so pass only own children.
    // Null or this node: nothing happens. Returns 0.
    virtual DWORD FreeChild(CZqTree* pNode);
    // Destroys every child, first to last.
    virtual void FreeChildren();
    // EnumList on the first child; 0 without children.
    virtual DWORD EnumChildren(ZQTREEENUMPROC pfnVisit, LPVOID pValue);
    // SortList on the first child; 0 without children.
    virtual DWORD SortChildren(ZQTREESORTPROC pfnSort, LPVOID pValue, BOOL bRecursive);
    virtual DWORD SetUserType(DWORD dwType);  // returns 0
    virtual DWORD GetUserType();
    virtual DWORD SetUserFlag(DWORD dwFlag);  // returns 0
    virtual DWORD GetUserFlag();
    virtual DWORD SetUserData(LPVOID pData);  // returns 0
    virtual LPVOID GetUserData();

    // The topmost ancestor; the visitor is called once on it (result
    // discarded). A chain that leads back to this node stops there and the
    // last node reached before it is returned without a visitor call.
    CZqTree* FindRoot(ZQTREEENUMPROC pfnVisit, LPVOID pValue);
    // The same along previous links: the first sibling.
    CZqTree* FindHead(ZQTREEENUMPROC pfnVisit, LPVOID pValue);
    // The same along next links: the last sibling.
    CZqTree* FindTail(ZQTREEENUMPROC pfnVisit, LPVOID pValue);
    // Whether pNode is among the siblings after the head (not the head).
    BOOL IsSibling(CZqTree* pNode);
    // Whether pNode is the first child or one of its following siblings.
    BOOL IsChild(CZqTree* pNode);

    // Link setters return the previous value.
    CZqTree* SetParent(CZqTree* pNode);
    CZqTree* SetNext(CZqTree* pNode);
    CZqTree* SetPrev(CZqTree* pNode);
    CZqTree* SetChild(CZqTree* pNode);
    CZqTree* GetParent() const { return m_pParent; }
    CZqTree* GetNext() const { return m_pNext; }
    CZqTree* GetPrev() const { return m_pPrev; }
    CZqTree* GetChild() const { return m_pChild; }
    // Returns the previous level.
    DWORD SetLevel(DWORD dwLevel);
    DWORD GetLevel() const { return m_dwLevel; }

protected:
    // Zeroes all eight fields; returns 1.
    virtual DWORD ClearData();

private:
    CZqTree* FindEnd(CZqTree* CZqTree::*link, ZQTREEENUMPROC pfnVisit, LPVOID pValue);

    CZqTree* m_pParent;
    CZqTree* m_pNext;
    CZqTree* m_pPrev;
    CZqTree* m_pChild;
    DWORD m_dwLevel;
    DWORD m_dwUserType;
    DWORD m_dwUserFlag;
    LPVOID m_pUserData;
};
