#include "containers/zq_avl.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>
#include <vector>

namespace {

INT WINAPI CompareInts(LPVOID a, LPVOID b) {
    int x = *static_cast<int*>(a);
    int y = *static_cast<int*>(b);
    return x < y ? -1 : (x > y ? 1 : 0);
}

// Raw difference: magnitudes other than 1, which lookup does not follow.
INT WINAPI CompareIntsRaw(LPVOID a, LPVOID b) {
    return (*static_cast<int*>(a) - *static_cast<int*>(b)) * 5;
}

// A tree of int records that counts what it disposes of.
class IntTree : public CZqAvl {
public:
    ~IntTree() override { AvlFreeTree(); }
    void AvlDeleteUserData(LPVOID pData) override {
        ++deleted;
        delete static_cast<int*>(pData);
    }
    DWORD Insert(int value, LPVOID* existing = nullptr) {
        LPVOID ignored = nullptr;
        SZqAVLHHEADER* node = AvlNewHeader(new int(value));
        DWORD status = AvlInsertHeader(node, existing ? existing : &ignored, CompareInts);
        if (status != 0) {  // a refused node stays ours
            delete static_cast<int*>(node->pData);
            delete node;
        }
        return status;
    }
    SZqAVLHHEADER* Find(int value) {
        SZqAVLHHEADER key{nullptr, nullptr, ZQAVL_BALANCED, &value};
        return AvlFindNode(AvlGetRoot(), &key, CompareInts);
    }
    void Remove(int value) { EXPECT_EQ(AvlFreeNode(&value, CompareInts), 0); }
    int deleted = 0;
};

int Value(const SZqAVLHHEADER* node) {
    return *static_cast<int*>(node->pData);
}

// Checks the AVL invariants below `node` and appends the in-order walk.
// Returns the subtree's height, or -1 after reporting a failure.
int CheckSubtree(const SZqAVLHHEADER* node, std::vector<int>* walk) {
    if (node == nullptr) {
        return 0;
    }
    int left = CheckSubtree(node->pLeft, walk);
    walk->push_back(Value(node));
    int right = CheckSubtree(node->pRight, walk);
    if (left < 0 || right < 0) {
        return -1;
    }
    DWORD expected =
        left > right ? ZQAVL_LEFT_HIGH : (left == right ? ZQAVL_BALANCED : ZQAVL_RIGHT_HIGH);
    if (std::abs(left - right) > 1 || node->dwBalance != expected) {
        ADD_FAILURE() << "node " << Value(node) << ": heights " << left << "/" << right
                      << ", balance code " << node->dwBalance;
        return -1;
    }
    return std::max(left, right) + 1;
}

void ExpectMatchesModel(const IntTree& tree, const std::set<int>& model) {
    std::vector<int> walk;
    ASSERT_GE(CheckSubtree(tree.AvlGetRoot(), &walk), 0);
    EXPECT_TRUE(std::is_sorted(walk.begin(), walk.end()));
    EXPECT_TRUE(std::equal(walk.begin(), walk.end(), model.begin(), model.end()));
}

TEST(ZqAvl, MatchesOrderedSetUnderRandomOperations) {
    for (unsigned seed : {1u, 2u, 3u, 4u}) {
        std::mt19937 rng(seed);
        const int key_range = seed % 2 ? 64 : 2000;  // small range: many duplicates
        std::uniform_int_distribution<int> key(0, key_range);
        std::uniform_int_distribution<int> op(0, 9);
        IntTree tree;
        std::set<int> model;
        int disposed = 0;
        for (int step = 0; step < 20000; ++step) {
            int k = key(rng);
            int what = op(rng);
            if (what < 5) {
                LPVOID existing = reinterpret_cast<LPVOID>(1);
                DWORD status = tree.Insert(k, &existing);
                bool fresh = model.insert(k).second;
                if (fresh) {
                    ASSERT_EQ(status, 0u);
                    EXPECT_EQ(existing, nullptr);
                } else {
                    ASSERT_EQ(status, ZQAVL_ERROR_DUPLICATE);
                    ASSERT_NE(existing, nullptr);
                    EXPECT_EQ(*static_cast<int*>(existing), k);
                    EXPECT_EQ(tree.Find(k)->pData, existing);  // the stored record
                }
            } else if (what < 8) {
                bool stored = model.erase(k) == 1;
                tree.Remove(k);
                disposed += stored;
                ASSERT_EQ(tree.deleted, disposed);
            } else {
                SZqAVLHHEADER* found = tree.Find(k);
                ASSERT_EQ(found != nullptr, model.count(k) == 1);
                if (found) {
                    EXPECT_EQ(Value(found), k);
                }
            }
            if (step % 97 == 0) {
                ExpectMatchesModel(tree, model);
                if (HasFailure()) {
                    return;
                }
            }
        }
        ExpectMatchesModel(tree, model);
        for (int k : std::vector<int>(model.begin(), model.end())) {
            tree.Remove(k);
        }
        EXPECT_EQ(tree.AvlGetRoot(), nullptr);
    }
}

TEST(ZqAvl, AscendingAndZigZagInsertionsGiveTheSameBalancedShape) {
    for (std::vector<int> order : {std::vector<int>{1, 2, 3}, std::vector<int>{3, 1, 2},
                                   std::vector<int>{3, 2, 1}, std::vector<int>{1, 3, 2}}) {
        IntTree tree;
        for (int v : order) {
            ASSERT_EQ(tree.Insert(v), 0u);
        }
        SZqAVLHHEADER* root = tree.AvlGetRoot();
        ASSERT_NE(root, nullptr);
        EXPECT_EQ(Value(root), 2);
        ASSERT_NE(root->pLeft, nullptr);
        ASSERT_NE(root->pRight, nullptr);
        EXPECT_EQ(Value(root->pLeft), 1);
        EXPECT_EQ(Value(root->pRight), 3);
        for (SZqAVLHHEADER* n : {root, root->pLeft, root->pRight}) {
            EXPECT_EQ(n->dwBalance, static_cast<DWORD>(ZQAVL_BALANCED));
        }
    }
}

TEST(ZqAvl, FirstInsertBecomesRootAndClearsExisting) {
    IntTree tree;
    LPVOID existing = reinterpret_cast<LPVOID>(0x1234);
    SZqAVLHHEADER* node = tree.AvlNewHeader(new int(7));
    ASSERT_EQ(tree.AvlInsertHeader(node, &existing, CompareInts), 0u);
    EXPECT_EQ(tree.AvlGetRoot(), node);
    EXPECT_EQ(existing, nullptr);
}

TEST(ZqAvl, DuplicateIsRefusedAndLeavesTreeAsItWas) {
    IntTree tree;
    for (int v : {5, 3, 8}) {
        tree.Insert(v);
    }
    SZqAVLHHEADER* root = tree.AvlGetRoot();
    int dup = 3;
    SZqAVLHHEADER* node = tree.AvlNewHeader(&dup);
    LPVOID existing = nullptr;
    EXPECT_EQ(tree.AvlInsertHeader(node, &existing, CompareInts), ZQAVL_ERROR_DUPLICATE);
    EXPECT_EQ(existing, root->pLeft->pData);
    EXPECT_NE(existing, static_cast<LPVOID>(&dup));
    EXPECT_EQ(tree.AvlGetRoot(), root);
    EXPECT_EQ(root->pLeft->pLeft, nullptr);
    EXPECT_EQ(root->pLeft->pRight, nullptr);
    delete node;
}

TEST(ZqAvl, InsertChecksCallbackBeforeOutPointer) {
    IntTree tree;
    int data_not_code = 0;
    auto not_code = reinterpret_cast<ZQAVLCOMPAREPROC>(static_cast<void*>(&data_not_code));
    SZqAVLHHEADER* node = tree.AvlNewHeader(new int(1));
    LPVOID existing = reinterpret_cast<LPVOID>(0x1234);
    EXPECT_EQ(tree.AvlInsertHeader(node, &existing, not_code), ZQAVL_ERROR_NOT_CODE);
    EXPECT_EQ(tree.AvlInsertHeader(node, nullptr, nullptr), ZQAVL_ERROR_NOT_CODE);
    EXPECT_EQ(tree.AvlInsertHeader(node, nullptr, CompareInts), ZQAVL_ERROR_NULL_POINTER);
    EXPECT_EQ(existing, reinterpret_cast<LPVOID>(0x1234));  // untouched
    EXPECT_EQ(tree.AvlGetRoot(), nullptr);
    delete static_cast<int*>(node->pData);
    delete node;
}

TEST(ZqAvl, LookupFollowsOnlyExactUnitResults) {
    IntTree tree;
    for (int v : {1, 2, 3}) {
        tree.Insert(v);
    }
    SZqAVLHHEADER* root = tree.AvlGetRoot();
    int two = 2;
    int three = 3;
    SZqAVLHHEADER key2{nullptr, nullptr, ZQAVL_BALANCED, &two};
    SZqAVLHHEADER key3{nullptr, nullptr, ZQAVL_BALANCED, &three};
    EXPECT_EQ(tree.AvlFindNode(root, &key2, CompareIntsRaw), root);  // equal at first
    EXPECT_EQ(tree.AvlFindNode(root, &key3, CompareIntsRaw), nullptr);
    EXPECT_EQ(tree.AvlFindNode(root, &key3, CompareInts), root->pRight);
    EXPECT_EQ(tree.AvlFindNode(root->pLeft, &key3, CompareInts), nullptr);  // only below start
    EXPECT_EQ(tree.AvlFindNode(nullptr, &key3, CompareInts), nullptr);
    EXPECT_EQ(tree.AvlFindNode(root, nullptr, CompareInts), nullptr);
    EXPECT_EQ(tree.AvlFindNode(root, &key3, nullptr), nullptr);
}

TEST(ZqAvl, FreeNodeAlwaysReturnsZero) {
    IntTree tree;
    for (int v : {1, 2, 3}) {
        tree.Insert(v);
    }
    SZqAVLHHEADER* root = tree.AvlGetRoot();
    int absent = 9;
    EXPECT_EQ(tree.AvlFreeNode(&absent, CompareInts), 0);
    EXPECT_EQ(tree.AvlGetRoot(), root);
    EXPECT_EQ(tree.deleted, 0);
    EXPECT_EQ(tree.AvlFreeNode(nullptr, CompareInts), 0);
    int one = 1;
    EXPECT_EQ(tree.AvlFreeNode(&one, nullptr), 0);
    EXPECT_EQ(tree.deleted, 0);
    for (int v : {2, 1, 3}) {
        EXPECT_EQ(tree.AvlFreeNode(&v, CompareInts), 0);
    }
    EXPECT_EQ(tree.deleted, 3);
    EXPECT_EQ(tree.AvlGetRoot(), nullptr);
}

TEST(ZqAvl, RemovingInnerNodeMovesRightmostOfLeftSubtreeIntoPlace) {
    IntTree tree;
    for (int v : {4, 2, 6, 1, 3, 5, 7}) {
        tree.Insert(v);
    }
    SZqAVLHHEADER* three = tree.Find(3);
    tree.Remove(4);
    EXPECT_EQ(tree.AvlGetRoot(), three);  // the node itself moved, not its record
    EXPECT_EQ(Value(three->pLeft), 2);
    EXPECT_EQ(Value(three->pRight), 6);
    std::vector<int> walk;
    EXPECT_EQ(CheckSubtree(tree.AvlGetRoot(), &walk), 3);
}

TEST(ZqAvl, CopySharesTheNodes) {
    IntTree tree;
    tree.Insert(1);
    tree.Insert(2);
    CZqAvl copy(tree);
    EXPECT_EQ(copy.AvlGetRoot(), tree.AvlGetRoot());
    CZqAvl assigned;
    assigned = tree;
    EXPECT_EQ(assigned.AvlGetRoot(), tree.AvlGetRoot());
    // Only one owner may free them: detach both copies.
    copy = CZqAvl();
    assigned = CZqAvl();
    EXPECT_EQ(copy.AvlGetRoot(), nullptr);
    EXPECT_NE(tree.AvlGetRoot(), nullptr);
}

class MakingTree : public CZqAvl {
public:
    LPVOID AvlNewUserData() override { return new int(42); }
};

TEST(ZqAvl, NewHeaderTakesUserDataHookOnlyWithoutData) {
    CZqAvl base;
    SZqAVLHHEADER* plain = base.AvlNewHeader(nullptr);
    ASSERT_NE(plain, nullptr);
    EXPECT_EQ(plain->pData, nullptr);
    EXPECT_EQ(plain->pLeft, nullptr);
    EXPECT_EQ(plain->pRight, nullptr);
    EXPECT_EQ(plain->dwBalance, static_cast<DWORD>(ZQAVL_BALANCED));
    delete plain;

    MakingTree making;
    SZqAVLHHEADER* made = making.AvlNewHeader(nullptr);
    ASSERT_NE(made, nullptr);
    ASSERT_NE(made->pData, nullptr);
    EXPECT_EQ(*static_cast<int*>(made->pData), 42);
    int own = 1;
    SZqAVLHHEADER* given = making.AvlNewHeader(&own);
    EXPECT_EQ(given->pData, &own);
    delete given;
    LPVOID existing;
    ASSERT_EQ(making.AvlInsertHeader(made, &existing, CompareInts), 0u);
    // The base disposer releases the record with the global delete.
}

TEST(ZqAvl, FreeBranchClearsRootWhenItWasTheRoot) {
    IntTree tree;
    for (int v : {2, 1, 3}) {
        tree.Insert(v);
    }
    tree.AvlFreeBranch(tree.AvlGetRoot()->pLeft);
    EXPECT_EQ(tree.deleted, 1);
    EXPECT_NE(tree.AvlGetRoot(), nullptr);  // the root's left link now dangles
    tree.AvlGetRoot()->pLeft = nullptr;
    tree.AvlFreeBranch(tree.AvlGetRoot());
    EXPECT_EQ(tree.deleted, 3);
    EXPECT_EQ(tree.AvlGetRoot(), nullptr);
    tree.AvlFreeBranch(nullptr);
}

}  // namespace
