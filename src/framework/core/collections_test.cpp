#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "framework/core/arrays.h"
#include "framework/core/lists.h"
#include "framework/core/maps.h"

namespace {

std::vector<std::string> Items(const CStringArray& a) {
    std::vector<std::string> out;
    for (int i = 0; i < a.GetSize(); ++i) {
        out.emplace_back(static_cast<LPCTSTR>(a[i]));
    }
    return out;
}

using Strings = std::vector<std::string>;

TEST(CArrayTest, SetSizeGrowsAndShrinks) {
    CWordArray a;
    EXPECT_EQ(a.GetUpperBound(), -1);
    EXPECT_EQ(a.GetData(), nullptr);
    a.SetSize(3, 16);
    ASSERT_EQ(a.GetSize(), 3);
    EXPECT_EQ(a[0], 0);
    EXPECT_EQ(a[2], 0);
    a[1] = 7;
    a.SetSize(5);
    EXPECT_EQ(a.GetAt(1), 7);
    EXPECT_EQ(a.GetAt(4), 0);
    a.SetSize(1);
    EXPECT_EQ(a.GetSize(), 1);
    a.SetSize(-4);
    EXPECT_EQ(a.GetSize(), 0);
    EXPECT_TRUE(a.IsEmpty());
}

TEST(CArrayTest, OutOfRangeReadsAndWritesAreHarmless) {
    CStringArray a;
    a.Add("x");
    EXPECT_TRUE(a.GetAt(1).IsEmpty());
    EXPECT_TRUE(a.GetAt(-1).IsEmpty());
    a.SetAt(5, "y");
    a.SetAt(-1, "y");
    EXPECT_EQ(Items(a), Strings{"x"});
    const CStringArray& ca = a;
    EXPECT_TRUE(ca[3].IsEmpty());
    CPtrArray p;
    EXPECT_EQ(p.GetAt(0), nullptr);
}

TEST(CArrayTest, InsertAtInsideAndPastTheEnd) {
    CStringArray a;
    a.Add("a");
    a.Add("d");
    a.InsertAt(1, "b");
    a.InsertAt(2, "c", 1);
    EXPECT_EQ(Items(a), (Strings{"a", "b", "c", "d"}));
    a.InsertAt(0, "z", 2);
    EXPECT_EQ(Items(a), (Strings{"z", "z", "a", "b", "c", "d"}));
    a.InsertAt(8, "end", 2);  // grows with empty strings in the gap
    EXPECT_EQ(Items(a), (Strings{"z", "z", "a", "b", "c", "d", "", "", "end", "end"}));
    a.InsertAt(-1, "bad");
    a.InsertAt(0, "bad", 0);
    EXPECT_EQ(a.GetSize(), 10);
    a.InsertAt(0, a[2]);  // an element of the array itself
    EXPECT_EQ(a[0], "a");
}

TEST(CArrayTest, InsertArrayIncludingItself) {
    CUIntArray a, b;
    a.Add(1);
    a.Add(4);
    b.Add(2);
    b.Add(3);
    a.InsertAt(1, &b);
    ASSERT_EQ(a.GetSize(), 4);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(a[i], static_cast<UINT>(i + 1));
    }
    a.InsertAt(2, &a);
    ASSERT_EQ(a.GetSize(), 8);
    const UINT expected[] = {1, 2, 1, 2, 3, 4, 3, 4};
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(a[i], expected[i]);
    }
    a.InsertAt(0, nullptr);
    EXPECT_EQ(a.GetSize(), 8);
}

TEST(CArrayTest, RemoveAtClampsToTheArray) {
    CDWordArray a;
    for (DWORD i = 0; i < 6; ++i) {
        a.Add(i);
    }
    a.RemoveAt(1, 2);
    ASSERT_EQ(a.GetSize(), 4);
    EXPECT_EQ(a[1], 3u);
    a.RemoveAt(2, 100);
    ASSERT_EQ(a.GetSize(), 2);
    a.RemoveAt(2);
    a.RemoveAt(-1);
    a.RemoveAt(0, 0);
    ASSERT_EQ(a.GetSize(), 2);
    a.RemoveAt(0);
    EXPECT_EQ(a[0], 3u);
    a.RemoveAll();
    EXPECT_EQ(a.GetSize(), 0);
}

