#include "settings/mem_ini_file.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <utility>
#include <vector>

#include "support/test_support.h"

namespace {

using zq::test::ReadFileBytes;
using zq::test::WriteFileBytes;

constexpr DWORD kOk = 0;
constexpr DWORD kNoFileName = 3;
constexpr DWORD kNoSuchSection = 5;
constexpr DWORD kMissing = 7;

std::vector<std::string> Names(const CStringArray& array) {
    std::vector<std::string> names;
    for (int i = 0; i < array.GetSize(); ++i) {
        names.emplace_back(static_cast<LPCTSTR>(array[i]));
    }
    return names;
}

// Opens the protected parts and records every entry written on a save.
class MemIniFile : public CZqMemIniFile {
public:
    using CZqMemIniFile::SubstituteString;

    std::vector<std::string> SectionOrder() const { return Names(m_csaSectionOrder); }
    std::vector<std::string> KeyOrder(const char* section) const {
        CObject* record = nullptr;
        if (!m_mapSections.Lookup(section, record)) {
            return {};
        }
        return Names(static_cast<CIniSection*>(record)->m_csaKeyOrder);
    }
    int SectionCount() const { return m_mapSections.GetCount(); }
    std::string Value(const char* section, const char* key) {
        CString value("<none>");
        GetIniValue(section, key, value);
        return static_cast<LPCTSTR>(value);
    }

    DWORD DoString(const char* lpszKey, BOOL bRead, const char* lpszDefault, char* lpszResult,
                   int nResultSize) override {
        if (!bRead) {
            writes.emplace_back(lpszKey, lpszDefault);
        }
        return CZqMemIniFile::DoString(lpszKey, bRead, lpszDefault, lpszResult, nResultSize);
    }
    std::vector<std::pair<std::string, std::string>> writes;
};

class MemIniFileTest : public testing::Test {
protected:
    void SetUp() override {
        folder_ = zq::test::MakeScratchFolder("memini");
        path_ = folder_ + "/profile.ini";
    }
    void Store(const std::string& bytes) { ASSERT_TRUE(WriteFileBytes(path_, bytes)); }
    std::string Bytes() const { return ReadFileBytes(path_); }

