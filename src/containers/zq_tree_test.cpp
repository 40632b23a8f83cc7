#include "containers/zq_tree.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

// A cleared node with a name, counting its destruction.
class Node : public CZqTree {
public:
    explicit Node(std::string n, std::vector<std::string>* destroyed = nullptr)
        : name(std::move(n)), destroyed_(destroyed) {
        ClearData();
    }
    ~Node() override {
        if (destroyed_) {
            destroyed_->push_back(name);
        }
    }
    using CZqTree::ClearData;
    std::string name;

private:
    std::vector<std::string>* destroyed_;
};

std::string Name(CZqTree* node) {
    return node ? static_cast<Node*>(node)->name : "-";
}

// Visitor recording names; returns the node's user type as its result.
DWORD WINAPI Record(CZqTree* node, LPVOID value) {
    static_cast<std::vector<std::string>*>(value)->push_back(Name(node));
    return node->GetUserType();
}

// Links nodes as siblings in the given order under `parent` (may be null).
void Chain(CZqTree* parent, const std::vector<CZqTree*>& nodes) {
    for (size_t i = 0; i < nodes.size(); ++i) {
        nodes[i]->SetParent(parent);
        nodes[i]->SetPrev(i > 0 ? nodes[i - 1] : nullptr);
        nodes[i]->SetNext(i + 1 < nodes.size() ? nodes[i + 1] : nullptr);
    }
    if (parent && !nodes.empty()) {
        parent->SetChild(nodes[0]);
    }
}

// Names of the sibling list from `head` on, checking back links on the way.
std::string List(CZqTree* head) {
    std::string out;
    CZqTree* prev = head ? head->GetPrev() : nullptr;
    for (CZqTree* n = head; n; n = n->GetNext()) {
        if (n->GetPrev() != prev) {
            out += "!";
        }
        out += Name(n);
        prev = n;
    }
    return out;
}

TEST(ZqTree, ClearDataZeroesEveryField) {
    Node n("a");
    n.SetLevel(3);
    n.SetUserType(4);
    n.SetUserFlag(5);
    n.SetUserData(&n);
    n.SetParent(&n);
    EXPECT_EQ(n.ClearData(), 1u);
    EXPECT_EQ(n.GetParent(), nullptr);
    EXPECT_EQ(n.GetNext(), nullptr);
    EXPECT_EQ(n.GetPrev(), nullptr);
    EXPECT_EQ(n.GetChild(), nullptr);
    EXPECT_EQ(n.GetLevel(), 0u);
    EXPECT_EQ(n.GetUserType(), 0u);
    EXPECT_EQ(n.GetUserFlag(), 0u);
    EXPECT_EQ(n.GetUserData(), nullptr);
}

TEST(ZqTree, SettersReturnPreviousLinkAndUserSettersZero) {
    Node a("a"), b("b");
    EXPECT_EQ(a.SetNext(&b), nullptr);
    EXPECT_EQ(a.SetNext(nullptr), &b);
    EXPECT_EQ(a.SetLevel(7), 0u);
    EXPECT_EQ(a.SetLevel(1), 7u);
    EXPECT_EQ(a.SetUserType(9), 0u);
    EXPECT_EQ(a.SetUserType(8), 0u);
    EXPECT_EQ(a.GetUserType(), 8u);
}

TEST(ZqTree, CopyTakesAllFieldsIncludingLinks) {
    Node a("a"), b("b"), c("c");
    a.SetNext(&b);
    a.SetChild(&c);
    a.SetUserFlag(3);
    Node copy("copy");
    static_cast<CZqTree&>(copy) = a;
    EXPECT_EQ(copy.GetNext(), &b);
    EXPECT_EQ(copy.GetChild(), &c);
    EXPECT_EQ(copy.GetUserFlag(), 3u);
    copy.ClearData();  // it must not free a's child
    a.ClearData();
}

TEST(ZqTree, FindEndsVisitOnceAndStopOnCircles) {
    Node a("a");
    std::vector<std::string> seen;
    EXPECT_EQ(a.FindHead(Record, &seen), &a);
    EXPECT_EQ(seen, std::vector<std::string>{"a"});

    Node r("r"), p("p"), c("c"), d("d");
    c.SetParent(&p);
    p.SetParent(&r);
    seen.clear();
    EXPECT_EQ(c.FindRoot(Record, &seen), &r);
    EXPECT_EQ(seen, std::vector<std::string>{"r"});
    Chain(nullptr, {&p, &c, &d});
    EXPECT_EQ(c.FindHead(nullptr, nullptr), &p);
    EXPECT_EQ(c.FindTail(nullptr, nullptr), &d);

    // A circle back to the start: the last node before it, no visit.
    Node x("x"), y("y"), z("z");
    x.SetParent(&y);
    y.SetParent(&z);
    z.SetParent(&x);
    seen.clear();
    EXPECT_EQ(x.FindRoot(Record, &seen), &z);
    EXPECT_TRUE(seen.empty());
    // A circle further up ends too.
    Node s("s");
    s.SetParent(&x);
    EXPECT_NE(s.FindRoot(Record, &seen), nullptr);
    EXPECT_TRUE(seen.empty());
}

