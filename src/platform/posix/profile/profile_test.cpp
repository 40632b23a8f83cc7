// The Win32 profile functions as a program sees them: lookups, lists,
// truncation, numbers, and the exact bytes of a file after each write.
// Files are given with '|' for a line end; the fixtures run each case with
// CR LF and with LF files.
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <string>
#include <vector>

#include "platform/posix/file/dos_path.h"
#include "platform/win32.h"
#include "support/test_support.h"

namespace {

using zq::test::MakeScratchFolder;
using zq::test::ReadFileBytes;
using zq::test::WriteFileBytes;

constexpr unsigned char kFill = 0xCC;

std::string operator""_b(const char* text, size_t size) {
    return std::string(text, size);
}

std::string WithLineEnds(std::string text, const std::string& eol) {
    std::string out;
    for (char c : text) {
        if (c == '|') {
            out += eol;
        } else {
            out += c;
        }
    }
    return out;
}

// What a read left in the buffer: the bytes up to the last one written.
struct BufferResult {
    DWORD ret;
    std::string written;  // bytes before the untouched (sentinel) tail
    bool overflow;        // a byte at or beyond the given size changed
};

template <typename Call>
BufferResult RunRead(DWORD size, Call call) {
    std::vector<char> buffer(size + 32, static_cast<char>(kFill));
    BufferResult result{};
    result.ret = call(buffer.data(), size);
    size_t end = size;
    while (end > 0 && static_cast<unsigned char>(buffer[end - 1]) == kFill) {
        --end;
    }
    result.written.assign(buffer.data(), end);
    for (size_t i = size; i < buffer.size(); ++i) {
        result.overflow |= static_cast<unsigned char>(buffer[i]) != kFill;
    }
    return result;
}

BufferResult GetString(const char* section, const char* key, const char* def, DWORD size,
                       const std::string& file) {
    return RunRead(size, [&](char* buffer, DWORD n) {
        return GetPrivateProfileStringA(section, key, def, buffer, n, file.c_str());
    });
}

BufferResult GetSection(const char* section, DWORD size, const std::string& file) {
    return RunRead(size, [&](char* buffer, DWORD n) {
        return GetPrivateProfileSectionA(section, buffer, n, file.c_str());
    });
}

BufferResult GetNames(DWORD size, const std::string& file) {
    return RunRead(size, [&](char* buffer, DWORD n) {
        return GetPrivateProfileSectionNamesA(buffer, n, file.c_str());
    });
}

// ---------------------------------------------------------------------------
// Lookups recorded from a Win32 implementation (corrected where Windows
// differs from it: the empty section "[]" is found).

struct LookupCase {
    const char* file;
    const char* section;
    const char* key;
    const char* def;
    DWORD size;
    DWORD ret;
    std::string buffer;
};

const char kBasic[] = "[Main]|Key=Value|Empty=|NoEq|";
const char kBlanks[] =
    "  [  Spaced Sec  ]  |   key one   =   value with blanks   |\tTabKey\t=\tTabVal\t|"
    "[Tight]x=1|y=2|[Trail] ; comment after section|t=3|[Open|o=4|[]|e=5|";
const char kQuotes[] =
    "[Q]|d=\"double\"|s='single'|mix=\"mixed'|pad=\" padded \"|out=  \"outer blanks\"  |"
    "lone=\"|empty=\"\"|inner=a \"b\" c|lead=\"abc|trail=abc\"|\"qkey\"=qk|";
const char kComments[] =
    "; top comment|[C]|;semi=1|#hash=2|  ; indented=3|real=4 ; trailing comment|//slash=5|"
    "after=6|;[NotSection]|last=7|";
const char kDuplicates[] =
    "[D]|a=first|b=one|[E]|e=1|[D]|a=second|c=three|[d]|b=lower|[F]|k=1|K=2|";

const LookupCase kLookups[] = {
    {kBasic, "Main", "Key", "D", 64, 5, "Value\0"_b},
    {kBasic, "MAIN", "KEY", "D", 64, 5, "Value\0"_b},
    {kBasic, "main", "key", "D", 64, 5, "Value\0"_b},
    {kBasic, "Main", "Missing", "D", 64, 1, "D\0"_b},
    {kBasic, "Nope", "Key", "D", 64, 1, "D\0"_b},
    {kBasic, "Main", "Empty", "D", 64, 0, "\0"_b},
    {kBasic, "Main", "NoEq", "D", 64, 1, "D\0"_b},
    {kBasic, "Main", "", "D", 64, 1, "D\0"_b},
    {kBasic, "", "Key", "D", 64, 1, "D\0"_b},
    {kBasic, "Main", nullptr, "D", 64, 10, "Key\0Empty\0\0"_b},
    {kBlanks, "Spaced Sec", "key one", "D", 64, 17, "value with blanks\0"_b},
    {kBlanks, "  Spaced Sec  ", "  key one  ", "D", 64, 17, "value with blanks\0"_b},
    {kBlanks, "Spaced  Sec", "key one", "D", 64, 1, "D\0"_b},
    {kBlanks, "Spaced Sec", "TabKey", "D", 64, 6, "TabVal\0"_b},
    {kBlanks, "Tight", "x", "D", 64, 1, "D\0"_b},
    {kBlanks, "Tight", "y", "D", 64, 1, "2\0"_b},
    {kBlanks, "Trail", "t", "D", 64, 1, "3\0"_b},
    {kBlanks, "Open", "o", "D", 64, 1, "D\0"_b},
    {kBlanks, "[Open", "o", "D", 64, 1, "D\0"_b},
    {kBlanks, "", "e", "D", 64, 1, "5\0"_b},  // Windows finds keys under "[]"
    {kBlanks, nullptr, nullptr, "D", 256, 23, "Spaced Sec\0Tight\0Trail\0\0"_b},
    {kBlanks, "Spaced Sec", nullptr, "D", 256, 15, "key one\0TabKey\0\0"_b},
    {kQuotes, "Q", "d", "D", 64, 6, "double\0"_b},
    {kQuotes, "Q", "s", "D", 64, 6, "single\0"_b},
    {kQuotes, "Q", "mix", "D", 64, 7, "\"mixed'\0"_b},
    {kQuotes, "Q", "pad", "D", 64, 8, " padded \0"_b},
    {kQuotes, "Q", "out", "D", 64, 12, "outer blanks\0"_b},
    {kQuotes, "Q", "lone", "D", 64, 1, "\"\0"_b},
    {kQuotes, "Q", "empty", "D", 64, 0, "\0"_b},
    {kQuotes, "Q", "inner", "D", 64, 7, "a \"b\" c\0"_b},
    {kQuotes, "Q", "lead", "D", 64, 4, "\"abc\0"_b},
    {kQuotes, "Q", "trail", "D", 64, 4, "abc\"\0"_b},
    {kQuotes, "Q", "qkey", "D", 64, 1, "D\0"_b},
    {kQuotes, "Q", "\"qkey\"", "D", 64, 2, "qk\0"_b},
    {kQuotes, "Q", "d", "D", 6, 5, "doubl\0"_b},
    {kQuotes, "Q", "d", "D", 7, 5, "doubl\0"_b},  // the closing quote's cut takes one more
    {kQuotes, "Q", "d", "D", 8, 6, "double\0"_b},
    {kQuotes, "Q", "d", "D", 9, 6, "double\0"_b},
    {kQuotes, "Q", nullptr, "D", 256, 51,
     "d\0s\0mix\0pad\0out\0lone\0empty\0inner\0lead\0trail\0\"qkey\"\0\0"_b},
    {kQuotes, "Q", "missing", "\"qdef\"", 64, 4, "qdef\0"_b},
    {kComments, "C", ";semi", "D", 64, 1, "1\0"_b},  // found by its exact name, never listed
    {kComments, "C", "#hash", "D", 64, 1, "2\0"_b},
    {kComments, "C", "; indented", "D", 64, 1, "3\0"_b},
    {kComments, "C", "semi", "D", 64, 1, "D\0"_b},
    {kComments, "C", "real", "D", 64, 20, "4 ; trailing comment\0"_b},
    {kComments, "C", "//slash", "D", 64, 1, "5\0"_b},
    {kComments, "C", "last", "D", 64, 1, "7\0"_b},
    {kComments, "NotSection", "last", "D", 64, 1, "D\0"_b},
    {kComments, nullptr, nullptr, "D", 256, 2, "C\0\0"_b},
    {kComments, "C", nullptr, "D", 256, 30, "#hash\0real\0//slash\0after\0last\0\0"_b},
    {kDuplicates, "D", "a", "X", 64, 5, "first\0"_b},
    {kDuplicates, "D", "b", "X", 64, 3, "one\0"_b},
    {kDuplicates, "D", "c", "X", 64, 1, "X\0"_b},  // only the first [D] counts
    {kDuplicates, "F", "k", "X", 64, 1, "1\0"_b},
    {kDuplicates, nullptr, nullptr, "X", 256, 10, "D\0E\0D\0d\0F\0\0"_b},
    {kDuplicates, "D", nullptr, "X", 256, 4, "a\0b\0\0"_b},
    {kDuplicates, "F", nullptr, "X", 256, 4, "k\0K\0\0"_b},
};

class ProfileLookupTest : public ::testing::TestWithParam<std::tuple<LookupCase, std::string>> {};

TEST_P(ProfileLookupTest, ReadsAsWindows) {
    const auto& [c, eol] = GetParam();
    const std::string path = MakeScratchFolder("lookup") + "/t.ini";
    ASSERT_TRUE(WriteFileBytes(path, WithLineEnds(c.file, eol)));
    const BufferResult r = GetString(c.section, c.key, c.def, c.size, path);
    EXPECT_EQ(r.ret, c.ret);
    EXPECT_EQ(r.written, c.buffer);
    EXPECT_FALSE(r.overflow);
}

INSTANTIATE_TEST_SUITE_P(Recorded, ProfileLookupTest,
                         ::testing::Combine(::testing::ValuesIn(kLookups),
                                            ::testing::Values("\r\n", "\n")));

TEST(ProfileLookup, SectionLinesKeepQuotesAndBareText) {
    const std::string folder = MakeScratchFolder("lines");
    WriteFileBytes(folder + "/b.ini", WithLineEnds(kBasic, "\r\n"));
    WriteFileBytes(folder + "/q.ini", WithLineEnds(kQuotes, "\n"));
    WriteFileBytes(folder + "/c.ini", WithLineEnds(kComments, "\r\n"));
    WriteFileBytes(folder + "/s.ini", WithLineEnds(kBlanks, "\r\n"));

    BufferResult r = GetSection("Main", 64, folder + "/b.ini");
    EXPECT_EQ(r.ret, 22u);
    EXPECT_EQ(r.written, "Key=Value\0Empty=\0NoEq\0\0"_b);
    r = GetSection("Q", 256, folder + "/q.ini");
    EXPECT_EQ(r.ret, 129u);
    EXPECT_EQ(r.written,
              "d=\"double\"\0s='single'\0mix=\"mixed'\0pad=\" padded \"\0out=\"outer blanks\"\0"
              "lone=\"\0empty=\"\"\0inner=a \"b\" c\0lead=\"abc\0trail=abc\"\0\"qkey\"=qk\0\0"_b);
    r = GetSection("C", 256, folder + "/c.ini");
    EXPECT_EQ(r.written, "#hash=2\0real=4 ; trailing comment\0//slash=5\0after=6\0last=7\0\0"_b);
    r = GetSection("Spaced Sec", 256, folder + "/s.ini");
    EXPECT_EQ(r.written, "key one=value with blanks\0TabKey=TabVal\0\0"_b);
    r = GetSection("missing", 64, folder + "/s.ini");
    EXPECT_EQ(r.ret, 0u);
    EXPECT_EQ(r.written, "\0\0"_b);
}

TEST(ProfileLookup, LineEndsOfEveryKind) {
    const std::string folder = MakeScratchFolder("eol");
    WriteFileBytes(folder + "/cr.ini", "[R]\rk=cr\rk2=v2\r");
    WriteFileBytes(folder + "/mixed.ini", "[M]\r\na=1\nb=2\r\n\r\n[N]\nc=3\r");
    WriteFileBytes(folder + "/nofinal.ini", "[Z]\r\nk=last");
    WriteFileBytes(folder + "/crcrlf.ini", "[V]\r\nk=v\r\r\n");
    EXPECT_EQ(GetString("R", "k", "D", 64, folder + "/cr.ini").written, "cr\0"_b);
    EXPECT_EQ(GetString("R", "k2", "D", 64, folder + "/cr.ini").written, "v2\0"_b);
    EXPECT_EQ(GetString(nullptr, nullptr, "D", 64, folder + "/cr.ini").written, "R\0\0"_b);
    EXPECT_EQ(GetString("M", "a", "D", 64, folder + "/mixed.ini").written, "1\0"_b);
    EXPECT_EQ(GetString("M", "b", "D", 64, folder + "/mixed.ini").written, "2\0"_b);
    EXPECT_EQ(GetString("N", "c", "D", 64, folder + "/mixed.ini").written, "3\0"_b);
    EXPECT_EQ(GetString("Z", "k", "D", 64, folder + "/nofinal.ini").written, "last\0"_b);
    EXPECT_EQ(GetString("V", "k", "D", 64, folder + "/crcrlf.ini").written, "v\0"_b);
}

TEST(ProfileLookup, MissingFileGivesDefaultsAndEmptyLists) {
    const std::string path = MakeScratchFolder("missing") + "/nofile.ini";
    EXPECT_EQ(GetString("S", "k", "def", 64, path).written, "def\0"_b);
    EXPECT_EQ(GetString("S", "k", nullptr, 64, path).written, "\0"_b);
    EXPECT_EQ(GetString("S", "k", "  def  ", 64, path).written, "  def\0"_b);
    BufferResult r = GetString(nullptr, nullptr, "def", 64, path);
    EXPECT_EQ(r.ret, 0u);
    EXPECT_EQ(r.written, "\0"_b);
    EXPECT_EQ(GetString("S", nullptr, "def", 64, path).written, "def\0"_b);
    EXPECT_EQ(GetNames(64, path).written, "\0"_b);
    EXPECT_EQ(GetSection("S", 64, path).written, "\0\0"_b);
    EXPECT_EQ(GetPrivateProfileIntA("S", "k", 77, path.c_str()), 77u);
    SetLastError(0);
    GetString("S", "k", "def", 64, path);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    struct stat st;
    EXPECT_NE(stat(path.c_str(), &st), 0);  // reading never creates the file
}

TEST(ProfileLookup, NullFileNameForSectionFails) {
    SetLastError(0);
    BufferResult r = RunRead(16, [](char* buffer, DWORD n) {
        return GetPrivateProfileSectionA("S", buffer, n, nullptr);
    });
    EXPECT_EQ(r.ret, 0u);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
}

// ---------------------------------------------------------------------------
// Truncation: a value, a default, and each kind of list, at every size of
// interest. Lists that do not fit (or fit exactly) end in two zero bytes and
// return size - 2.

struct TruncationCase {
    enum Kind { kValue, kDefault, kSectionNames, kNamesFunction, kKeys, kSectionLines } kind;
    DWORD size;
    DWORD ret;
    std::string buffer;
};

const char kTruncationFile[] = "[T]|k=0123456789|[alpha]|a=1|[Beta]|key1=x|Key2=y|k3=z|[gamma]|";

const TruncationCase kTruncations[] = {
    {TruncationCase::kValue, 0, 0, ""},
    {TruncationCase::kValue, 1, 0, "\0"_b},
    {TruncationCase::kValue, 2, 1, "0\0"_b},
    {TruncationCase::kValue, 5, 4, "0123\0"_b},
    {TruncationCase::kValue, 10, 9, "012345678\0"_b},
    {TruncationCase::kValue, 11, 10, "0123456789\0"_b},
    {TruncationCase::kValue, 12, 10, "0123456789\0"_b},
    {TruncationCase::kDefault, 1, 0, "\0"_b},
    {TruncationCase::kDefault, 5, 4, "ABCD\0"_b},
    {TruncationCase::kDefault, 10, 9, "ABCDEFGHI\0"_b},
    {TruncationCase::kDefault, 11, 10, "ABCDEFGHIJ\0"_b},
    // T\0alpha\0Beta\0gamma\0 plus the final zero: 20 bytes
    {TruncationCase::kSectionNames, 64, 19, "T\0alpha\0Beta\0gamma\0\0"_b},
    {TruncationCase::kSectionNames, 21, 19, "T\0alpha\0Beta\0gamma\0\0"_b},
    {TruncationCase::kSectionNames, 20, 18, "T\0alpha\0Beta\0gamma\0\0"_b},
    {TruncationCase::kSectionNames, 19, 17, "T\0alpha\0Beta\0gamm\0\0"_b},
    {TruncationCase::kSectionNames, 18, 16, "T\0alpha\0Beta\0gam\0\0"_b},
    {TruncationCase::kSectionNames, 14, 12, "T\0alpha\0Beta\0\0"_b},
    {TruncationCase::kSectionNames, 13, 11, "T\0alpha\0Bet\0\0"_b},
    {TruncationCase::kSectionNames, 8, 6, "T\0alph\0\0"_b},
    {TruncationCase::kSectionNames, 3, 1, "T\0\0"_b},
    {TruncationCase::kSectionNames, 2, 0, "\0\0"_b},
    {TruncationCase::kSectionNames, 1, 0, "\0"_b},
    {TruncationCase::kSectionNames, 0, 0, ""},
    {TruncationCase::kNamesFunction, 64, 19, "T\0alpha\0Beta\0gamma\0\0"_b},
    {TruncationCase::kNamesFunction, 20, 18, "T\0alpha\0Beta\0gamma\0\0"_b},
    {TruncationCase::kNamesFunction, 16, 14, "T\0alpha\0Beta\0g\0\0"_b},
    {TruncationCase::kNamesFunction, 2, 0, "\0\0"_b},
    {TruncationCase::kNamesFunction, 1, 0, "\0"_b},
    // key1\0Key2\0k3\0 plus the final zero: 14 bytes
    {TruncationCase::kKeys, 64, 13, "key1\0Key2\0k3\0\0"_b},
    {TruncationCase::kKeys, 14, 12, "key1\0Key2\0k3\0\0"_b},
    {TruncationCase::kKeys, 13, 11, "key1\0Key2\0k\0\0"_b},
    {TruncationCase::kKeys, 12, 10, "key1\0Key2\0\0\0"_b},
    {TruncationCase::kKeys, 9, 7, "key1\0Ke\0\0"_b},
    {TruncationCase::kKeys, 5, 3, "key\0\0"_b},
    {TruncationCase::kKeys, 3, 1, "k\0\0"_b},
    {TruncationCase::kKeys, 2, 1, "D\0"_b},  // nothing of the list fits: the default
    {TruncationCase::kKeys, 1, 0, "\0"_b},
    // key1=x\0Key2=y\0k3=z\0 plus the final zero: 20 bytes
    {TruncationCase::kSectionLines, 64, 19, "key1=x\0Key2=y\0k3=z\0\0"_b},
    {TruncationCase::kSectionLines, 20, 18, "key1=x\0Key2=y\0k3=z\0\0"_b},
    {TruncationCase::kSectionLines, 19, 17, "key1=x\0Key2=y\0k3=\0\0"_b},
    {TruncationCase::kSectionLines, 10, 8, "key1=x\0K\0\0"_b},
    {TruncationCase::kSectionLines, 3, 1, "k\0\0"_b},
    {TruncationCase::kSectionLines, 2, 0, "\0\0"_b},
    {TruncationCase::kSectionLines, 1, 0, "\0"_b},
};

class ProfileTruncationTest
    : public ::testing::TestWithParam<std::tuple<TruncationCase, std::string>> {};

TEST_P(ProfileTruncationTest, CutsAsWindows) {
    const auto& [c, eol] = GetParam();
    const std::string path = MakeScratchFolder("trunc") + "/t.ini";
    ASSERT_TRUE(WriteFileBytes(path, WithLineEnds(kTruncationFile, eol)));
    BufferResult r{};
    switch (c.kind) {
        case TruncationCase::kValue:
            r = GetString("T", "k", "D", c.size, path);
            break;
        case TruncationCase::kDefault:
            r = GetString("T", "none", "ABCDEFGHIJ", c.size, path);
            break;
        case TruncationCase::kSectionNames:
            r = GetString(nullptr, nullptr, "D", c.size, path);
            break;
        case TruncationCase::kNamesFunction:
            r = GetNames(c.size, path);
            break;
        case TruncationCase::kKeys:
            r = GetString("Beta", nullptr, "D", c.size, path);
            break;
        case TruncationCase::kSectionLines:
            r = GetSection("Beta", c.size, path);
            break;
    }
    EXPECT_EQ(r.ret, c.ret);
    EXPECT_EQ(r.written, c.buffer);
    EXPECT_FALSE(r.overflow);
}

INSTANTIATE_TEST_SUITE_P(Sizes, ProfileTruncationTest,
                         ::testing::Combine(::testing::ValuesIn(kTruncations),
                                            ::testing::Values("\r\n", "\n")));

// ---------------------------------------------------------------------------
// Numbers.

struct IntCase {
    const char* value;  // nullptr: no such key
    INT def;
    UINT expected;
};

const IntCase kInts[] = {
    {"123", 77, 123},
    {"  42  ", 77, 42},
    {"-5", 77, static_cast<UINT>(-5)},
    {"0x10", 77, 16},
    {"0o17", 77, 15},
    {"0b101", 77, 5},
    {"12abc", 77, 12},
    {"", 77, 77},
    {"abc", 77, 0},
    {"4294967295", 77, 4294967295u},
    {"99999999999", 77, 1215752191u},  // wraps at 32 bits
    {"+7", 77, 7},
    {"\"9\"", 77, 9},
    {"007", 77, 7},
    {"-0x10", 77, static_cast<UINT>(-16)},
    {nullptr, 77, 77},
    {nullptr, -1, 4294967295u},
};

class ProfileIntTest : public ::testing::TestWithParam<IntCase> {};

TEST_P(ProfileIntTest, ParsesAsWindows) {
    const IntCase& c = GetParam();
    const std::string path = MakeScratchFolder("int") + "/i.ini";
    std::string file = "[I]\r\n";
    if (c.value) {
        file += std::string("v=") + c.value + "\r\n";
    }
    ASSERT_TRUE(WriteFileBytes(path, file));
    EXPECT_EQ(GetPrivateProfileIntA("I", "v", c.def, path.c_str()), c.expected);
}

INSTANTIATE_TEST_SUITE_P(Recorded, ProfileIntTest, ::testing::ValuesIn(kInts));

// ---------------------------------------------------------------------------
// Writes: the whole file, byte for byte, after each step.

class ProfileWriteTest : public ::testing::TestWithParam<std::string> {
protected:
    void SetUp() override { path_ = MakeScratchFolder("write") + "/w.ini"; }
    std::string Eol(const char* text) const { return WithLineEnds(text, GetParam()); }
    void Start(const char* text) { ASSERT_TRUE(WriteFileBytes(path_, Eol(text))); }
    void Write(const char* section, const char* key, const char* value) {
        EXPECT_TRUE(WritePrivateProfileStringA(section, key, value, path_.c_str()))
            << (section ? section : "NULL") << "/" << (key ? key : "NULL");
    }
    std::string Bytes() const { return ReadFileBytes(path_); }
    std::string path_;
};

TEST_P(ProfileWriteTest, KeepsEveryOtherLineAsItWas) {
    Start("[A]|x=1||[B]|y=2|");
    Write("A", "new", "v");
    EXPECT_EQ(Bytes(), Eol("[A]|x=1|new=v||[B]|y=2|"));
    Write("B", "z", "3");
    EXPECT_EQ(Bytes(), Eol("[A]|x=1|new=v||[B]|y=2|z=3|"));
    Write("C", "k", "v");
    EXPECT_EQ(Bytes(), Eol("[A]|x=1|new=v||[B]|y=2|z=3|[C]|k=v|"));
    Write("A", "X", "changed");
    EXPECT_EQ(Bytes(), Eol("[A]|x=changed|new=v||[B]|y=2|z=3|[C]|k=v|"));
    Write("a", "new2", "v2");
    EXPECT_EQ(Bytes(), Eol("[A]|x=changed|new=v|new2=v2||[B]|y=2|z=3|[C]|k=v|"));
    Write("A", "x", nullptr);
    EXPECT_EQ(Bytes(), Eol("[A]|new=v|new2=v2||[B]|y=2|z=3|[C]|k=v|"));
    Write("B", nullptr, nullptr);
    EXPECT_EQ(Bytes(), Eol("[A]|new=v|new2=v2||[C]|k=v|"));
    Write("B", nullptr, "ignored");
    Write("NoSec", nullptr, nullptr);
    Write("A", "nokey", nullptr);
    Write("NoSec", "nokey", nullptr);
    EXPECT_EQ(Bytes(), Eol("[A]|new=v|new2=v2||[C]|k=v|"));
}

TEST_P(ProfileWriteTest, NamesAndValuesLoseLeadingBlanks) {
    Start("[A]|x=1|");
    Write("A", "sp", "  padded  ");
    Write("A", "q", "\"quoted\"");
    Write("A", "  kb  ", "1");
    Write("  Sb  ", "k", "1");
    Write("A", "emptyval", "");
    EXPECT_EQ(Bytes(), Eol("[A]|x=1|sp=padded  |q=\"quoted\"|kb  =1|emptyval=|[Sb  ]|k=1|"));
    EXPECT_EQ(GetString("A", "sp", "D", 64, path_).written, "padded\0"_b);
    EXPECT_EQ(GetString("A", "q", "D", 64, path_).written, "quoted\0"_b);
    EXPECT_EQ(GetString("Sb", "k", "D", 64, path_).written, "1\0"_b);
    EXPECT_EQ(GetString("A", "emptyval", "D", 64, path_).written, "\0"_b);
}

TEST_P(ProfileWriteTest, ChangedLineKeepsItsLayoutUpToTheValue) {
    Start("; header comment||[P]|  spaced  =  v  |# hash line|noeq|dq=\"quoted\"||[Q]|q=1");
    Write("P", "new", "1");
    EXPECT_EQ(Bytes(),
              Eol("; header comment||[P]|  spaced  =  v  |# hash line|noeq|dq=\"quoted\"|new=1||"
                  "[Q]|q=1"));
    Write("Q", "q", "2");  // the last line keeps having no line end
    EXPECT_EQ(Bytes(),
              Eol("; header comment||[P]|  spaced  =  v  |# hash line|noeq|dq=\"quoted\"|new=1||"
                  "[Q]|q=2"));
    Write("Q", "q2", "3");
    Write("P", "spaced", "w");
    EXPECT_EQ(Bytes(),
              Eol("; header comment||[P]|  spaced  =  w|# hash line|noeq|dq=\"quoted\"|new=1||"
                  "[Q]|q=2|q2=3|"));
}

TEST_P(ProfileWriteTest, PlacesNewKeysAfterTheLastEntry) {
    Start("[A]|x=1|[B]|y=2|||");
    Write("A", "y", "2");
    Write("B", "w", "4");
    Write("C", "c", "5");
    EXPECT_EQ(Bytes(), Eol("[A]|x=1|y=2|[B]|y=2|w=4|||[C]|c=5|"));
}

TEST_P(ProfileWriteTest, ChangesTheFirstOfDuplicates) {
    Start(kDuplicates);
    Write("D", "a", "W");
    Write("D", "c", "W");
    Write("F", "K", "W");
    EXPECT_EQ(Bytes(),
              Eol("[D]|a=W|b=one|c=W|[E]|e=1|[D]|a=second|c=three|[d]|b=lower|[F]|k=W|K=2|"));
}

TEST_P(ProfileWriteTest, DeletingTheLastKeyKeepsTheHeader) {
    Start("[A]|only=1|[B]|b=2|");
    Write("A", "only", nullptr);
    EXPECT_EQ(Bytes(), Eol("[A]|[B]|b=2|"));
    EXPECT_EQ(GetString(nullptr, nullptr, "D", 64, path_).written, "A\0B\0\0"_b);
}

TEST_P(ProfileWriteTest, KeepsBytesBeforeTheFirstSection) {
    const std::string start = "\0\0junk"_b + Eol("|[S]|k=1|");
    ASSERT_TRUE(WriteFileBytes(path_, start));
    Write("S", "k", "2");
    EXPECT_EQ(Bytes(), "\0\0junk"_b + Eol("|[S]|k=2|"));
    ASSERT_TRUE(WriteFileBytes(path_, "\xEF\xBB\xBF" + Eol("[S]|k=1|")));
    EXPECT_EQ(GetString("S", "k", "D", 64, path_).written, "1\0"_b);
    Write("S", "k", "3");
    EXPECT_EQ(Bytes(), "\xEF\xBB\xBF" + Eol("[S]|k=3|"));
}

TEST_P(ProfileWriteTest, SameValueLeavesTheFileAlone) {
    Start("[A]|k=v  |");
    struct stat before;
    ASSERT_EQ(stat(path_.c_str(), &before), 0);
    Write("A", "k", "v");
    struct stat after;
    ASSERT_EQ(stat(path_.c_str(), &after), 0);
    EXPECT_EQ(before.st_ino, after.st_ino);
    EXPECT_EQ(Bytes(), Eol("[A]|k=v  |"));
}

TEST_P(ProfileWriteTest, WholeSectionsAreReplaced) {
    Start("[A]|a=1|; note|b=2||[B]|c=3|");
    EXPECT_TRUE(WritePrivateProfileSectionA("A", "x=9\0y=8\0"_b.c_str(), path_.c_str()));
    EXPECT_EQ(Bytes(), Eol("[A]|x=9|y=8||[B]|c=3|"));
    EXPECT_TRUE(WritePrivateProfileSectionA("N", "n=1\0"_b.c_str(), path_.c_str()));
    EXPECT_EQ(Bytes(), Eol("[A]|x=9|y=8||[B]|c=3|[N]|n=1|"));
    EXPECT_TRUE(WritePrivateProfileSectionA("B", "\0"_b.c_str(), path_.c_str()));
    EXPECT_EQ(Bytes(), Eol("[A]|x=9|y=8||[B]|[N]|n=1|"));
    EXPECT_TRUE(WritePrivateProfileSectionA("A", nullptr, path_.c_str()));
    EXPECT_EQ(Bytes(), Eol("[B]|[N]|n=1|"));
    EXPECT_EQ(GetSection("N", 64, path_).written, "n=1\0\0"_b);
}

INSTANTIATE_TEST_SUITE_P(LineEnds, ProfileWriteTest, ::testing::Values("\r\n", "\n"),
                         [](const auto& info) { return info.param == "\n" ? "LF" : "CRLF"; });

TEST(ProfileWrite, NewAndEmptyFilesGetCrLfLines) {
    const std::string folder = MakeScratchFolder("new");
    const std::string created = folder + "/created.ini";
    EXPECT_TRUE(WritePrivateProfileStringA("S", "k", "v", created.c_str()));
    EXPECT_TRUE(WritePrivateProfileStringA("S", "k2", "v2", created.c_str()));
    EXPECT_EQ(ReadFileBytes(created), "[S]\r\nk=v\r\nk2=v2\r\n");
    const std::string empty = folder + "/empty.ini";
    WriteFileBytes(empty, "");
    EXPECT_TRUE(WritePrivateProfileStringA("S", "k", "v", empty.c_str()));
    EXPECT_EQ(ReadFileBytes(empty), "[S]\r\nk=v\r\n");
}

TEST(ProfileWrite, DeletionsInAMissingFileCreateItEmpty) {
    const std::string folder = MakeScratchFolder("del");
    for (const char* name : {"/key.ini", "/sec.ini", "/sec2.ini"}) {
        const std::string path = folder + name;
        const char* key = std::string(name) == "/key.ini" ? "k" : nullptr;
        const char* value = std::string(name) == "/sec2.ini" ? "x" : nullptr;
        EXPECT_TRUE(WritePrivateProfileStringA("S", key, value, path.c_str()));
        struct stat st;
        ASSERT_EQ(stat(path.c_str(), &st), 0) << name;
        EXPECT_EQ(st.st_size, 0) << name;
    }
}

TEST(ProfileWrite, FailuresAndFlush) {
    const std::string folder = MakeScratchFolder("fail");
    const std::string path = folder + "/w.ini";
    WriteFileBytes(path, "[A]\r\n");
    SetLastError(0);
    EXPECT_FALSE(WritePrivateProfileStringA(nullptr, "k", "v", path.c_str()));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    EXPECT_TRUE(WritePrivateProfileStringA(nullptr, nullptr, nullptr, path.c_str()));
    EXPECT_TRUE(WritePrivateProfileStringA(nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(ReadFileBytes(path), "[A]\r\n");
    const std::string nodir = folder + "/nodir/x.ini";
    EXPECT_FALSE(WritePrivateProfileStringA("S", "k", "v", nodir.c_str()));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_PATH_NOT_FOUND));
    EXPECT_FALSE(WritePrivateProfileStringA("S", "k", "v", folder.c_str()));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    EXPECT_EQ(GetString("S", "k", "D", 64, folder).written, "D\0"_b);  // a folder reads as missing
}

TEST(ProfileWrite, BareNamesLiveInTheWindowsFolder) {
    EXPECT_TRUE(WritePrivateProfileStringA("S", "k", "bare", "zqtest.ini"));
    const std::string windows = zq::platform::internal::WindowsFolderUnix();
    EXPECT_EQ(ReadFileBytes(windows + "/zqtest.ini"), "[S]\r\nk=bare\r\n");
    EXPECT_EQ(GetString("S", "k", "D", 64, "zqtest.ini").written, "bare\0"_b);
    EXPECT_EQ(GetString("S", "k", "D", 64, "C:\\windows\\zqtest.ini").written, "bare\0"_b);

    EXPECT_TRUE(WriteProfileStringA("Intl", "sCountry", "Here"));
    EXPECT_TRUE(WriteProfileStringA("Intl", "iCountry", "0x2A"));
    EXPECT_EQ(ReadFileBytes(windows + "/win.ini"), "[Intl]\r\nsCountry=Here\r\niCountry=0x2A\r\n");
    char buffer[16];
    EXPECT_EQ(GetProfileStringA("intl", "SCOUNTRY", "", buffer, sizeof buffer), 4u);
    EXPECT_STREQ(buffer, "Here");
    EXPECT_EQ(GetProfileIntA("Intl", "iCountry", 0), 42u);
    EXPECT_EQ(GetPrivateProfileStringA("Intl", "sCountry", "", buffer, sizeof buffer, nullptr), 4u);
}

}  // namespace
