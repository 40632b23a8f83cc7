#include "settings/regedit4.h"

#include <gtest/gtest.h>

#include <map>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "platform/win32.h"
#include "support/test_support.h"

namespace {

// A string literal with every byte written in it, NULs included.
template <size_t N>
std::string Lit(const char (&text)[N]) {
    return std::string(text, N - 1);
}

using zq::settings::ExportRegedit4;
using zq::settings::ExportRegedit4File;
using zq::settings::ImportRegedit4;
using zq::settings::ImportRegedit4File;
using zq::settings::Regedit4Result;
using zq::settings::Regedit4Status;
using zq::settings::SplitRegistryKeyPath;

LONG DeleteTree(HKEY parent, const char* name) {
    HKEY key = nullptr;
    LONG rc = RegOpenKeyExA(parent, name, 0, KEY_ALL_ACCESS, &key);
    if (rc != ERROR_SUCCESS) {
        return rc;
    }
    char child[300];
    while (RegEnumKeyA(key, 0, child, sizeof child) == ERROR_SUCCESS &&
           DeleteTree(key, child) == ERROR_SUCCESS) {
    }
    RegCloseKey(key);
    return RegDeleteKeyA(parent, name);
}

// Every value below a key: "sub\path|name" -> (type, bytes), keys without
// values as "sub\path|" -> (-1, "").
using Snapshot = std::map<std::string, std::pair<long, std::string>>;

void TakeSnapshot(HKEY key, const std::string& path, Snapshot& out) {
    out[path + "|"] = {-1, ""};
    char name[400];
    BYTE data[4096];
    for (DWORD i = 0;; ++i) {
        DWORD name_size = sizeof name;
        DWORD data_size = sizeof data;
        DWORD type = 0;
        if (RegEnumValueA(key, i, name, &name_size, nullptr, &type, data, &data_size) !=
            ERROR_SUCCESS)
            break;
        out[path + "|" + std::string(name, name_size)] = {
            static_cast<long>(type), std::string(reinterpret_cast<char*>(data), data_size)};
    }
    for (DWORD i = 0; RegEnumKeyA(key, i, name, sizeof name) == ERROR_SUCCESS; ++i) {
        HKEY child = nullptr;
        ASSERT_EQ(RegOpenKeyExA(key, name, 0, KEY_READ, &child), ERROR_SUCCESS);
        TakeSnapshot(child, path + "\\" + name, out);
        RegCloseKey(child);
    }
}

class Regedit4Test : public ::testing::Test {
protected:
    void SetUp() override {
        sub_ = std::string("Software\\ZqRegedit4Test\\") +
               ::testing::UnitTest::GetInstance()->current_test_info()->name();
        path_ = "HKEY_CURRENT_USER\\" + sub_;
        DeleteTree(HKEY_CURRENT_USER, sub_.c_str());
        ASSERT_EQ(RegCreateKeyA(HKEY_CURRENT_USER, sub_.c_str(), &root_), ERROR_SUCCESS);
    }
    void TearDown() override {
        RegCloseKey(root_);
        DeleteTree(HKEY_CURRENT_USER, sub_.c_str());
    }

    void Set(HKEY key, const char* name, DWORD type, std::string_view data) {
        std::string buffer(data);
        buffer += '\xFF';  // no terminator for the registry to pick up
        ASSERT_EQ(RegSetValueExA(key, name, 0, type, reinterpret_cast<const BYTE*>(buffer.data()),
                                 static_cast<DWORD>(data.size())),
                  ERROR_SUCCESS);
    }
    HKEY Key(const char* name) {
        HKEY key = nullptr;
        EXPECT_EQ(RegCreateKeyA(root_, name, &key), ERROR_SUCCESS);
        return key;
    }
    std::string Export(const std::string& path) {
        std::string text;
        Regedit4Result result = ExportRegedit4(path, text);
        EXPECT_TRUE(result.ok()) << static_cast<int>(result.status) << " " << result.error;
        return text;
    }
    Snapshot Take() {
        Snapshot snapshot;
        TakeSnapshot(root_, "", snapshot);
        return snapshot;
    }