TEST(ZqTree, SiblingAndChildQueries) {
    Node parent("P"), a("a"), b("b"), c("c"), other("o");
    Chain(&parent, {&a, &b, &c});
    EXPECT_FALSE(b.IsSibling(&a));  // the head itself is not counted
    EXPECT_TRUE(a.IsSibling(&c));
    EXPECT_TRUE(c.IsSibling(&b));
    EXPECT_FALSE(a.IsSibling(&other));
    EXPECT_FALSE(a.IsSibling(nullptr));
    EXPECT_TRUE(parent.IsChild(&a));
    EXPECT_TRUE(parent.IsChild(&c));
    EXPECT_FALSE(parent.IsChild(&other));
    EXPECT_FALSE(parent.IsChild(nullptr));
    parent.SetChild(nullptr);
}

TEST(ZqTree, EnumPathVisitsAncestorsFromRootDown) {
    Node r("r"), p("p"), c("c");
    c.SetParent(&p);
    p.SetParent(&r);
    std::vector<std::string> seen;
    EXPECT_EQ(c.EnumPath(Record, &seen), 0u);
    EXPECT_EQ(seen, (std::vector<std::string>{"r", "p"}));
    r.SetUserType(6);  // stops at the root
    seen.clear();
    EXPECT_EQ(c.EnumPath(Record, &seen), 6u);
    EXPECT_EQ(seen, std::vector<std::string>{"r"});
    EXPECT_EQ(c.EnumPath(nullptr, &seen), 0u);
    r.SetParent(&c);
    seen.clear();
    EXPECT_EQ(c.EnumPath(Record, &seen), ZQTREE_ERROR_CYCLE);
    EXPECT_TRUE(seen.empty());
}

TEST(ZqTree, EnumListStopsAtFirstNonZero) {
    Node a("a"), b("b"), c("c");
    Chain(nullptr, {&a, &b, &c});
    b.SetUserType(7);
    std::vector<std::string> seen;
    EXPECT_EQ(c.EnumList(Record, &seen), 7u);
    EXPECT_EQ(seen, (std::vector<std::string>{"a", "b"}));
    b.SetUserType(0);
    seen.clear();
    EXPECT_EQ(b.EnumList(Record, &seen), 0u);
    EXPECT_EQ(seen, (std::vector<std::string>{"a", "b", "c"}));
    int data_not_code = 0;
    auto not_code = reinterpret_cast<ZQTREEENUMPROC>(static_cast<void*>(&data_not_code));
    EXPECT_EQ(b.EnumList(not_code, &seen), 0u);  // counts as no visitor
}

struct InsertCase {
    DWORD mode;
    const char* expected;  // list from the head afterwards
    const char* first_child;
};

class ZqTreeInsert : public testing::TestWithParam<InsertCase> {};

TEST_P(ZqTreeInsert, LinksTheNewNodeAtItsPlace) {
    Node parent("P"), a("a"), b("b"), c("c"), n("n");
    Chain(&parent, {&a, &b, &c});
    EXPECT_EQ(parent.InsertItem(&n, &b, GetParam().mode), 0u);
    CZqTree* head = n.GetPrev() == nullptr ? &n : a.FindHead(nullptr, nullptr);
    EXPECT_EQ(List(head), GetParam().expected);
    EXPECT_EQ(Name(parent.GetChild()), GetParam().first_child);
    EXPECT_EQ(n.GetParent(), nullptr);  // left for the caller
    parent.SetChild(nullptr);
}

INSTANTIATE_TEST_SUITE_P(Modes, ZqTreeInsert,
                         testing::Values(InsertCase{ZQTREE_INSERT_FIRST, "nabc", "n"},
                                         InsertCase{ZQTREE_INSERT_LAST, "abcn", "a"},
                                         // The first child's link moves to n
                                         // although a still stands before it.
                                         InsertCase{ZQTREE_INSERT_BEFORE, "anbc", "n"},
                                         InsertCase{ZQTREE_INSERT_AFTER, "abnc", "a"}));

TEST(ZqTree, InsertBeforeFirstChildMakesNewNodeFirstChild) {
    Node parent("P"), a("a"), b("b"), n("n");
    Chain(&parent, {&a, &b});
    EXPECT_EQ(parent.InsertItem(&n, &a, ZQTREE_INSERT_BEFORE), 0u);
    EXPECT_EQ(parent.GetChild(), &n);
    EXPECT_EQ(List(&n), "nab");
    parent.SetChild(nullptr);
}