TEST(CArrayTest, AddAppendCopySetAtGrow) {
    CStringArray a, b;
    EXPECT_EQ(a.Add("one"), 0);
    EXPECT_EQ(a.Add(CString("two")), 1);
    EXPECT_EQ(a.Add(a[0]), 2);  // self-reference survives reallocation
    EXPECT_EQ(Items(a), (Strings{"one", "two", "one"}));
    b.Add("b");
    EXPECT_EQ(b.Append(a), 1);
    EXPECT_EQ(b.Append(b), 4);
    EXPECT_EQ(b.GetSize(), 8);
    b.Copy(a);
    EXPECT_EQ(Items(b), Items(a));
    b.Copy(b);
    EXPECT_EQ(Items(b), Items(a));
    b.SetAtGrow(5, "five");
    EXPECT_EQ(Items(b), (Strings{"one", "two", "one", "", "", "five"}));
    b.SetAtGrow(9, b[0]);
    EXPECT_EQ(b[9], "one");
    b.SetAtGrow(-1, "x");
    EXPECT_EQ(b.GetSize(), 10);
    b.ElementAt(1) = "TWO";
    EXPECT_EQ(b.GetData()[1], "TWO");
}

TEST(CArrayTest, NamedArraysKnowTheirClass) {
    CStringArray s;
    CObArray o;
    CByteArray b;
    EXPECT_TRUE(s.IsKindOf(RUNTIME_CLASS(CStringArray)));
    EXPECT_FALSE(s.IsKindOf(RUNTIME_CLASS(CObArray)));
    EXPECT_TRUE(o.IsKindOf(RUNTIME_CLASS(CObject)));
    EXPECT_STREQ(b.GetRuntimeClass()->m_lpszClassName, "CByteArray");
}

class CItem : public CObject {
public:
    explicit CItem(int n) : m_n(n) {}
    int m_n;
};

TEST(CTypedPtrArrayTest, TypedAccessOverTheBase) {
    CTypedPtrArray<CObArray, CItem*> a;
    CItem one(1), two(2), three(3);
    a.Add(&one);
    a.Add(&three);
    a.InsertAt(1, &two);
    ASSERT_EQ(a.GetSize(), 3);
    EXPECT_EQ(a.GetAt(1)->m_n, 2);
    EXPECT_EQ(a[2]->m_n, 3);
    a[0] = &three;
    EXPECT_EQ(a.ElementAt(0)->m_n, 3);
    CObArray& base = a;
    EXPECT_EQ(base.GetAt(1), &two);
    CTypedPtrArray<CPtrArray, int*> p;
    int x = 5;
    p.SetAtGrow(2, &x);
    EXPECT_EQ(p.GetAt(0), nullptr);
    EXPECT_EQ(*p[2], 5);
}

std::vector<std::string> Items(const CStringList& list) {
    std::vector<std::string> out;
    for (POSITION pos = list.GetHeadPosition(); pos != nullptr;) {
        out.emplace_back(static_cast<LPCTSTR>(list.GetNext(pos)));
    }
    return out;
}

TEST(CListTest, AddInsertRemoveKeepsOrder) {
    CStringList list;
    EXPECT_EQ(list.GetHeadPosition(), nullptr);
    POSITION b = list.AddTail("b");
    list.AddHead("a");
    POSITION d = list.AddTail("d");
    list.InsertBefore(d, "c");
    list.InsertAfter(d, "e");
    list.InsertBefore(nullptr, "0");
    list.InsertAfter(nullptr, "f");
    EXPECT_EQ(Items(list), (Strings{"0", "a", "b", "c", "d", "e", "f"}));
    EXPECT_EQ(list.GetCount(), 7);
    list.RemoveAt(b);
    EXPECT_EQ(list.RemoveHead(), "0");
    EXPECT_EQ(list.RemoveTail(), "f");
    EXPECT_EQ(Items(list), (Strings{"a", "c", "d", "e"}));
    EXPECT_EQ(list.GetAt(d), "d");  // positions survive other removals
    list.SetAt(d, "D");
    EXPECT_EQ(list.GetHead(), "a");
    EXPECT_EQ(list.GetTail(), "e");

    std::vector<std::string> backwards;
    for (POSITION pos = list.GetTailPosition(); pos != nullptr;) {
        backwards.emplace_back(static_cast<LPCTSTR>(list.GetPrev(pos)));
    }
    EXPECT_EQ(backwards, (Strings{"e", "D", "c", "a"}));
    list.RemoveAll();
    EXPECT_TRUE(list.IsEmpty());
    EXPECT_EQ(list.GetTailPosition(), nullptr);
}