    std::string sub_;
    std::string path_;
    HKEY root_ = nullptr;
};

std::string Bytes(unsigned first, unsigned count) {
    std::string out;
    for (unsigned i = 0; i < count; ++i)
        out += static_cast<char>(first + i);
    return out;
}

TEST_F(Regedit4Test, ExportWritesTheRegistryEditorLayout) {
    Set(root_, nullptr, REG_SZ, Lit("default\0"));
    Set(root_, "Quote\"and\\slash", REG_SZ, Lit("say \"hi\" C:\\dir\0"));
    Set(root_, "Number", REG_DWORD, Lit("\x2a\0\0\0"));
    Set(root_, "Settings", REG_BINARY, Bytes(0, 40));
    Set(root_, "Path", REG_EXPAND_SZ, Lit("%TEMP%\0"));
    Set(root_, "List", REG_MULTI_SZ, Lit("a\0bc\0\0"));
    Set(root_, "NoTerm", REG_SZ, "abc");
    Set(root_, "Empty", REG_SZ, "");
    Set(root_, "Lines", REG_SZ, Lit("a\r\nb\0"));
    Set(root_, "Short", REG_DWORD, "\x01\x02");
    Set(root_, "None", REG_NONE, "");
    Set(root_, "Q", REG_QWORD, "\x88\x77\x66\x55\x44\x33\x22\x11");
    for (const char* name : {"_z", "b\\Deep", "A"}) {
        RegCloseKey(Key(name));
    }
    HKEY a = Key("A");
    Set(a, "x", REG_SZ, Lit("1\0"));
    RegCloseKey(a);

    const std::string p = "[" + path_;
    EXPECT_EQ(
        Export(path_),
        "REGEDIT4\r\n"
        "\r\n" +
            p +
            "]\r\n"
            "@=\"default\"\r\n"
            "\"Quote\\\"and\\\\slash\"=\"say \\\"hi\\\" C:\\\\dir\"\r\n"
            "\"Number\"=dword:0000002a\r\n"
            "\"Settings\"=hex:00,01,02,03,04,05,06,07,08,09,0a,0b,0c,0d,0e,0f,10,11,12,13,14,\\\r\n"
            "  15,16,17,18,19,1a,1b,1c,1d,1e,1f,20,21,22,23,24,25,26,27\r\n"
            "\"Path\"=hex(2):25,54,45,4d,50,25,00\r\n"
            "\"List\"=hex(7):61,00,62,63,00,00\r\n"
            "\"NoTerm\"=hex(1):61,62,63\r\n"
            "\"Empty\"=hex(1):\r\n"
            "\"Lines\"=hex(1):61,0d,0a,62,00\r\n"
            "\"Short\"=hex(4):01,02\r\n"
            "\"None\"=hex(0):\r\n"
            "\"Q\"=hex(b):88,77,66,55,44,33,22,11\r\n"
            "\r\n" +
            p +
            "\\A]\r\n"
            "\"x\"=\"1\"\r\n"
            "\r\n" +
            p +
            "\\b]\r\n"
            "\r\n" +
            p +
            "\\b\\Deep]\r\n"
            "\r\n" +
            p +
            "\\_z]\r\n"
            "\r\n");
}

TEST_F(Regedit4Test, LongHexDataWrapsBeforeColumnEighty) {
    Set(root_, "Blob", REG_BINARY, std::string(200, '\x5a'));
    std::string text = Export(path_);
    size_t start = text.find("\"Blob\"");
    ASSERT_NE(start, std::string::npos);
    std::vector<std::string> lines;
    for (size_t end; (end = text.find("\r\n", start)) != std::string::npos && end > start;
         start = end + 2) {
        lines.push_back(text.substr(start, end - start));
    }
    // 22 bytes after the 11 columns of "Blob"=hex:, then 25 per line.
    ASSERT_EQ(lines.size(), 9u);
    EXPECT_EQ(lines[0].size(), 11u + 22 * 3 + 1);
    for (size_t i = 1; i + 1 < lines.size(); ++i) {
        EXPECT_EQ(lines[i].size(), 2u + 25 * 3 + 1) << i;
        EXPECT_EQ(lines[i].substr(0, 2), "  ");
        EXPECT_EQ(lines[i].back(), '\\');
    }
    EXPECT_EQ(lines.back(), "  5a,5a,5a");
}

TEST_F(Regedit4Test, ExportImportExportGivesTheSameTextAndBytes) {
    HKEY source = Key("Source");
    Set(source, nullptr, REG_SZ, Lit("the default\0"));
    Set(source, "plain", REG_SZ, Lit("text\0"));
    Set(source, "windows-1252 \xE4\xF6\xFC\x80", REG_SZ, Lit("\xC4rger \x93quoted\x94\0"));
    Set(source, "escapes \\ \" ] = ;", REG_SZ, Lit("\\\\server\\share \"x\"\0"));
    Set(source, "no terminator", REG_SZ, "abc");
    Set(source, "inner nul", REG_SZ, Lit("ab\0cd\0"));
    Set(source, "double nul", REG_SZ, Lit("ab\0\0"));
    Set(source, "empty", REG_SZ, "");
    Set(source, "just nul", REG_SZ, Lit("\0"));
    Set(source, "expand", REG_EXPAND_SZ, Lit("%PATH%;x\0"));
    Set(source, "expand cut", REG_EXPAND_SZ, "%PATH%");
    Set(source, "multi", REG_MULTI_SZ, Lit("one\0two\0\0"));
    Set(source, "dword", REG_DWORD, "\x78\x56\x34\x12");
    Set(source, "dword odd", REG_DWORD, "\x01\x02\x03\x04\x05");
    Set(source, "big endian", REG_DWORD_BIG_ENDIAN, "\x12\x34\x56\x78");
    Set(source, "qword", REG_QWORD, "12345678");
    Set(source, "binary", REG_BINARY, Bytes(0, 256));
    Set(source, "binary empty", REG_BINARY, "");
    Set(source, "none", REG_NONE, "zz");
    Set(source, "link", REG_LINK, Lit("\\\0R\0"));
    Set(source, "custom", 0x12345678, "custom");
    HKEY deep = Key("Source\\Child\\Grand child");
    Set(deep, "n", REG_DWORD, Lit("\0\0\0\0"));
    RegCloseKey(deep);
    RegCloseKey(Key("Source\\Empty child"));
    RegCloseKey(source);

    Snapshot before = Take();
    std::string first = Export(path_ + "\\Source");
    ASSERT_EQ(DeleteTree(root_, "Source"), ERROR_SUCCESS);
    Regedit4Result result = ImportRegedit4(first);
    ASSERT_TRUE(result.ok()) << static_cast<int>(result.status) << " line " << result.line;
    EXPECT_EQ(Take(), before);
    EXPECT_EQ(Export(path_ + "\\Source"), first);
}

TEST_F(Regedit4Test, ImportAppliesKeysValuesAndDeletions) {
    HKEY doomed = Key("Doomed\\Below");
    RegCloseKey(doomed);
    HKEY kept = Key("Kept");
    Set(kept, "old", REG_SZ, Lit("x\0"));
    Set(kept, nullptr, REG_SZ, Lit("d\0"));
    RegCloseKey(kept);
    std::string short_path = "HKCU\\" + sub_;
    std::string text =
        "REGEDIT4\n"
        "; a comment\n"
        "\n"
        "[-" +
        path_ +
        "\\Doomed]\n"
        "\"ignored\"=\"after a deleted key\"\n"
        "[" +
        short_path +
        "\\\\Kept\\\\]\n"
        "  \"old\"=-\n"
        "@=-\n"
        "\"missing\"=-\n"
        "\"hex\" = hex:0A, 0b ,C,\\\n"
        "    ff\n"
        "\"num\"=dword:FF\n"
        "\"typed\"=hex(2):41,00\n"
        "\"str\"=\"back\\\\slash \\\"q\\\" \\n\"\n"
        "[" +
        path_ + "\\New\\Deeper]\n";
    Regedit4Result result = ImportRegedit4(text);
    ASSERT_TRUE(result.ok()) << static_cast<int>(result.status) << " line " << result.line;
    Snapshot expected = {
        {"|", {-1, ""}},
        {"\\Kept|", {-1, ""}},
        {"\\Kept|hex", {REG_BINARY, "\x0a\x0b\x0c\xff"}},
        {"\\Kept|num", {REG_DWORD, Lit("\xff\0\0\0")}},
        {"\\Kept|typed", {REG_EXPAND_SZ, Lit("A\0")}},
        {"\\Kept|str", {REG_SZ, Lit("back\\slash \"q\" \\n\0")}},
        {"\\New|", {-1, ""}},
        {"\\New\\Deeper|", {-1, ""}},
    };
    EXPECT_EQ(Take(), expected);
}

struct BadText {
    const char* text;
    Regedit4Status status;
    size_t line;
};

void PrintTo(const BadText& bad, std::ostream* out) {
    *out << "line " << bad.line;
}

class Regedit4BadText : public Regedit4Test, public ::testing::WithParamInterface<BadText> {};

TEST_P(Regedit4BadText, StopsWithTheLineAndWhy) {
    std::string text = GetParam().text;
    for (size_t at; (at = text.find("$")) != std::string::npos;) {
        text.replace(at, 1, path_);
    }
    Regedit4Result result = ImportRegedit4(text);
    EXPECT_EQ(result.status, GetParam().status);
    EXPECT_EQ(result.line, GetParam().line);
}

INSTANTIATE_TEST_SUITE_P(
    Lines, Regedit4BadText,
    ::testing::Values(
        BadText{"", Regedit4Status::kNotRegedit4, 1},
        BadText{"Windows Registry Editor Version 5.00\r\n", Regedit4Status::kNotRegedit4, 1},
        BadText{"REGEDIT4\r\n\"x\"=\"before any key\"\r\n", Regedit4Status::kSyntaxError, 2},
        BadText{"REGEDIT4\r\n[$]\r\n\"x\"=\"open\r\n", Regedit4Status::kSyntaxError, 3},
        BadText{"REGEDIT4\r\n[$]\r\n\"x\"=dword:123456789\r\n", Regedit4Status::kSyntaxError, 3},
        BadText{"REGEDIT4\r\n[$]\r\n\"x\"=hex:1g\r\n", Regedit4Status::kSyntaxError, 3},
        BadText{"REGEDIT4\r\n[$]\r\n\"x\"=hex(zz):00\r\n", Regedit4Status::kSyntaxError, 3},
        BadText{"REGEDIT4\r\n[$]\r\n\"x\"=word:1\r\n", Regedit4Status::kSyntaxError, 3},
        BadText{"REGEDIT4\r\n[$]\r\n\"x\" \"y\"\r\n", Regedit4Status::kSyntaxError, 3},
        BadText{"REGEDIT4\r\n[$]\r\nstray text\r\n", Regedit4Status::kSyntaxError, 3},
        BadText{"REGEDIT4\r\n\r\n[$\r\n", Regedit4Status::kSyntaxError, 3},
        BadText{"REGEDIT4\r\n[HKEY_NOWHERE\\x]\r\n", Regedit4Status::kBadKeyPath, 2},
        BadText{"REGEDIT4\r\n[-HKEY_CURRENT_USER]\r\n", Regedit4Status::kRegistryError, 2}));

TEST_F(Regedit4Test, ExportNamesWhatIsWrong) {
    std::string text;
    EXPECT_EQ(ExportRegedit4(path_ + "\\missing", text).status, Regedit4Status::kKeyNotFound);
    EXPECT_EQ(ExportRegedit4("HKEY_NOWHERE\\x", text).status, Regedit4Status::kBadKeyPath);
    EXPECT_TRUE(text.empty());
    // A root alone and a short root name are fine.
    EXPECT_EQ(ExportRegedit4("HKCU\\" + sub_ + "\\", text).status, Regedit4Status::kOk);
    EXPECT_EQ(text, "REGEDIT4\r\n\r\n[" + path_ + "]\r\n\r\n");
}

TEST(SplitRegistryKeyPath, NamesTheRootAndDropsEmptyComponents) {
    HKEY root = nullptr;
    std::string name = "untouched", sub = "untouched";
    ASSERT_TRUE(SplitRegistryKeyPath("hklm\\Software\\\\Zq\\", root, name, sub));
    EXPECT_EQ(root, HKEY_LOCAL_MACHINE);
    EXPECT_EQ(name, "HKEY_LOCAL_MACHINE");
    EXPECT_EQ(sub, "Software\\Zq");
    ASSERT_TRUE(SplitRegistryKeyPath("HKEY_USERS", root, name, sub));
    EXPECT_EQ(root, HKEY_USERS);
    EXPECT_EQ(sub, "");
    name = "untouched";
    EXPECT_FALSE(SplitRegistryKeyPath("Software\\Zq", root, name, sub));
    EXPECT_FALSE(SplitRegistryKeyPath("HKLMX\\Software", root, name, sub));
    EXPECT_EQ(name, "untouched");
}

TEST_F(Regedit4Test, FilesHoldTheTextAsBytes) {
    Set(root_, "v", REG_SZ, Lit("\xE9t\xE9\0"));
    std::string file = zq::test::MakeScratchFolder("regedit4") + "/tree.reg";
    ASSERT_TRUE(ExportRegedit4File(path_, file).ok());
    std::string text;
    ASSERT_TRUE(ExportRegedit4(path_, text).ok());
    EXPECT_EQ(zq::test::ReadFileBytes(file), text);
    ASSERT_EQ(RegDeleteValueA(root_, "v"), ERROR_SUCCESS);
    ASSERT_TRUE(ImportRegedit4File(file).ok());
    EXPECT_EQ((Take()["|v"]), (std::pair<long, std::string>{REG_SZ, Lit("\xE9t\xE9\0")}));
    EXPECT_EQ(ImportRegedit4File(file + ".missing").status, Regedit4Status::kFileError);
}

}  // namespace
