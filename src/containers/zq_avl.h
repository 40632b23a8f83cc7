// CZqAvl: a height-balanced (AVL) binary search tree over untyped records.
//
// The tree never looks into the user's records: every ordering decision is
// made by a comparison callback handed to each operation, so one class
// serves any record type. Nodes are created through the tree
// (AvlNewHeader) and then linked in (AvlInsertHeader). A derived class
// decides how records are made and disposed of by overriding
// AvlNewUserData and AvlDeleteUserData.
//
// Balance codes are 0 (left subtree one level higher), 1 (equal heights)
// and 2 (right subtree one level higher); every rule below is written in
// these codes. There is no element count and no parent link.
//
// Ownership: a linked node and its record belong to the tree and are freed
// by AvlFreeNode, AvlFreeBranch, AvlFreeTree or the destructor. A node whose
// insertion was refused stays the caller's.
//
// Not thread-safe; one tree is used by one thread at a time.
#pragma once

#include "platform/win32.h"

// A node: the links, the balance code and the user's record.
struct SZqAVLHHEADER {
    SZqAVLHHEADER* pLeft;   // entries that compare smaller
    SZqAVLHHEADER* pRight;  // entries that compare greater
    DWORD dwBalance;        // 0, 1 or 2 (see above)
    LPVOID pData;           // the user's record
};
typedef SZqAVLHHEADER* LPZQAVLHHEADER;

// Balance codes.
#define ZQAVL_LEFT_HIGH 0
#define ZQAVL_BALANCED 1
#define ZQAVL_RIGHT_HIGH 2

// Comparison of two records a and b: negative when a orders before b, 0 when
// equal, positive when after. Lookup accepts only the exact values -1, 0, 1.
typedef INT(WINAPI* ZQAVLCOMPAREPROC)(LPVOID a, LPVOID b);

// Status codes of AvlInsertHeader.
#define ZQAVL_ERROR_NOT_CODE 0x24004401u      // the callback is not callable code
#define ZQAVL_ERROR_DUPLICATE 0x24004407u     // an equal entry is already stored
#define ZQAVL_ERROR_NULL_POINTER 0x2400441Au  // the existing out-pointer is null

class CZqAvl {
public:
    CZqAvl();
    // Both copies share the same nodes afterwards: only one may free them.
    CZqAvl(const CZqAvl& other);
    CZqAvl& operator=(const CZqAvl& other);
    // Frees every node (AvlFreeTree). While it runs, a derived class's
    // AvlDeleteUserData is no longer reachable: a class that overrides it
    // frees the tree in its own destructor.
    virtual ~CZqAvl();

    // Makes the record for a node created without one; the base makes none.
    virtual LPVOID AvlNewUserData();
    // Disposes of a node's record (never called with null); the base
    // releases it with the global operator delete.
    virtual void AvlDeleteUserData(LPVOID pData);

    // The root node, null for an empty tree.
    SZqAVLHHEADER* AvlGetRoot() const { return m_pRoot; }

    // A new unlinked node (links null, balance 1) carrying pData, or when
    // pData is null the record AvlNewUserData makes. Null when the node
    // cannot be allocated; AvlNewUserData is then not called.
    SZqAVLHHEADER* AvlNewHeader(LPVOID pData);

    // Links pNode into the tree. Returns 0, or ZQAVL_ERROR_NOT_CODE /
    // ZQAVL_ERROR_NULL_POINTER before anything is touched, or
    // ZQAVL_ERROR_DUPLICATE with *ppExisting = the stored equal record and
    // the tree unchanged. *ppExisting is null after every other outcome
    // past the checks. pNode itself is not examined.
    DWORD AvlInsertHeader(SZqAVLHHEADER* pNode, LPVOID* ppExisting, ZQAVLCOMPAREPROC pfnCompare);

    // The node under pStart whose record equals pKey's record, or null. The
    // callback gets (key record, stored record); any result other than -1,
    // 0 or 1 ends the search with null.
    SZqAVLHHEADER* AvlFindNode(SZqAVLHHEADER* pStart, SZqAVLHHEADER* pKey,
                               ZQAVLCOMPAREPROC pfnCompare);

    // Removes and frees the node whose record equals pKeyData (callback
    // arguments: key record, stored record). Always returns 0, also after a
    // removal: look the entry up first to learn whether it is stored.
    int AvlFreeNode(LPVOID pKeyData, ZQAVLCOMPAREPROC pfnCompare);

    // Frees the subtree under pNode, children first; clears the root link
    // when it named pNode.
    void AvlFreeBranch(SZqAVLHHEADER* pNode);

    // Frees every node; the tree is empty afterwards.
    void AvlFreeTree();

protected:
    SZqAVLHHEADER* m_pRoot;

private:
    DWORD InsertBelow(SZqAVLHHEADER** ppLink, SZqAVLHHEADER* pNode, LPVOID* ppExisting,
                      ZQAVLCOMPAREPROC pfnCompare, BOOL* pbGrew);
    void RemoveBelow(SZqAVLHHEADER** ppLink, LPVOID pKeyData, ZQAVLCOMPAREPROC pfnCompare,
                     BOOL* pbShrank);
    SZqAVLHHEADER* DetachRightmost(SZqAVLHHEADER** ppLink, BOOL* pbShrank);
    void DisposeNode(SZqAVLHHEADER* pNode);
};
