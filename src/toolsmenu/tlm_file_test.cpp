#include "toolsmenu/tlm_file.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "frame/process_data.h"
#include "framework/files/cfile.h"
#include "support/test_support.h"

namespace {

DWORD GetDword(const std::string& bytes, size_t at) {
    DWORD value = 0;
    for (int i = 3; i >= 0; --i) {
        value = value << 8 | static_cast<unsigned char>(bytes[at + static_cast<size_t>(i)]);
    }
    return value;
}

void PutDword(std::string* bytes, size_t at, DWORD value) {
    for (int i = 0; i < 4; ++i) {
        (*bytes)[at + static_cast<size_t>(i)] = static_cast<char>(value >> (8 * i));
    }
}

std::string Header() {
    std::string bytes(TLMFILE_HEADER_SIZE, '\0');
    PutDword(&bytes, 0, TLMFILE_HEADER_SIZE);
    PutDword(&bytes, 4, TLMFILE_MAGIC);
    PutDword(&bytes, 8, TLMFILE_VERSION);
    std::memcpy(&bytes[16], "My tools", 8);
    return bytes;
}

std::string Record(DWORD flags, const char* text) {
    CTlmItem item;
    item.SetDataFlags(flags);
    item.SetDataMenuText(text);
    const auto& data = item.GetItemData();
    return std::string(reinterpret_cast<const char*>(&data), sizeof data);
}

void FreeItems(CObArray& items) {
    for (int i = 0; i < items.GetSize(); ++i) {
        delete items.GetAt(i);
    }
    items.RemoveAll();
}

CTlmItem* ItemAt(const CObArray& items, int i) {
    return static_cast<CTlmItem*>(items.GetAt(i));
}

class TlmFileTest : public testing::Test {
protected:
    void SetUp() override { folder_ = zq::test::MakeScratchFolder("tlm"); }
    std::string Path(const char* name) { return folder_ + "/" + name; }
    std::string Write(const char* name, const std::string& bytes) {
        std::string path = Path(name);
        EXPECT_TRUE(zq::test::WriteFileBytes(path, bytes));
        return path;
    }
    std::string folder_;
};

TEST_F(TlmFileTest, ItemDefaults) {
    CTlmItem item;
    const TLMITEMDATA& d = item.GetItemData();
    EXPECT_EQ(d.dwSize, TLMITEM_RECORD_SIZE);
    EXPECT_EQ(d.dwFlags, TLMITEM_FLAG_SHOWN);
    EXPECT_EQ(d.dwCreationFlags, 0x04000020u);
    EXPECT_EQ(d.dwStartupFlags, 1u);
    EXPECT_EQ(d.dwX, 16u);
    EXPECT_EQ(d.dwY, 16u);
    EXPECT_EQ(d.dwXSize, static_cast<DWORD>(GetSystemMetrics(SM_CXSCREEN) / 2));
    EXPECT_EQ(d.dwYSize, static_cast<DWORD>(GetSystemMetrics(SM_CYSCREEN) / 2));
    EXPECT_EQ(d.dwXCountChars, 80u);
    EXPECT_EQ(d.dwYCountChars, 25u);
    EXPECT_EQ(d.dwFillAttribute, 15u);
    EXPECT_EQ(d.dwShowWindow, 10u);
    EXPECT_EQ(item.GetCommand(), 0u);
    EXPECT_TRUE(item.GetDataProgramPath().IsEmpty());
    for (BYTE b : d.byUnused) {
        ASSERT_EQ(b, 0);
    }
}

TEST_F(TlmFileTest, DefaultMenuTextComesFromTheLanguageModule) {
    ZqGblProcessData* block = ZqGblGetProcessData();
    ASSERT_NE(block, nullptr);
    HMODULE language = LoadLibraryA("ZQGBLENU.DLL");
    if (language == nullptr) {
        GTEST_SKIP() << "the English language module is not built";
    }
    HINSTANCE previous = block->m_hLanguageModule;
    block->m_hLanguageModule = language;
    CTlmItem item;
    EXPECT_EQ(item.GetDataMenuText(), "New Tool");
    block->m_hLanguageModule = previous;
    FreeLibrary(language);
}

struct SetterCase {
    size_t field;
    size_t length;
    size_t kept;
    DWORD status;
};

class TlmSetterRule : public testing::TestWithParam<SetterCase> {};

TEST_P(TlmSetterRule, KeepsFieldSizeMinusTwoAndReportsOnlyFullLength) {
    const SetterCase& c = GetParam();
    std::string text(c.length, 'x');
    CTlmItem item;
    DWORD (CTlmItem::*set)(LPCSTR) = nullptr;
    CString (CTlmItem::*get)() const = nullptr;
    switch (c.field) {
        case 32:
            set = &CTlmItem::SetDataMenuText;
            get = &CTlmItem::GetDataMenuText;
            break;
        case 128:
            set = &CTlmItem::SetDataDescription;
            get = &CTlmItem::GetDataDescription;
            break;
        default:
            set = &CTlmItem::SetDataArguments;
            get = &CTlmItem::GetDataArguments;
            break;
    }
    EXPECT_EQ((item.*set)(text.c_str()), c.status);
    EXPECT_EQ(static_cast<size_t>((item.*get)().GetLength()), c.kept);
    EXPECT_EQ((item.*set)(nullptr), 0u);  // changes nothing
    EXPECT_EQ(static_cast<size_t>((item.*get)().GetLength()), c.kept);
}

INSTANTIATE_TEST_SUITE_P(Fields, TlmSetterRule,
                         testing::Values(SetterCase{32, 0, 0, 0}, SetterCase{32, 30, 30, 0},
                                         SetterCase{32, 31, 30, 0}, SetterCase{32, 32, 30, 8},
                                         SetterCase{32, 500, 30, 8}, SetterCase{128, 127, 126, 0},
                                         SetterCase{128, 128, 126, 8}, SetterCase{264, 263, 262, 0},
                                         SetterCase{264, 264, 262, 8}));

TEST_F(TlmFileTest, FileDescriptionFollowsTheSameRule) {
    CTlmFile file;
    EXPECT_EQ(file.SetDescription(std::string(127, 'd').c_str()), 0u);
    EXPECT_EQ(file.GetDescription().GetLength(), 126);
    EXPECT_EQ(file.SetDescription(std::string(128, 'd').c_str()), TLM_ERROR_TOO_LONG);
    EXPECT_EQ(file.SetDescription("short"), 0u);
    EXPECT_EQ(file.GetDescription(), "short");
}

TEST_F(TlmFileTest, ItemRecordsRoundTripAndGetTheirSize) {
    CTlmItem item;
    TLMITEMDATA data = item.GetItemData();
    data.dwSize = 0;
    std::memset(data.byUnused, 0x5A, sizeof data.byUnused);
    item.SetItemData(data);
    item.SetDataProgramPath("C:\\Program Files\\Tool\\tool.exe");
    item.SetDataArguments("\"a b\" c");
    std::string path = Path("one.bin");
    {
        CFile file(path.c_str(), CFile::modeCreate | CFile::modeWrite);
        EXPECT_EQ(item.SaveItemData(&file, TLMITEM_VERSION, 1535), TLM_ERROR_VERSION);
        EXPECT_EQ(item.SaveItemData(&file, 0x00010001, TLMITEM_RECORD_SIZE), TLM_ERROR_VERSION);
        EXPECT_EQ(item.SaveItemData(&file, TLMITEM_VERSION, TLMITEM_RECORD_SIZE), 0u);
    }
    std::string bytes = zq::test::ReadFileBytes(path);
    ASSERT_EQ(bytes.size(), TLMITEM_RECORD_SIZE);
    EXPECT_EQ(GetDword(bytes, 0), TLMITEM_RECORD_SIZE);
    CTlmItem loaded;
    CFile file(path.c_str(), CFile::modeRead);
    EXPECT_EQ(loaded.LoadItemData(&file, TLMITEM_VERSION, 1537), TLM_ERROR_VERSION);
    ASSERT_EQ(loaded.LoadItemData(&file, TLMITEM_VERSION, TLMITEM_RECORD_SIZE), 0u);
    EXPECT_EQ(std::memcmp(&loaded.GetItemData(), bytes.data(), TLMITEM_RECORD_SIZE), 0);
    // Nothing left in the file: a partial record is not taken.
    EXPECT_EQ(loaded.LoadItemData(&file, TLMITEM_VERSION, TLMITEM_RECORD_SIZE), TLM_ERROR_VERSION);
    EXPECT_EQ(loaded.GetDataArguments(), "\"a b\" c");
}

TEST_F(TlmFileTest, HeaderOnlyAndPartialRecordsLoadNoItems) {
    CTlmFile file;
    CObArray items;
    EXPECT_EQ(file.LoadFileData(Write("h.tlm", Header()).c_str(), TLMFILE_VERSION,
                                TLMFILE_HEADER_SIZE, items, 0),
              0u);
    EXPECT_EQ(items.GetSize(), 0);
    EXPECT_EQ(file.GetDescription(), "My tools");
    std::string partial = Header() + Record(4, "x").substr(0, 1535);
    EXPECT_EQ(file.LoadFileData(Write("p.tlm", partial).c_str(), TLMFILE_VERSION,
                                TLMFILE_HEADER_SIZE, items, 0),
              0u);
    EXPECT_EQ(items.GetSize(), 0);
}

TEST_F(TlmFileTest, FilterKeepsShownItemsAndNumbersThemDownward) {
    std::string path = Write(
        "three.tlm", Header() + Record(4, "one") + Record(1 | 8, "two") + Record(4 | 2, "three"));
    CTlmFile file;
    CObArray all;
    ASSERT_EQ(file.LoadFileData(path.c_str(), TLMFILE_VERSION, TLMFILE_HEADER_SIZE, all, 0), 0u);
    ASSERT_EQ(all.GetSize(), 3);
    EXPECT_EQ(ItemAt(all, 1)->GetDataMenuText(), "two");
    EXPECT_EQ(ItemAt(all, 1)->GetCommand(), 0u);
    CObArray shown;
    ASSERT_EQ(file.LoadFileData(path.c_str(), TLMFILE_VERSION, TLMFILE_HEADER_SIZE, shown,
                                TLMFILE_FILTER_SHOWN),
              0u);
    ASSERT_EQ(shown.GetSize(), 2);
    EXPECT_EQ(ItemAt(shown, 0)->GetDataMenuText(), "one");
    EXPECT_EQ(ItemAt(shown, 0)->GetCommand(), 24553u);
    EXPECT_EQ(ItemAt(shown, 1)->GetDataMenuText(), "three");
    EXPECT_EQ(ItemAt(shown, 1)->GetCommand(), 24552u);
    FreeItems(all);
    FreeItems(shown);
}

TEST_F(TlmFileTest, UnterminatedTextsStayInsideTheirFields) {
    std::string record = Record(4, "x");
    std::memset(&record[56], 'M', 32);
    std::memset(&record[88], 'D', 128);
    std::memset(&record[216], 'P', 264 * 3);  // path, folder, arguments
    std::string header = Header();
    std::memset(&header[16], 'H', 128);
    CTlmFile file;
    CObArray items;
    ASSERT_EQ(file.LoadFileData(Write("u.tlm", header + record).c_str(), TLMFILE_VERSION,
                                TLMFILE_HEADER_SIZE, items, 0),
              0u);
    CTlmItem* item = ItemAt(items, 0);
    EXPECT_EQ(item->GetDataMenuText(), std::string(32, 'M').c_str());
    EXPECT_EQ(item->GetDataDescription(), std::string(128, 'D').c_str());
    EXPECT_EQ(item->GetDataProgramPath().GetLength(), 264);
    EXPECT_EQ(item->GetDataWorkingDirectory().GetLength(), 264);
    EXPECT_EQ(item->GetDataArguments().GetLength(), 264);
    EXPECT_EQ(file.GetDescription(), std::string(128, 'H').c_str());
    FreeItems(items);
}

TEST_F(TlmFileTest, LoadRefusesWrongArgumentsAndHeaders) {
    CTlmFile file;
    CObArray items;
    std::string good = Write("g.tlm", Header() + Record(4, "a"));
    EXPECT_EQ(file.LoadFileData(good.c_str(), 0x00010001, TLMFILE_HEADER_SIZE, items, 0),
              TLM_ERROR_VERSION);
    EXPECT_EQ(file.LoadFileData(good.c_str(), TLMFILE_VERSION, 145, items, 0), TLM_ERROR_VERSION);
    EXPECT_EQ(file.LoadFileData(nullptr, TLMFILE_VERSION, TLMFILE_HEADER_SIZE, items, 0),
              TLM_ERROR_NO_PATH);
    EXPECT_EQ(
        file.LoadFileData(Path("none.tlm").c_str(), TLMFILE_VERSION, TLMFILE_HEADER_SIZE, items, 0),
        TLM_ERROR_OPEN);
    for (size_t field : {0u, 4u, 8u}) {
        std::string header = Header();
        PutDword(&header, field, 1);
        EXPECT_EQ(file.LoadFileData(Write("bad.tlm", header + Record(4, "a")).c_str(),
                                    TLMFILE_VERSION, TLMFILE_HEADER_SIZE, items, 0),
                  TLM_ERROR_VERSION);
    }
    EXPECT_EQ(file.LoadFileData(Write("short.tlm", Header().substr(0, 100)).c_str(),
                                TLMFILE_VERSION, TLMFILE_HEADER_SIZE, items, 0),
              TLM_ERROR_VERSION);
    EXPECT_EQ(items.GetSize(), 0);
}

struct CheckCase {
    const char* name;
    size_t size;
    DWORD header_size;
    DWORD magic;
    DWORD version;
    DWORD expected;
};

class TlmValidity : public TlmFileTest, public testing::WithParamInterface<CheckCase> {};

TEST_P(TlmValidity, StatusInCheckOrder) {
    const CheckCase& c = GetParam();
    std::string bytes = Header() + Record(4, "a");
    PutDword(&bytes, 0, c.header_size);
    PutDword(&bytes, 4, c.magic);
    PutDword(&bytes, 8, c.version);
    bytes.resize(c.size);
    EXPECT_EQ(CTlmFile::IsValidFile(Write("v.tlm", bytes).c_str()), c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Files, TlmValidity,
    testing::Values(CheckCase{"valid", 144 + 1536, 144, TLMFILE_MAGIC, TLMFILE_VERSION, 0},
                    CheckCase{"header_only", 144, 144, TLMFILE_MAGIC, TLMFILE_VERSION, 0},
                    CheckCase{"partial_record", 200, 144, TLMFILE_MAGIC, TLMFILE_VERSION, 0},
                    CheckCase{"short", 143, 144, TLMFILE_MAGIC, TLMFILE_VERSION, 16},
                    CheckCase{"empty", 0, 144, TLMFILE_MAGIC, TLMFILE_VERSION, 16},
                    CheckCase{"header_size", 144, 145, 0, 0, 18},
                    CheckCase{"magic", 144, 144, 0x19950528, 0, 19},
                    CheckCase{"newer", 144, 144, TLMFILE_MAGIC, 0x00010001, 20},
                    CheckCase{"older", 144, 144, TLMFILE_MAGIC, 0x00000100, 20}),
    [](const testing::TestParamInfo<CheckCase>& info) { return info.param.name; });

TEST_F(TlmFileTest, ValidityOfMissingPaths) {
    EXPECT_EQ(CTlmFile::IsValidFile(nullptr), TLM_ERROR_NO_PATH);
    EXPECT_EQ(CTlmFile::IsValidFile(""), TLM_ERROR_NO_PATH);
    EXPECT_EQ(CTlmFile::IsValidFile(Path("none.tlm").c_str()), TLM_ERROR_OPEN);
    EXPECT_EQ(CTlmFile::IsValidFile(folder_.c_str()), TLM_ERROR_OPEN);
}

TEST_F(TlmFileTest, SavedFileReadsBackByteForByte) {
    std::string original = Header() + Record(4, "one") + Record(1, "two") + Record(4 | 8, "three");
    PutDword(&original, 144 + 1536, 0);  // a record size the save rewrites
    std::string path = Write("orig.tlm", original);
    CTlmFile file;
    CObArray items;
    ASSERT_EQ(file.LoadFileData(path.c_str(), TLMFILE_VERSION, TLMFILE_HEADER_SIZE, items, 0), 0u);
    std::string saved_path = Path("saved.tlm");
    items.Add(nullptr);  // skipped
    ASSERT_EQ(file.SaveFileData(saved_path.c_str(), TLMFILE_VERSION, TLMFILE_HEADER_SIZE, items),
              0u);
    std::string saved = zq::test::ReadFileBytes(saved_path);
    std::string expected = original;
    PutDword(&expected, 144 + 1536, TLMITEM_RECORD_SIZE);
    EXPECT_EQ(saved, expected);
    // And once more through a fresh object.
    CTlmFile again;
    CObArray reloaded;
    ASSERT_EQ(
        again.LoadFileData(saved_path.c_str(), TLMFILE_VERSION, TLMFILE_HEADER_SIZE, reloaded, 0),
        0u);
    std::string resaved_path = Path("resaved.tlm");
    ASSERT_EQ(
        again.SaveFileData(resaved_path.c_str(), TLMFILE_VERSION, TLMFILE_HEADER_SIZE, reloaded),
        0u);
    EXPECT_EQ(zq::test::ReadFileBytes(resaved_path), saved);
    FreeItems(items);
    FreeItems(reloaded);
}

TEST_F(TlmFileTest, NewFileHasTheHeaderLayout) {
    CTlmFile file;
    file.SetDescription("Mine");
    CObArray items;
    std::string path = Path("new.tlm");
    ASSERT_EQ(file.SaveFileData(path.c_str(), TLMFILE_VERSION, TLMFILE_HEADER_SIZE, items), 0u);
    std::string bytes = zq::test::ReadFileBytes(path);
    ASSERT_EQ(bytes.size(), TLMFILE_HEADER_SIZE);
    EXPECT_EQ(GetDword(bytes, 0), 144u);
    EXPECT_EQ(GetDword(bytes, 4), 0x19950527u);
    EXPECT_EQ(GetDword(bytes, 8), 0x00010000u);
    EXPECT_EQ(GetDword(bytes, 12), 0u);
    EXPECT_EQ(bytes.substr(16), std::string("Mine") + std::string(124, '\0'));
}

// An item whose save fails with a chosen status.
class FailingItem : public CTlmItem {
public:
    explicit FailingItem(DWORD status) : status_(status) {}
    DWORD SaveItemData(CFile*, DWORD, DWORD) override { return status_; }

private:
    DWORD status_;
};

class TlmSaveFailure : public TlmFileTest, public testing::WithParamInterface<DWORD> {};

TEST_P(TlmSaveFailure, HalfWrittenFileIsDeletedExceptForFourAndFive) {
    DWORD status = GetParam();
    CTlmFile file;
    CObArray items;
    CTlmItem good;
    FailingItem bad(status);
    CTlmItem never;
    never.SetDataMenuText("never");
    items.Add(&good);
    items.Add(&bad);
    items.Add(&never);
    std::string path = Path("half.tlm");
    EXPECT_EQ(file.SaveFileData(path.c_str(), TLMFILE_VERSION, TLMFILE_HEADER_SIZE, items), status);
    bool kept = GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
    EXPECT_EQ(kept, status == 4 || status == 5);
    if (kept) {  // header and the first item, the rest not written
        EXPECT_EQ(zq::test::ReadFileBytes(path).size(), TLMFILE_HEADER_SIZE + TLMITEM_RECORD_SIZE);
    }
}

INSTANTIATE_TEST_SUITE_P(Statuses, TlmSaveFailure, testing::Values(1u, 2u, 3u, 4u, 5u, 6u, 11u));

TEST_F(TlmFileTest, SaveRefusesWrongArgumentsWithoutTouchingTheFile) {
    CTlmFile file;
    CObArray items;
    std::string path = Write("keep.tlm", "untouched");
    EXPECT_EQ(file.SaveFileData(path.c_str(), 0x00020000, TLMFILE_HEADER_SIZE, items),
              TLM_ERROR_VERSION);
    EXPECT_EQ(file.SaveFileData(path.c_str(), TLMFILE_VERSION, 143, items), TLM_ERROR_VERSION);
    EXPECT_EQ(zq::test::ReadFileBytes(path), "untouched");
    EXPECT_EQ(file.SaveFileData(nullptr, TLMFILE_VERSION, TLMFILE_HEADER_SIZE, items),
              TLM_ERROR_NO_PATH);
    EXPECT_EQ(file.SaveFileData(Path("no/such/dir.tlm").c_str(), TLMFILE_VERSION,
                                TLMFILE_HEADER_SIZE, items),
              TLM_ERROR_OPEN);
}

TEST_F(TlmFileTest, SelectFileDialogIsNotThereYet) {
    char buffer[MAX_PATH] = "unchanged";
    EXPECT_EQ(ZqTlmSelectFile(buffer, TRUE, nullptr, 0), 2);
    EXPECT_STREQ(buffer, "unchanged");
    EXPECT_EQ(ZqTlmSelectFile(nullptr, FALSE, nullptr, 0), 2);
}

}  // namespace