    std::string folder_;
    std::string path_;
    MemIniFile ini_;
};

// ---- Loading -------------------------------------------------------------

TEST_F(MemIniFileTest, LoadsSectionsAndKeysInFileOrderSkippingEmptyValues) {
    Store(
        "; comment\r\n[Zeta]\r\nb=2\r\na=1\r\nEmpty=\r\n[Alpha]\r\nx = spaced \r\n"
        "[Blank]\r\nOnly=\r\n");
    EXPECT_EQ(ini_.LoadIniFile(path_.c_str(), nullptr), kOk);
    EXPECT_EQ(ini_.SectionOrder(), (std::vector<std::string>{"Zeta", "Alpha", "Blank"}));
    EXPECT_EQ(ini_.KeyOrder("Zeta"), (std::vector<std::string>{"b", "a"}));
    EXPECT_EQ(ini_.Value("Alpha", "x"), "spaced");
    // An empty value reads as missing and is not loaded; its section is.
    CString value("kept");
    EXPECT_EQ(ini_.GetIniValue("Zeta", "Empty", value), kMissing);
    EXPECT_STREQ(value, "kept");
    EXPECT_EQ(ini_.KeyOrder("Blank"), std::vector<std::string>{});
    EXPECT_EQ(ini_.GetIniValue("Blank", "Only", value), kMissing);
    // The current section and key are the last ones read.
    char section[1024];
    ASSERT_EQ(ini_.GetSection(section, sizeof section), kOk);
    EXPECT_STREQ(section, "Blank");
}

TEST_F(MemIniFileTest, MemoryLookupsAreCaseSensitive) {
    Store("[Colors]\r\nWindow=1 2 3\r\n");
    ASSERT_EQ(ini_.LoadIniFile(path_.c_str(), nullptr), kOk);
    CString value("same");
    EXPECT_EQ(ini_.GetIniValue("colors", "Window", value), kNoSuchSection);
    EXPECT_EQ(ini_.GetIniValue("Colors", "window", value), kMissing);
    EXPECT_STREQ(value, "same");
    EXPECT_EQ(ini_.GetIniValue("Colors", "Window", value), kOk);
    EXPECT_STREQ(value, "1 2 3");
}

TEST_F(MemIniFileTest, MissingFileLeavesAFreshObjectEmptyAndSaveNeedsAName) {
    const std::string missing = folder_ + "/missing.ini";
    ini_.SetIniValue("S", "K", "v");
    EXPECT_EQ(ini_.LoadIniFile(missing.c_str(), nullptr), kMissing);
    EXPECT_EQ(ini_.SectionCount(), 0);
    EXPECT_EQ(ini_.SaveIniFile(1), kNoFileName);  // no name was taken from the missing file
    EXPECT_EQ(ReadFileBytes(missing), "");

    ASSERT_EQ(ini_.SetFileName(missing.c_str()), kOk);
    ini_.SetIniValue("S", "K", "v");
    EXPECT_EQ(ini_.SaveIniFile(0), kNoFileName);  // not created without the flag
    EXPECT_EQ(ReadFileBytes(missing), "");
    EXPECT_EQ(ini_.SaveIniFile(1), kOk);
    EXPECT_EQ(ReadFileBytes(missing), "[S]\r\nK=v\r\n");
}

TEST_F(MemIniFileTest, MissingFileReloadsThePreviousOne) {
    Store("[S]\r\nK=on disk\r\n");
    ASSERT_EQ(ini_.LoadIniFile(path_.c_str(), nullptr), kOk);
    ini_.SetIniValue("S", "K", "in memory");
    // The missing file's name is not taken, so the previous file is read.
    EXPECT_EQ(ini_.LoadIniFile((folder_ + "/missing.ini").c_str(), nullptr), kOk);
    EXPECT_EQ(ini_.Value("S", "K"), "on disk");
}

TEST_F(MemIniFileTest, NullNameChangesNothing) {
    ini_.SetIniValue("S", "K", "v");
    EXPECT_EQ(ini_.LoadIniFile(nullptr, nullptr), 2u);
    EXPECT_EQ(ini_.Value("S", "K"), "v");
}

TEST_F(MemIniFileTest, FileWithoutSectionsOrNotAFileLoadsNothing) {
    Store("key=value\r\n; nothing else\r\n");
    ini_.SetIniValue("Old", "K", "v");
    EXPECT_EQ(ini_.LoadIniFile(path_.c_str(), nullptr), kMissing);
    EXPECT_EQ(ini_.SectionCount(), 0);

    MemIniFile other;
    EXPECT_EQ(other.LoadIniFile(folder_.c_str(), nullptr), kMissing);  // a folder
    EXPECT_EQ(other.SaveIniFile(1), kNoFileName);
}

TEST_F(MemIniFileTest, LongValuesAreCutAndOverlongNamesSkipped) {
    const std::string key300(300, 'k');
    const std::string section1100(1100, 's');
    Store("[S]\r\nExact=" + std::string(4095, 'e') + "\r\nLong=" + std::string(5000, 'l') + "\r\n" +
          key300 + "=x\r\nAfter=1\r\n[" + section1100 + "]\r\nK=v\r\n[T]\r\nK=w\r\n");
    EXPECT_EQ(ini_.LoadIniFile(path_.c_str(), nullptr), kOk);
    EXPECT_EQ(ini_.Value("S", "Exact"), std::string(4095, 'e'));
    // Loaded through a 4096-character read: 4095 characters stay.
    EXPECT_EQ(ini_.Value("S", "Long"), std::string(4095, 'l'));
    EXPECT_EQ(ini_.KeyOrder("S"), (std::vector<std::string>{"Exact", "Long", "After"}));
    EXPECT_EQ(ini_.SectionOrder(), (std::vector<std::string>{"S", "T"}));
    EXPECT_EQ(ini_.Value("T", "K"), "w");
}

TEST_F(MemIniFileTest, SectionListedTwiceKeepsOnePlace) {
    Store("[A]\r\nK=1\r\n[B]\r\nK=2\r\n[A]\r\nL=3\r\n");
    EXPECT_EQ(ini_.LoadIniFile(path_.c_str(), nullptr), kOk);
    EXPECT_EQ(ini_.SectionOrder(), (std::vector<std::string>{"A", "B"}));
    EXPECT_EQ(ini_.SectionCount(), 2);
    EXPECT_EQ(ini_.Value("A", "K"), "1");
}

TEST_F(MemIniFileTest, GarbageFilesLoadWithoutHarm) {
    std::mt19937 random(20240611);
    int loadedKeys = 0;
    for (int round = 0; round < 40; ++round) {
        std::string bytes(static_cast<size_t>(random() % 6000), '\0');
        for (char& byte : bytes) {
            // Mostly brackets, separators and line ends, so sections form.
            static const char kAlphabet[] = "[]=\r\n;%ab \t\x80\xff";
            byte = random() % 3 == 0 ? static_cast<char>(random())
                                     : kAlphabet[random() % (sizeof kAlphabet - 1)];
        }
        Store(bytes);
        MemIniFile ini;
        CMapStringToString variables;
        variables.SetAt("a", "A");
        const DWORD status = ini.LoadIniFile(path_.c_str(), round % 2 ? &variables : nullptr);
        EXPECT_TRUE(status == kOk || status == kMissing || status == 12u) << status;
        // What was loaded saves back and loads again unchanged.
        EXPECT_EQ(ini.SaveIniFile(0), kOk);
        MemIniFile again;
        again.LoadIniFile(path_.c_str(), nullptr);
        for (const std::string& section : ini.SectionOrder()) {
            for (const std::string& key : ini.KeyOrder(section.c_str())) {
                ++loadedKeys;
                EXPECT_EQ(again.Value(section.c_str(), key.c_str()),
                          ini.Value(section.c_str(), key.c_str()))
                    << "round " << round;
            }
        }
    }
    EXPECT_GT(loadedKeys, 100);  // the files did hold entries
}

TEST_F(MemIniFileTest, UnreadableFileLoadsNothing) {
    if (zq::test::RunningAsRoot()) {
        GTEST_SKIP() << "permission bits do not stop the superuser";
    }
    Store("[S]\r\nK=v\r\n");
    ASSERT_TRUE(zq::test::SetFileMode(path_, 0200));
    EXPECT_EQ(ini_.LoadIniFile(path_.c_str(), nullptr), kMissing);
    EXPECT_EQ(ini_.SectionCount(), 0);
    ASSERT_TRUE(zq::test::SetFileMode(path_, 0600));
    EXPECT_EQ(ini_.LoadIniFile(path_.c_str(), nullptr), kOk);
    EXPECT_EQ(ini_.Value("S", "K"), "v");
}

// ---- Variables ------------------------------------------------------------

struct SubstitutionCase {
    const char* stored;
    const char* loaded;
};

class MemIniSubstitutionTest : public testing::TestWithParam<SubstitutionCase> {};

TEST_P(MemIniSubstitutionTest, ValueLoadsAs) {
    const std::string path = zq::test::MakeScratchFolder("subst") + "/t.ini";
    ASSERT_TRUE(WriteFileBytes(path, std::string("[S]\r\nK=") + GetParam().stored + "\r\n"));
    CMapStringToString variables;
    variables.SetAt("DIR", "C:\\Data");
    variables.SetAt("LOOP", "%DIR%");
    variables.SetAt("", "empty name");
    MemIniFile ini;
    ASSERT_EQ(ini.LoadIniFile(path.c_str(), &variables), kOk);
    EXPECT_EQ(ini.Value("S", "K"), GetParam().loaded) << GetParam().stored;
}

INSTANTIATE_TEST_SUITE_P(
    Table, MemIniSubstitutionTest,
    testing::Values(SubstitutionCase{"%DIR%", "C:\\Data"}, SubstitutionCase{"%DIR%\\x", "C:\\Data"},
                    SubstitutionCase{"%DIR", "C:\\Data"},  // no closing '%': the rest is the name
                    SubstitutionCase{"\"  %DIR%  \"", "C:\\Data"},  // quotes go, blanks then too
                    SubstitutionCase{"%dir%", "%dir%"}, SubstitutionCase{"%%DIR%", "%%DIR%"},
                    SubstitutionCase{"%NONE%", "%NONE%"}, SubstitutionCase{"x%DIR%", "x%DIR%"},
                    SubstitutionCase{"%LOOP%", "%DIR%"},  // one lookup only
                    SubstitutionCase{"%", "empty name"}, SubstitutionCase{"%%", "%%"}));

TEST(MemIniSubstitution, TrimsAndLooksUpDirectly) {
    MemIniFile ini;
    CMapStringToString variables;
    variables.SetAt("DIR", "C:\\Data");
    EXPECT_STREQ(ini.SubstituteString(&variables, " \t\r\n\v\f%DIR%\f\v\n\r\t "), "C:\\Data");
    EXPECT_STREQ(ini.SubstituteString(&variables, "  plain  "), "plain");
    EXPECT_STREQ(ini.SubstituteString(nullptr, " %DIR% "), "%DIR%");
    EXPECT_STREQ(ini.SubstituteString(&variables, nullptr), "");
}

TEST(MemIniSubstitution, KeyNamesAreSubstitutedToo) {
    const std::string path = zq::test::MakeScratchFolder("subst") + "/t.ini";
    ASSERT_TRUE(WriteFileBytes(path, "[S]\r\n%DIR%=here\r\nOther=%DIR%\r\n"));
    CMapStringToString variables;
    variables.SetAt("DIR", "C:\\Data");
    MemIniFile ini;
    ASSERT_EQ(ini.LoadIniFile(path.c_str(), &variables), kOk);
    EXPECT_EQ(ini.KeyOrder("S"), (std::vector<std::string>{"C:\\Data", "Other"}));
    EXPECT_EQ(ini.Value("S", "C:\\Data"), "here");
    EXPECT_EQ(ini.Value("S", "Other"), "C:\\Data");
}

// ---- Memory operations ------------------------------------------------------

TEST(MemIniValues, NumbersAreStoredAsTheirDecimalText) {
    MemIniFile ini;
    EXPECT_EQ(ini.SetIniValue("S", "Int", -5), kOk);
    EXPECT_EQ(ini.SetIniValue("S", "Max", static_cast<DWORD>(4294967295u)), kOk);
    EXPECT_EQ(ini.SetIniValue("S", "High", static_cast<DWORD>(2147483648u)), kOk);
    EXPECT_EQ(ini.SetIniValue("S", "Low", static_cast<DWORD>(7)), kOk);
    EXPECT_EQ(ini.Value("S", "Int"), "-5");
    EXPECT_EQ(ini.Value("S", "Max"), "-1");  // stored as a signed number
    EXPECT_EQ(ini.Value("S", "High"), "-2147483648");
    EXPECT_EQ(ini.Value("S", "Low"), "7");
}

TEST(MemIniValues, SettingAgainReplacesTheValueAndRepeatsTheKey) {
    MemIniFile ini;
    ini.SetIniValue("S", "K", "1");
    ini.SetIniValue("S", "J", "2");
    ini.SetIniValue("S", "K", "3");
    ini.SetIniValue("T", "K", "4");
    EXPECT_EQ(ini.KeyOrder("S"), (std::vector<std::string>{"K", "J", "K"}));
    EXPECT_EQ(ini.Value("S", "K"), "3");
    EXPECT_EQ(ini.SectionOrder(), (std::vector<std::string>{"S", "T"}));

    // A delete removes the value and the first place only.
    EXPECT_EQ(ini.DeleteIniKey("S", "K"), kOk);
    EXPECT_EQ(ini.KeyOrder("S"), (std::vector<std::string>{"J", "K"}));
    CString value("same");
    EXPECT_EQ(ini.GetIniValue("S", "K", value), kMissing);
    EXPECT_EQ(ini.DeleteIniKey("S", "Nothing"), kOk);
    EXPECT_EQ(ini.DeleteIniKey("None", "K"), kNoSuchSection);

    EXPECT_EQ(ini.DeleteIniSection("S"), kOk);
    EXPECT_EQ(ini.DeleteIniSection("S"), kNoSuchSection);
    EXPECT_EQ(ini.GetIniValue("S", "J", value), kNoSuchSection);
    EXPECT_STREQ(value, "same");
    ini.SetIniValue("S", "New", "5");  // a new section goes to the end
    EXPECT_EQ(ini.SectionOrder(), (std::vector<std::string>{"T", "S"}));

    ini.CleanupAllMaps();
    EXPECT_EQ(ini.SectionCount(), 0);
    EXPECT_EQ(ini.SectionOrder(), std::vector<std::string>{});
}

TEST(MemIniValues, MissingNamesAreRefusedAndChangeNothing) {
    MemIniFile ini;
    ini.SetIniValue("S", "K", "v");
    CString value("same");
    EXPECT_EQ(ini.SetIniValue(nullptr, "K", "v"), 4u);
    EXPECT_EQ(ini.SetIniValue("S", nullptr, "v"), 6u);
    EXPECT_EQ(ini.SetIniValue("S", "K", static_cast<const char*>(nullptr)), 8u);
    EXPECT_EQ(ini.GetIniValue(nullptr, "K", value), 4u);
    EXPECT_EQ(ini.GetIniValue("S", nullptr, value), 6u);
    EXPECT_EQ(ini.DeleteIniSection(nullptr), 4u);
    EXPECT_EQ(ini.DeleteIniKey(nullptr, "K"), 4u);
    EXPECT_EQ(ini.DeleteIniKey("S", nullptr), 6u);
    EXPECT_STREQ(value, "same");
    EXPECT_EQ(ini.SectionOrder(), std::vector<std::string>{"S"});
    EXPECT_EQ(ini.KeyOrder("S"), std::vector<std::string>{"K"});
    EXPECT_EQ(ini.Value("S", "K"), "v");
}

// ---- Saving -------------------------------------------------------------

TEST_F(MemIniFileTest, SaveWritesEveryPlaceInTheKeyOrder) {
    Store("");
    ASSERT_EQ(ini_.SetFileName(path_.c_str()), kOk);
    ini_.SetIniValue("S", "K", "1");
    ini_.SetIniValue("S", "K", "1");
    EXPECT_EQ(ini_.SaveIniFile(0), kOk);
    using Writes = std::vector<std::pair<std::string, std::string>>;
    EXPECT_EQ(ini_.writes, (Writes{{"K", "1"}, {"K", "1"}}));
    EXPECT_EQ(Bytes(), "[S]\r\nK=1\r\n");

    // After the delete both places are skipped: one lost its name, the
    // other its value.
    ini_.writes.clear();
    EXPECT_EQ(ini_.DeleteIniKey("S", "K"), kOk);
    EXPECT_EQ(ini_.SaveIniFile(0), kOk);
    EXPECT_EQ(ini_.writes, Writes{});
}

TEST_F(MemIniFileTest, SaveNeverRemovesFromTheFile) {
    Store("; keep me\r\n[Gone]\r\nA=1\r\n[Stay]\r\nB=2\r\nC=3\r\n");
    ASSERT_EQ(ini_.LoadIniFile(path_.c_str(), nullptr), kOk);
    EXPECT_EQ(ini_.DeleteIniSection("Gone"), kOk);
    EXPECT_EQ(ini_.DeleteIniKey("Stay", "C"), kOk);
    ini_.SetIniValue("Stay", "B", "two");
    EXPECT_EQ(ini_.SaveIniFile(0), kOk);
    EXPECT_EQ(Bytes(), "; keep me\r\n[Gone]\r\nA=1\r\n[Stay]\r\nB=two\r\nC=3\r\n");
    // Removing it from the disk is the inherited operations' job.
    ini_.DeleteSection("Gone");
    EXPECT_EQ(Bytes(), "; keep me\r\n[Stay]\r\nB=two\r\nC=3\r\n");
}

TEST_F(MemIniFileTest, SaveSkipsWhatOneEntryCannotHoldAndKeepsTheFileEntry) {
    Store("[S]\r\nBig=old\r\n");
    ASSERT_EQ(ini_.LoadIniFile(path_.c_str(), nullptr), kOk);
    ini_.SetIniValue("S", "Big", std::string(4097, 'b').c_str());
    ini_.SetIniValue("S", std::string(256, 'k').c_str(), "x");
    ini_.SetIniValue("S", "", "empty key");
    ini_.SetIniValue(std::string(1024, 's').c_str(), "K", "x");
    ini_.SetIniValue("S", "Fits", std::string(4096, 'f').c_str());
    EXPECT_EQ(ini_.SaveIniFile(0), kOk);
    EXPECT_EQ(Bytes(), "[S]\r\nBig=old\r\nFits=" + std::string(4096, 'f') + "\r\n");
    // Memory still holds everything.
    EXPECT_EQ(ini_.Value("S", "Big"), std::string(4097, 'b'));
}

TEST_F(MemIniFileTest, RefusedWritesAreIgnoredAndUncreatableFilesReported) {
    if (zq::test::RunningAsRoot()) {
        GTEST_SKIP() << "permission bits do not stop the superuser";
    }
    Store("[S]\r\nK=old\r\n");
    ASSERT_EQ(ini_.LoadIniFile(path_.c_str(), nullptr), kOk);
    ini_.SetIniValue("S", "K", "new");
    ASSERT_TRUE(zq::test::SetFileMode(path_, 0444));
    EXPECT_EQ(ini_.SaveIniFile(0), kOk);
    EXPECT_EQ(Bytes(), "[S]\r\nK=old\r\n");
    ASSERT_TRUE(zq::test::SetFileMode(path_, 0644));

    const std::string locked = zq::test::MakeScratchFolder("locked");
    ASSERT_TRUE(zq::test::SetFileMode(locked, 0555));
    MemIniFile other;
    ASSERT_EQ(other.SetFileName((locked + "/new.ini").c_str()), kOk);
    other.SetIniValue("S", "K", "v");
    EXPECT_EQ(other.SaveIniFile(1), kNoFileName);
    EXPECT_EQ(ReadFileBytes(locked + "/new.ini"), "");
    ASSERT_TRUE(zq::test::SetFileMode(locked, 0755));
}

// A save and a load through the profile engine give back every value, also
// for a file made from a template with variables.
TEST_F(MemIniFileTest, RoundTripThroughTheProfileEngine) {
    Store("[Paths]\r\nData=%DATA%\r\nTemp=%TEMP%\\sub\r\nFixed=C:\\x\r\n[Numbers]\r\nN=1\r\n");
    CMapStringToString variables;
    variables.SetAt("DATA", "D:\\Mirkel\\Data");
    variables.SetAt("TEMP", "C:\\Temp");
    ASSERT_EQ(ini_.LoadIniFile(path_.c_str(), &variables), kOk);
    ini_.SetIniValue("Numbers", "Negative", -42);
    ini_.SetIniValue("Numbers", "Unsigned", static_cast<DWORD>(4000000000u));
    ini_.SetIniValue("Texts", "Spaces", "a  b");
    ini_.SetIniValue("Texts", "Eq", "x=y;z");

    const std::string copy = folder_ + "/copy.ini";
    ASSERT_EQ(ini_.SetFileName(copy.c_str()), kOk);
    ASSERT_EQ(ini_.SaveIniFile(1), kOk);
    EXPECT_EQ(ReadFileBytes(copy),
              "[Paths]\r\nData=D:\\Mirkel\\Data\r\nTemp=C:\\Temp\r\nFixed=C:\\x\r\n"
              "[Numbers]\r\nN=1\r\nNegative=-42\r\nUnsigned=-294967296\r\n"
              "[Texts]\r\nSpaces=a  b\r\nEq=x=y;z\r\n");

    MemIniFile loaded;
    ASSERT_EQ(loaded.LoadIniFile(copy.c_str(), nullptr), kOk);
    EXPECT_EQ(loaded.SectionOrder(), ini_.SectionOrder());
    for (const std::string& section : ini_.SectionOrder()) {
        EXPECT_EQ(loaded.KeyOrder(section.c_str()), ini_.KeyOrder(section.c_str()));
        for (const std::string& key : ini_.KeyOrder(section.c_str())) {
            EXPECT_EQ(loaded.Value(section.c_str(), key.c_str()),
                      ini_.Value(section.c_str(), key.c_str()));
        }
    }
    // The numbers read back through the typed entries as they were set.
    CZqIniFile typed;
    typed.SetFileName(copy.c_str());
    typed.SetSection("Numbers");
    int n = 0;
    DWORD dw = 0;
    EXPECT_EQ(typed.DoInteger("Negative", TRUE, 0, &n), kOk);
    EXPECT_EQ(n, -42);
    EXPECT_EQ(typed.DoLongWord("Unsigned", TRUE, 0, &dw), kOk);
    EXPECT_EQ(dw, 4000000000u);
}

}  // namespace