TEST(ZqTree, InsertRefusesBadArgumentsAndChangesNothing) {
    Node a("a"), b("b"), n("n");
    Chain(nullptr, {&a, &b});
    for (DWORD mode : {0u, 1u, 6u, 100u}) {
        EXPECT_EQ(a.InsertItem(&n, &b, mode), ZQTREE_ERROR_INVALID_ARGUMENT);
    }
    EXPECT_EQ(a.InsertItem(&b, &b, ZQTREE_INSERT_AFTER), ZQTREE_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(a.InsertItem(nullptr, &b, ZQTREE_INSERT_AFTER), ZQTREE_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(a.InsertItem(&n, nullptr, ZQTREE_INSERT_AFTER), ZQTREE_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(List(&a), "ab");
    EXPECT_EQ(n.GetNext(), nullptr);
    EXPECT_EQ(n.GetPrev(), nullptr);
}

TEST(ZqTree, InsertAtAnEndOwnedByThisClearsTheNewNode) {
    Node a("a"), b("b"), n("n");
    Chain(nullptr, {&a, &b});
    n.SetNext(&a);
    EXPECT_EQ(a.InsertItem(&n, &b, ZQTREE_INSERT_FIRST), 0u);  // a is the head
    EXPECT_EQ(n.GetNext(), nullptr);
    EXPECT_EQ(n.GetPrev(), nullptr);
    EXPECT_EQ(List(&a), "ab");
    EXPECT_EQ(b.InsertItem(&n, &a, ZQTREE_INSERT_LAST), 0u);  // b is the tail
    EXPECT_EQ(List(&a), "ab");
}

TEST(ZqTree, RemoveItemChangesNothing) {
    Node parent("P"), a("a"), b("b");
    Chain(&parent, {&a, &b});
    EXPECT_EQ(parent.RemoveItem(&a), 0u);
    EXPECT_EQ(List(&a), "ab");
    EXPECT_EQ(parent.GetChild(), &a);
    parent.SetChild(nullptr);
}

TEST(ZqTree, AddOneChildPutsNodeFirstAndVisitsIt) {
    std::vector<std::string> destroyed;
    auto* parent = new Node("P", &destroyed);
    auto* a = new Node("a", &destroyed);
    auto* b = new Node("b", &destroyed);
    std::vector<std::string> seen;
    EXPECT_EQ(parent->AddOneChild(Record, &seen, a), 0u);
    b->SetNext(a);  // stale links are cleared
    b->SetUserType(5);
    EXPECT_EQ(parent->AddOneChild(Record, &seen, b), 5u);
    EXPECT_EQ(seen, (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(List(parent->GetChild()), "ba");
    EXPECT_EQ(a->GetParent(), nullptr);
    seen.clear();
    EXPECT_EQ(parent->AddOneChild(Record, &seen, nullptr), 0u);
    EXPECT_EQ(parent->AddAllChilren(Record, &seen), 0u);
    EXPECT_EQ(seen, (std::vector<std::string>{"P", "P"}));
    EXPECT_EQ(parent->AddAllChilren(nullptr, &seen), 0u);
    delete parent;
    EXPECT_EQ(destroyed, (std::vector<std::string>{"P", "b", "a"}));
}

TEST(ZqTree, FreeChildUnlinksAndDestroys) {
    std::vector<std::string> destroyed;
    Node parent("P", &destroyed);
    auto* a = new Node("a", &destroyed);
    auto* b = new Node("b", &destroyed);
    auto* c = new Node("c", &destroyed);
    auto* d = new Node("d", &destroyed);
    Chain(&parent, {a, b, c, d});
    b->SetParent(nullptr);
    EXPECT_EQ(parent.FreeChild(a), 0u);
    EXPECT_EQ(parent.GetChild(), b);
    EXPECT_EQ(b->GetPrev(), nullptr);
    EXPECT_EQ(b->GetParent(), &parent);
    EXPECT_EQ(parent.FreeChild(c), 0u);
    EXPECT_EQ(List(b), "bd");
    EXPECT_EQ(parent.FreeChild(nullptr), 0u);
    EXPECT_EQ(parent.FreeChild(&parent), 0u);
    EXPECT_EQ(destroyed, (std::vector<std::string>{"a", "c"}));
    // A node that is not a child is destroyed all the same.
    auto* stranger = new Node("s", &destroyed);
    EXPECT_EQ(parent.FreeChild(stranger), 0u);
    EXPECT_EQ(destroyed.back(), "s");
    EXPECT_EQ(List(b), "bd");
}

TEST(ZqTree, FreeChildrenDestroysFirstToLastDepthFirst) {
    std::vector<std::string> destroyed;
    Node root("R", &destroyed);
    auto* a = new Node("a", &destroyed);
    auto* b = new Node("b", &destroyed);
    auto* a1 = new Node("a1", &destroyed);
    Chain(&root, {a, b});
    Chain(a, {a1});
    root.FreeChildren();
    EXPECT_EQ(destroyed, (std::vector<std::string>{"a", "a1", "b"}));
    EXPECT_EQ(root.GetChild(), nullptr);
    EXPECT_EQ(root.EnumChildren(Record, &destroyed), 0u);
}

// Sort callback for names: swaps an out-of-order pair and reports 2 (pass
// changed, step past b), else 4. Counts calls through the caller value.
INT WINAPI SortByName(CZqTree* a, CZqTree* b, LPVOID value) {
    ++*static_cast<int*>(value);
    if (Name(a) <= Name(b)) {
        return 4;
    }
    CZqTree* before = a->GetPrev();
    CZqTree* after = b->GetNext();
    CZqTree* parent = a->GetParent();
    b->SetPrev(before);
    b->SetNext(a);
    a->SetPrev(b);
    a->SetNext(after);
    if (before) {
        before->SetNext(b);
    } else if (parent) {
        parent->SetChild(b);
    }
    if (after) {
        after->SetPrev(a);
    }
    return 2;
}

TEST(ZqTree, SortListFollowsTheWalkRules) {
    Node parent("P"), d("d"), b("b"), c("c"), a("a"), z("z"), y("y");
    Chain(&parent, {&d, &b, &c, &a});
    Chain(&b, {&z, &y});
    int calls = 0;
    // Pass 1: (d,b) swapped, 2 steps past b to (d,c): swapped, then (d,a):
    // swapped: "bcad". Pass 2: (b,c) 4, (a,d) 4: unchanged, so it ends.
    EXPECT_EQ(parent.SortChildren(SortByName, &calls, FALSE), 4u);
    EXPECT_EQ(calls, 5);
    EXPECT_EQ(List(parent.GetChild()), "bcad");
    EXPECT_EQ(List(b.GetChild()), "zy");  // not recursive
    // Recursive: the list is left as it is, then b's children are sorted and
    // their last code, being non-zero, ends the walk.
    EXPECT_EQ(parent.SortChildren(SortByName, &calls, TRUE), 4u);
    EXPECT_EQ(List(parent.GetChild()), "bcad");
    EXPECT_EQ(List(b.GetChild()), "yz");
    EXPECT_EQ(parent.SortChildren(SortByName, &calls, TRUE), 4u);
    parent.SetChild(nullptr);
    b.SetChild(nullptr);
}

INT WINAPI ReturnValueCode(CZqTree*, CZqTree*, LPVOID value) {
    auto* codes = static_cast<std::vector<INT>*>(value);
    INT code = codes->front();
    if (codes->size() > 1) {
        codes->erase(codes->begin());
    }
    return code;
}

TEST(ZqTree, SortCodesSteerTheWalk) {
    Node a("a"), b("b"), c("c");
    Chain(nullptr, {&a, &b, &c});
    std::vector<INT> codes{1};
    EXPECT_EQ(a.SortList(ReturnValueCode, &codes, FALSE), 0u);  // stops at once
    codes = {13};
    EXPECT_EQ(a.SortList(ReturnValueCode, &codes, FALSE), 13u);
    codes = {-2};
    EXPECT_EQ(a.SortList(ReturnValueCode, &codes, FALSE), static_cast<DWORD>(-2));
    // 0 repeats the pair; 7 steps past b (a,b then nothing left).
    codes = {0, 0, 7};
    EXPECT_EQ(a.SortList(ReturnValueCode, &codes, FALSE), 7u);
    // 5 marks the pass and steps one node: (a,b), (b,c) then 7 ends the pass,
    // then the next pass (a,b) with 20 stops everything.
    codes = {5, 7, 20};
    EXPECT_EQ(a.SortList(ReturnValueCode, &codes, FALSE), 20u);
    EXPECT_EQ(a.SortList(nullptr, &codes, FALSE), 0u);
    Node alone("x");
    EXPECT_EQ(alone.SortList(ReturnValueCode, &codes, FALSE), 0u);  // no pair
}

TEST(ZqTree, DestructorFreesChildren) {
    std::vector<std::string> destroyed;
    {
        Node root("R", &destroyed);
        auto* a = new Node("a", &destroyed);
        root.AddOneChild(nullptr, nullptr, a);
    }
    EXPECT_EQ(destroyed, (std::vector<std::string>{"R", "a"}));
}

}  // namespace
