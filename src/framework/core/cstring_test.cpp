#include "framework/core/cstring.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <tuple>

namespace {

std::string Str(const CString& s) {
    return std::string(static_cast<LPCTSTR>(s), static_cast<size_t>(s.GetLength()));
}

TEST(CStringTest, ConstructionKeepsLengthAndEmbeddedNuls) {
    EXPECT_EQ(Str(CString()), "");
    EXPECT_EQ(Str(CString(static_cast<LPCSTR>(nullptr))), "");
    EXPECT_EQ(Str(CString('x', 3)), "xxx");
    EXPECT_TRUE(CString('x', 0).IsEmpty());
    EXPECT_TRUE(CString('x', -5).IsEmpty());
    EXPECT_TRUE(CString("abc", -1).IsEmpty());
    CString withNul("a\0b", 3);
    EXPECT_EQ(withNul.GetLength(), 3);
    EXPECT_STREQ(static_cast<LPCTSTR>(withNul), "a");
    CString copy(withNul);
    EXPECT_EQ(Str(copy), std::string("a\0b", 3));
    EXPECT_TRUE(copy == withNul);
    EXPECT_FALSE(withNul == "a");  // the NUL and 'b' take part
    EXPECT_EQ(withNul.Find('b'), 2);
}

TEST(CStringTest, EmptyStringConvertsToValidCString) {
    CString s;
    ASSERT_NE(static_cast<LPCTSTR>(s), nullptr);
    EXPECT_STREQ(static_cast<LPCTSTR>(s), "");
    s = "abc";
    s.Empty();
    EXPECT_STREQ(static_cast<LPCTSTR>(s), "");
    EXPECT_EQ(s.GetLength(), 0);
}

TEST(CStringTest, AccessOutOfRangeIsHarmless) {
    CString s("abc");
    EXPECT_EQ(s.GetAt(0), 'a');
    EXPECT_EQ(s[2], 'c');
    EXPECT_EQ(s.GetAt(3), '\0');
    EXPECT_EQ(s.GetAt(-1), '\0');
    s.SetAt(1, 'X');
    s.SetAt(3, 'Y');
    s.SetAt(-1, 'Y');
    EXPECT_EQ(Str(s), "aXc");
}

TEST(CStringTest, ConcatenationAndSelfAppend) {
    CString s("ab");
    s += s;
    EXPECT_EQ(Str(s), "abab");
    s += static_cast<LPCTSTR>(s) + 1;  // a pointer into our own buffer
    EXPECT_EQ(Str(s), "ababbab");
    s += 'z';
    s += static_cast<LPCTSTR>(nullptr);
    EXPECT_EQ(Str(s), "ababbabz");
    EXPECT_EQ(Str(CString("x") + "y" + 'z' + CString("w")), "xyzw");
    EXPECT_EQ(Str('q' + CString("r")), "qr");
    EXPECT_EQ(Str("p" + CString("q")), "pq");
    s = static_cast<LPCTSTR>(s) + 4;  // assign a tail of ourselves
    EXPECT_EQ(Str(s), "babz");
}

TEST(CStringTest, ManyAppendsStayCorrect) {
    CString s;
    std::string expected;
    for (int i = 0; i < 5000; ++i) {
        char c = static_cast<char>('a' + i % 26);
        s += c;
        expected += c;
    }
    EXPECT_EQ(Str(s), expected);
}

TEST(CStringTest, ComparisonsAreByUnsignedBytes) {
    CString a("abc");
    EXPECT_EQ(a.Compare("abc"), 0);
    EXPECT_LT(a.Compare("abd"), 0);
    EXPECT_GT(a.Compare("ab"), 0);
    EXPECT_GT(a.Compare(nullptr), 0);
    EXPECT_LT(CString("z").Compare("\xE4"), 0);  // 0xE4 sorts after 'z'
    EXPECT_TRUE(a < CString("abd"));
    EXPECT_TRUE(a <= "abc");
    EXPECT_TRUE("abd" > a);
    EXPECT_TRUE(a >= "ab");
    EXPECT_TRUE(a != "ABC");
    EXPECT_TRUE("abc" == a);
    EXPECT_EQ(a.CompareNoCase("ABC"), 0);
    EXPECT_LT(a.CompareNoCase("ABD"), 0);
    EXPECT_EQ(CString("\xC4pfel").CompareNoCase("\xE4PFEL"), 0);  // Äpfel / äPFEL
    EXPECT_EQ(a.Collate("abc"), 0);
    EXPECT_EQ(a.CollateNoCase("AbC"), 0);
}

struct MidCase {
    int first;
    int count;
    const char* expected;
};

class CStringMidTest : public testing::TestWithParam<MidCase> {};

TEST_P(CStringMidTest, ClampsToTheString) {
    const MidCase& c = GetParam();
    EXPECT_EQ(Str(CString("hello").Mid(c.first, c.count)), c.expected);
}

INSTANTIATE_TEST_SUITE_P(Ranges, CStringMidTest,
                         testing::Values(MidCase{0, 5, "hello"}, MidCase{1, 3, "ell"},
                                         MidCase{3, 10, "lo"}, MidCase{5, 1, ""}, MidCase{9, 1, ""},
                                         MidCase{-2, 2, "he"}, MidCase{2, -1, ""},
                                         MidCase{0, 0, ""}, MidCase{1, 0x7FFFFFFF, "ello"}));

TEST(CStringTest, LeftRightMidOneArgument) {
    CString s("hello");
    EXPECT_EQ(Str(s.Left(2)), "he");
    EXPECT_EQ(Str(s.Left(99)), "hello");
    EXPECT_EQ(Str(s.Left(-1)), "");
    EXPECT_EQ(Str(s.Right(3)), "llo");
    EXPECT_EQ(Str(s.Right(99)), "hello");
    EXPECT_EQ(Str(s.Right(-3)), "");
    EXPECT_EQ(Str(s.Mid(2)), "llo");
    EXPECT_EQ(Str(s.Mid(7)), "");
}

TEST(CStringTest, Spans) {
    CString s("123abc456");
    EXPECT_EQ(Str(s.SpanIncluding("0123456789")), "123");
    EXPECT_EQ(Str(s.SpanIncluding("xyz")), "");
    EXPECT_EQ(Str(s.SpanIncluding("0123456789abc")), "123abc456");
    EXPECT_EQ(Str(s.SpanExcluding("cb")), "123a");
    EXPECT_EQ(Str(s.SpanExcluding("xyz")), "123abc456");
    EXPECT_EQ(Str(s.SpanExcluding("")), "123abc456");
}

TEST(CStringTest, FindFamily) {
    CString s("abcabc");
    EXPECT_EQ(s.Find('b'), 1);
    EXPECT_EQ(s.Find('b', 2), 4);
    EXPECT_EQ(s.Find('b', 5), -1);
    EXPECT_EQ(s.Find('b', 6), -1);
    EXPECT_EQ(s.Find('b', 100), -1);
    EXPECT_EQ(s.Find('b', -1), -1);
    EXPECT_EQ(s.Find('z'), -1);
    EXPECT_EQ(s.Find("ca"), 2);
    EXPECT_EQ(s.Find("bc", 2), 4);
    EXPECT_EQ(s.Find("bc", 5), -1);
    EXPECT_EQ(s.Find("", 6), 6);
    EXPECT_EQ(s.Find("", 7), -1);
    EXPECT_EQ(s.Find("abcabcx"), -1);
    EXPECT_EQ(s.Find(static_cast<LPCTSTR>(nullptr)), 0);
    EXPECT_EQ(s.ReverseFind('a'), 3);
    EXPECT_EQ(s.ReverseFind('z'), -1);
    EXPECT_EQ(CString().ReverseFind('a'), -1);
    EXPECT_EQ(s.FindOneOf("xc"), 2);
    EXPECT_EQ(s.FindOneOf("xyz"), -1);
    EXPECT_EQ(s.FindOneOf(""), -1);
}

TEST(CStringTest, CaseAndReverse) {
    CString s("Hello \xE4\xF6\xFC\xDF \xFF\x9A w\xF7rld");
    s.MakeUpper();
    EXPECT_EQ(Str(s), "HELLO \xC4\xD6\xDC\xDF \x9F\x8A W\xF7RLD");
    s.MakeLower();
    EXPECT_EQ(Str(s), "hello \xE4\xF6\xFC\xDF \xFF\x9A w\xF7rld");
    CString r("abc");
    r.MakeReverse();
    EXPECT_EQ(Str(r), "cba");
    CString e;
    e.MakeUpper();
    e.MakeReverse();
    EXPECT_TRUE(e.IsEmpty());
}

TEST(CStringTest, ReplaceRemoveInsertDelete) {
    CString s("a.b.c");
    EXPECT_EQ(s.Replace('.', '/'), 2);
    EXPECT_EQ(Str(s), "a/b/c");
    EXPECT_EQ(s.Replace("/", "::"), 2);
    EXPECT_EQ(Str(s), "a::b::c");
    EXPECT_EQ(s.Replace("::", ""), 2);
    EXPECT_EQ(Str(s), "abc");
    EXPECT_EQ(s.Replace("", "x"), 0);
    EXPECT_EQ(s.Replace("zz", "x"), 0);
    CString overlap("aaaa");
    EXPECT_EQ(overlap.Replace("aa", "a"), 2);
    EXPECT_EQ(Str(overlap), "aa");
    CString grow("xx");
    EXPECT_EQ(grow.Replace("x", "xx"), 2);  // no endless loop
    EXPECT_EQ(Str(grow), "xxxx");

    CString r("banana");
    EXPECT_EQ(r.Remove('a'), 3);
    EXPECT_EQ(Str(r), "bnn");
    EXPECT_EQ(r.Remove('z'), 0);

    CString i("ac");
    EXPECT_EQ(i.Insert(1, 'b'), 3);
    EXPECT_EQ(i.Insert(99, "de"), 5);
    EXPECT_EQ(i.Insert(-4, "_"), 6);
    EXPECT_EQ(Str(i), "_abcde");
    EXPECT_EQ(i.Insert(3, static_cast<LPCTSTR>(i)), 12);  // inserting ourselves
    EXPECT_EQ(Str(i), "_ab_abcdecde");

    CString d("abcdef");
    EXPECT_EQ(d.Delete(1, 2), 4);
    EXPECT_EQ(Str(d), "adef");
    EXPECT_EQ(d.Delete(3, 10), 3);
    EXPECT_EQ(d.Delete(10, 1), 3);
    EXPECT_EQ(d.Delete(-2, 1), 2);
    EXPECT_EQ(d.Delete(0, -1), 2);
    EXPECT_EQ(Str(d), "de");
}

TEST(CStringTest, TrimWhitespaceCharAndSet) {
    CString s(" \t\r\n hi there \v\f\n ");
    s.TrimRight();
    EXPECT_EQ(Str(s), " \t\r\n hi there");
    s.TrimLeft();
    EXPECT_EQ(Str(s), "hi there");

    CString c("xxaxx");
    c.TrimLeft('x');
    EXPECT_EQ(Str(c), "axx");
    c.TrimRight('x');
    EXPECT_EQ(Str(c), "a");

    CString set("-=+abc+=-");
    set.TrimLeft("=-");
    EXPECT_EQ(Str(set), "+abc+=-");
    set.TrimRight("-=+");
    EXPECT_EQ(Str(set), "+abc");

    CString all("    ");
    all.TrimRight();
    EXPECT_TRUE(all.IsEmpty());
    CString allLeft("xyxy");
    allLeft.TrimLeft("yx");
    EXPECT_TRUE(allLeft.IsEmpty());
    CString untouched("abc");
    untouched.TrimLeft("");
    untouched.TrimRight(static_cast<LPCTSTR>(nullptr));
    EXPECT_EQ(Str(untouched), "abc");
}

TEST(CStringTest, FormatLikeTheCRuntime) {
    CString s;
    s.Format("%d|%5s|%-3c|%x|%08.3f|%e|%%|%s", -42, "ab", 'z', 255u, 3.14159, 1e10, "end");
    EXPECT_EQ(Str(s), "-42|   ab|z  |ff|0003.142|1.000000e+10|%|end");
    s.Format("%u", 4000000000u);
    EXPECT_EQ(Str(s), "4000000000");
    s.Format("%s", "");
    EXPECT_TRUE(s.IsEmpty());
}

TEST(CStringTest, FormatOfLongStringsIsComplete) {
    std::string big(100000, 'q');
    CString s("previous");
    s.Format("<%s>%d", big.c_str(), 7);
    ASSERT_EQ(s.GetLength(), 100003);
    EXPECT_EQ(Str(s), "<" + big + ">7");
    // Formatting ourselves into ourselves.
    CString t("abc");
    t.Format("%s%s", static_cast<LPCTSTR>(t), static_cast<LPCTSTR>(t));
    EXPECT_EQ(Str(t), "abcabc");
    CString w;
    w.Format("%300d", 1);
    EXPECT_EQ(w.GetLength(), 300);
    EXPECT_EQ(w.Right(1), "1");
}

TEST(CStringTest, GetBufferReleaseBuffer) {
    CString s("abc");
    char* p = s.GetBuffer(10);
    ASSERT_NE(p, nullptr);
    EXPECT_STREQ(p, "abc");  // current text kept
    std::strcpy(p, "0123456789");
    s.ReleaseBuffer();
    EXPECT_EQ(Str(s), "0123456789");

    p = s.GetBuffer(0);  // smaller request keeps the text
    EXPECT_STREQ(p, "0123456789");
    p[4] = '\0';
    s.ReleaseBuffer();
    EXPECT_EQ(Str(s), "0123");

    p = s.GetBuffer(20);
    std::memset(p, 'k', 20);
    p[20] = '\0';
    s.ReleaseBuffer(5);
    EXPECT_EQ(Str(s), "kkkkk");

    // A buffer filled without a terminator: the length stops at the buffer.
    CString u;
    p = u.GetBuffer(8);
    std::memset(p, 'u', 8);
    u.ReleaseBuffer(-1);
    EXPECT_LE(u.GetLength(), 8);

    CString v;
    p = v.GetBufferSetLength(4);
    std::memcpy(p, "wxyz", 4);
    EXPECT_EQ(Str(v), "wxyz");
    v.ReleaseBuffer(100);  // more than the buffer: clamped
    EXPECT_LE(v.GetLength(), 100);
    v.ReleaseBuffer(2);
    EXPECT_EQ(Str(v), "wx");
    v.FreeExtra();
    EXPECT_EQ(Str(v), "wx");
    EXPECT_STREQ(v.LockBuffer(), "wx");
    v.UnlockBuffer();

    CString neg;
    EXPECT_NE(neg.GetBuffer(-3), nullptr);
    neg.ReleaseBuffer();
    EXPECT_TRUE(neg.IsEmpty());
}

TEST(CStringTest, AssignmentForms) {
    CString s;
    s = 'c';
    EXPECT_EQ(Str(s), "c");
    s = static_cast<LPCSTR>(nullptr);
    EXPECT_TRUE(s.IsEmpty());
    const unsigned char bytes[] = {0xE4, 'x', 0};
    s = bytes;
    EXPECT_EQ(Str(s), "\xE4x");
    CString moved(std::move(s));
    EXPECT_EQ(Str(moved), "\xE4x");
    s = moved;
    const CString& alias = s;
    s = alias;  // self-assignment
    EXPECT_EQ(Str(s), "\xE4x");
}

TEST(CStringTest, MissingStringResourceGivesEmpty) {
    CString s("keep");
    EXPECT_FALSE(s.LoadString(0xFFFE));
    EXPECT_TRUE(s.IsEmpty());
    CString r(MAKEINTRESOURCE(0xFFFE));
    EXPECT_TRUE(r.IsEmpty());
}

}  // namespace