TEST(CListTest, RemovingTheOnlyElementEmptiesTheList) {
    CPtrList list;
    int x = 0;
    POSITION pos = list.AddHead(&x);
    list.RemoveAt(pos);
    EXPECT_TRUE(list.IsEmpty());
    EXPECT_EQ(list.GetHeadPosition(), nullptr);
    list.AddTail(&x);
    EXPECT_EQ(list.GetHead(), &x);
}

TEST(CListTest, FindAndFindIndex) {
    CStringList list;
    for (const char* s : {"x", "y", "x", "z"}) {
        list.AddTail(s);
    }
    POSITION first = list.Find("x");
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first, list.FindIndex(0));
    POSITION second = list.Find("x", first);
    EXPECT_EQ(second, list.FindIndex(2));
    EXPECT_EQ(list.Find("x", second), nullptr);
    EXPECT_EQ(list.Find("X"), nullptr);  // case-sensitive
    EXPECT_EQ(list.FindIndex(4), nullptr);
    EXPECT_EQ(list.FindIndex(-1), nullptr);
    EXPECT_EQ(list.GetAt(list.FindIndex(3)), "z");

    CObList objects;
    CItem a(1), b(1);
    objects.AddTail(&a);
    EXPECT_EQ(objects.Find(&b), nullptr);  // pointers, not contents
    EXPECT_NE(objects.Find(&a), nullptr);
}

TEST(CListTest, AddListsIncludingItself) {
    CStringList list, other;
    list.AddTail("b");
    other.AddTail("x");
    other.AddTail("y");
    list.AddHead(&other);
    list.AddTail(&other);
    EXPECT_EQ(Items(list), (Strings{"x", "y", "b", "x", "y"}));
    CStringList self;
    self.AddTail("1");
    self.AddTail("2");
    self.AddTail(&self);
    self.AddHead(&self);
    EXPECT_EQ(Items(self), (Strings{"1", "2", "1", "2", "1", "2", "1", "2"}));
}

TEST(CMapTest, StringMapIsExactAndCaseSensitive) {
    CMapStringToString map;
    CString value("untouched");
    EXPECT_FALSE(map.Lookup("key", value));
    EXPECT_EQ(value, "untouched");
    map.SetAt("key", "v1");
    map.SetAt("Key", "v2");
    map["KEY"] = "v3";
    EXPECT_EQ(map.GetCount(), 3);
    ASSERT_TRUE(map.Lookup("key", value));
    EXPECT_EQ(value, "v1");
    ASSERT_TRUE(map.Lookup("Key", value));
    EXPECT_EQ(value, "v2");
    EXPECT_FALSE(map.Lookup("key ", value));
    map.SetAt("key", "v4");  // replaces
    EXPECT_EQ(map.GetCount(), 3);
    EXPECT_EQ(map["key"], "v4");
    EXPECT_TRUE(map.RemoveKey("Key"));
    EXPECT_FALSE(map.RemoveKey("Key"));
    EXPECT_EQ(map.GetCount(), 2);
    map.SetAt("", "empty key");
    ASSERT_TRUE(map.Lookup("", value));
    EXPECT_EQ(value, "empty key");
    map.RemoveAll();
    EXPECT_TRUE(map.IsEmpty());
    EXPECT_EQ(map.GetStartPosition(), nullptr);
    EXPECT_FALSE(map.RemoveKey("key"));
}

TEST(CMapTest, SetAtWithItsOwnValue) {
    CMapStringToString map;
    map.SetAt("a", "alpha");
    map.SetAt("b", map["a"]);
    EXPECT_EQ(map["b"], "alpha");
}

// Iteration covers every key exactly once, whatever the table size, also
// after removals and across the automatic growth of the table.
class CMapIterationTest : public testing::TestWithParam<UINT> {};

TEST_P(CMapIterationTest, EveryKeyOnce) {
    CMapStringToPtr map;
    map.InitHashTable(GetParam());
    std::set<std::string> expected;
    for (int i = 0; i < 500; ++i) {
        CString key;
        key.Format("k%d", i);
        map.SetAt(key, reinterpret_cast<void*>(static_cast<INT_PTR>(i)));
        expected.insert(static_cast<LPCTSTR>(key));
    }
    for (int i = 0; i < 500; i += 3) {
        CString key;
        key.Format("k%d", i);
        ASSERT_TRUE(map.RemoveKey(key));
        expected.erase(static_cast<LPCTSTR>(key));
    }
    ASSERT_EQ(map.GetCount(), static_cast<int>(expected.size()));
    std::multiset<std::string> seen;
    POSITION pos = map.GetStartPosition();
    while (pos != nullptr) {
        CString key;
        void* value = nullptr;
        map.GetNextAssoc(pos, key, value);
        seen.insert(static_cast<LPCTSTR>(key));
        CString expectedKey;
        expectedKey.Format("k%d", static_cast<int>(reinterpret_cast<INT_PTR>(value)));
        EXPECT_EQ(key, expectedKey);  // the value stored with this key
    }
    EXPECT_EQ(std::set<std::string>(seen.begin(), seen.end()), expected);
    EXPECT_EQ(seen.size(), expected.size());
}

INSTANTIATE_TEST_SUITE_P(TableSizes, CMapIterationTest, testing::Values(1u, 7u, 17u, 1000u));

TEST(CMapTest, RemovingTheCurrentEntryDuringIteration) {
    CMapWordToPtr map;
    for (WORD i = 0; i < 100; ++i) {
        map[i] = nullptr;
    }
    int visited = 0;
    POSITION pos = map.GetStartPosition();
    while (pos != nullptr) {
        WORD key = 0;
        void* value = nullptr;
        map.GetNextAssoc(pos, key, value);
        EXPECT_TRUE(map.RemoveKey(key));
        ++visited;
    }
    EXPECT_EQ(visited, 100);
    EXPECT_TRUE(map.IsEmpty());
}

TEST(CMapTest, InitHashTableRedistributesEntries) {
    CMapPtrToPtr map;
    int cells[50];
    for (int& c : cells) {
        map[&c] = &c;
    }
    map.InitHashTable(3);
    EXPECT_EQ(map.GetHashTableSize(), 3u);
    for (int& c : cells) {
        void* value = nullptr;
        ASSERT_TRUE(map.Lookup(&c, value));
        EXPECT_EQ(value, &c);
    }
    map.InitHashTable(0);
    EXPECT_EQ(map.GetHashTableSize(), 1u);
    EXPECT_EQ(map.GetCount(), 50);
}

TEST(CMapTest, GenericMapWithIntegerKeysAndStringValues) {
    CMap<UINT, UINT, CString, const CString&> map;
    map.SetAt(49, CString("Germany"));
    map.SetAt(1, CString("United States"));
    CString name;
    ASSERT_TRUE(map.Lookup(49, name));
    EXPECT_EQ(name, "Germany");
    EXPECT_FALSE(map.Lookup(44, name));
    std::map<UINT, std::string> all;
    POSITION pos = map.GetStartPosition();
    while (pos) {
        UINT key = 0;
        CString value;
        map.GetNextAssoc(pos, key, value);
        all[key] = static_cast<LPCTSTR>(value);
    }
    EXPECT_EQ(all, (std::map<UINT, std::string>{{1, "United States"}, {49, "Germany"}}));
    POSITION end = nullptr;
    UINT key = 7;
    map.GetNextAssoc(end, key, name);  // a NULL position writes nothing
    EXPECT_EQ(key, 7u);
}

TEST(CMapTest, ObjectMapDoesNotOwnItsValues) {
    auto item = std::make_unique<CItem>(9);
    {
        CMapStringToOb map(10);
        map.SetAt("nine", item.get());
        CObject* found = nullptr;
        ASSERT_TRUE(map.Lookup("nine", found));
        EXPECT_EQ(found, item.get());
        EXPECT_TRUE(map.IsKindOf(RUNTIME_CLASS(CMapStringToOb)));
    }
    EXPECT_EQ(item->m_n, 9);  // still alive after the map is gone
}

}  // namespace
