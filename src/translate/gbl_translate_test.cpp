#include "translate/gbl_translate.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "frame/process_data.h"
#include "support/test_support.h"

namespace {

void PutDword(std::string* bytes, size_t at, DWORD value) {
    for (int i = 0; i < 4; ++i) {
        (*bytes)[at + static_cast<size_t>(i)] = static_cast<char>(value >> (8 * i));
    }
}

DWORD GetDword(const std::string& bytes, size_t at) {
    DWORD value = 0;
    for (int i = 3; i >= 0; --i) {
        value = value << 8 | static_cast<unsigned char>(bytes[at + static_cast<size_t>(i)]);
    }
    return value;
}

class TranslateTest : public testing::Test {
protected:
    void SetUp() override { folder_ = zq::test::MakeScratchFolder("translate"); }
    std::string Path(const char* name) { return folder_ + "/" + name; }

    // A valid file image: identity tables, the given trailer fields.
    std::string ValidImage() {
        std::string bytes(GBLXLT_FILE_SIZE, '\0');
        for (int i = 0; i < 256; ++i) {
            bytes[static_cast<size_t>(i)] = static_cast<char>(i);
            bytes[256 + static_cast<size_t>(i)] = static_cast<char>(i);
        }
        PutDword(&bytes, 512, 96);
        PutDword(&bytes, 516, GBLXLT_MAGIC);
        PutDword(&bytes, 520, GBLXLT_VERSION);
        std::memcpy(&bytes[544], "Terminal", 8);
        return bytes;
    }

    std::string folder_;
};

TEST_F(TranslateTest, FreshTranslatorPassesEveryByte) {
    CGblTranslate t;
    for (int pass = 0; pass < 2; ++pass) {
        for (int i = 0; i < 256; ++i) {
            BYTE c = static_cast<BYTE>(i);
            ASSERT_EQ(t.DoGet(c), c);
            ASSERT_EQ(t.DoPut(c), c);
        }
        t.EnableGet(TRUE);  // the tables are the identity
        t.EnablePut(TRUE);
    }
    EXPECT_EQ(t.GetLastInput(), 0u);
    EXPECT_EQ(t.GetLastModeO(), 0u);
    EXPECT_TRUE(t.GetFilePath().IsEmpty());
}

TEST_F(TranslateTest, DirectionsSwitchSeparatelyAndDoubleByteFlagsChangeNothing) {
    CGblTranslate t;
    t.SetInputValue(0x41, 0x61);
    t.SetOutputValue(0x41, 0x5A);
    EXPECT_EQ(t.DoGet(0x41), 0x41);  // still off
    t.EnableGet(5);
    EXPECT_EQ(t.IsGetEnabled(), 1);
    EXPECT_EQ(t.DoGet(0x41), 0x61);
    EXPECT_EQ(t.DoPut(0x41), 0x41);
    t.EnableGetDBCS(7);
    t.EnablePutDBCS(TRUE);
    EXPECT_EQ(t.IsGetDBCSEnabled(), 1);
    EXPECT_EQ(t.DoGet(0x41), 0x61);
    EXPECT_EQ(t.DoPut(0x41), 0x41);
    t.EnablePut(TRUE);
    EXPECT_EQ(t.DoPut(0x41), 0x5A);
    t.ResetGetTable();
    EXPECT_EQ(t.DoGet(0x41), 0x41);
    EXPECT_EQ(t.GetOutputValue(0x41), 0x5A);
    t.ResetPutTable();
    EXPECT_EQ(t.DoPut(0x41), 0x41);
}

TEST_F(TranslateTest, SavedFileHasTheLayoutAndLoadsBackByteForByte) {
    CGblTranslate t;
    for (int i = 0; i < 256; ++i) {
        t.SetInputValue(static_cast<BYTE>(i), static_cast<BYTE>(255 - i));
        t.SetOutputValue(static_cast<BYTE>(i), static_cast<BYTE>(i ^ 0x20));
    }
    t.EnablePut(TRUE);
    t.EnableGetDBCS(TRUE);
    t.SetLastInput(65);
    t.SetLastOutput(0x1234);
    t.SetLastModeI(GBLXLT_MODE_DECIMAL);
    t.SetLastModeO(2);
    t.SetDescription("Mainframe");
    std::string first = Path("first.xlt");
    ASSERT_EQ(t.Save(first.c_str()), 0u);
    EXPECT_EQ(t.GetFilePath(), first.c_str());
    std::string bytes = zq::test::ReadFileBytes(first);
    ASSERT_EQ(bytes.size(), GBLXLT_FILE_SIZE);
    EXPECT_EQ(static_cast<unsigned char>(bytes[0]), 255);
    EXPECT_EQ(static_cast<unsigned char>(bytes[256 + 0x41]), 0x61);
    EXPECT_EQ(GetDword(bytes, 512), 96u);
    EXPECT_EQ(GetDword(bytes, 516), GBLXLT_MAGIC);
    EXPECT_EQ(GetDword(bytes, 520), GBLXLT_VERSION);
    EXPECT_EQ(GetDword(bytes, 524), 2u | 4u);
    EXPECT_EQ(GetDword(bytes, 528), 65u);
    EXPECT_EQ(GetDword(bytes, 532), 0x1234u);
    EXPECT_EQ(GetDword(bytes, 536), 1u);
    EXPECT_EQ(GetDword(bytes, 540), 2u);
    EXPECT_EQ(bytes.substr(544), std::string("Mainframe") + std::string(64 - 9, '\0'));

    CGblTranslate loaded;
    ASSERT_EQ(loaded.Load(first.c_str()), 0u);
    EXPECT_EQ(loaded.GetDescription(), "Mainframe");
    EXPECT_EQ(loaded.GetLastOutput(), 0x1234u);
    EXPECT_EQ(loaded.IsPutEnabled(), 1);
    EXPECT_EQ(loaded.IsGetEnabled(), 0);
    EXPECT_EQ(loaded.IsGetDBCSEnabled(), 1);
    EXPECT_EQ(loaded.GetFilePath(), first.c_str());
    std::string second = Path("second.xlt");
    ASSERT_EQ(loaded.Save(second.c_str()), 0u);
    EXPECT_EQ(zq::test::ReadFileBytes(second), bytes);
}

TEST_F(TranslateTest, NullPathMeansTheStoredOne) {
    CGblTranslate t;
    EXPECT_EQ(t.Save(nullptr), GBLXLT_ERROR_NO_PATH);
    EXPECT_EQ(t.Load(nullptr), GBLXLT_ERROR_NO_PATH);
    EXPECT_EQ(t.Save(""), GBLXLT_ERROR_NO_PATH);
    std::string path = Path("stored.xlt");
    t.SetFilePath(path.c_str());
    t.SetLastInput(9);
    ASSERT_EQ(t.Save(nullptr), 0u);
    CGblTranslate other;
    other.SetFilePath(path.c_str());
    ASSERT_EQ(other.Load(nullptr), 0u);
    EXPECT_EQ(other.GetLastInput(), 9u);
}

TEST_F(TranslateTest, LongDescriptionIsCutAndUnterminatedOneStopsInItsField) {
    CGblTranslate t;
    std::string seventy(70, 'd');
    t.SetDescription(seventy.c_str());
    t.SetDescription(nullptr);  // ignored
    std::string path = Path("long.xlt");
    ASSERT_EQ(t.Save(path.c_str()), 0u);
    EXPECT_EQ(t.GetDescription().GetLength(), 70);  // memory keeps it whole
    CGblTranslate loaded;
    ASSERT_EQ(loaded.Load(path.c_str()), 0u);
    EXPECT_EQ(loaded.GetDescription(), std::string(63, 'd').c_str());

    std::string image = ValidImage();
    std::memset(&image[544], 'u', 64);  // no terminator at all
    ASSERT_TRUE(zq::test::WriteFileBytes(path, image));
    ASSERT_EQ(loaded.Load(path.c_str()), 0u);
    EXPECT_EQ(loaded.GetDescription(), std::string(63, 'u').c_str());
}

struct ValidityCase {
    const char* name;
    size_t size;
    DWORD trailer_size;
    DWORD magic;
    DWORD version;
    DWORD expected;
};

class TranslateValidity : public TranslateTest, public testing::WithParamInterface<ValidityCase> {};

TEST_P(TranslateValidity, StatusInCheckOrder) {
    const ValidityCase& c = GetParam();
    std::string image = ValidImage();
    PutDword(&image, 512, c.trailer_size);
    PutDword(&image, 516, c.magic);
    PutDword(&image, 520, c.version);
    image.resize(c.size, '\0');
    std::string path = Path("check.xlt");
    ASSERT_TRUE(zq::test::WriteFileBytes(path, image));
    EXPECT_EQ(CGblTranslate::IsValidFile(path.c_str()), c.expected);
    CGblTranslate t;
    t.SetInputValue(0, 0x99);
    EXPECT_EQ(t.Load(path.c_str()), c.expected);
    if (c.expected != 0) {
        EXPECT_EQ(t.GetInputValue(0), 0x99);  // nothing read from a refused file
        EXPECT_TRUE(t.GetFilePath().IsEmpty());
    }
}

INSTANTIATE_TEST_SUITE_P(
    Files, TranslateValidity,
    testing::Values(ValidityCase{"valid", 608, 96, GBLXLT_MAGIC, GBLXLT_VERSION, 0},
                    ValidityCase{"older_version", 608, 96, GBLXLT_MAGIC, 0x00000100, 0},
                    ValidityCase{"larger_trailer", 608, 500, GBLXLT_MAGIC, GBLXLT_VERSION, 0},
                    ValidityCase{"newer_version", 608, 96, GBLXLT_MAGIC, 0x00010001, 9},
                    ValidityCase{"bad_magic", 608, 96, 0x05241964, GBLXLT_VERSION, 8},
                    ValidityCase{"short_trailer", 608, 95, 0, 0xFFFFFFFF, 7},
                    ValidityCase{"one_too_many", 609, 0, 0, 0, 6},
                    ValidityCase{"one_too_few", 607, 96, GBLXLT_MAGIC, GBLXLT_VERSION, 6},
                    ValidityCase{"empty", 0, 96, GBLXLT_MAGIC, GBLXLT_VERSION, 6}),
    [](const testing::TestParamInfo<ValidityCase>& info) { return info.param.name; });

TEST_F(TranslateTest, MissingFilesAndFolders) {
    EXPECT_EQ(CGblTranslate::IsValidFile(nullptr), GBLXLT_ERROR_NO_PATH);
    EXPECT_EQ(CGblTranslate::IsValidFile(""), GBLXLT_ERROR_NO_PATH);
    std::string missing = Path("missing.xlt");
    EXPECT_EQ(CGblTranslate::IsValidFile(missing.c_str()), GBLXLT_ERROR_OPEN);
    CGblTranslate t;
    EXPECT_EQ(t.Load(missing.c_str()), GBLXLT_ERROR_OPEN);
    std::string nowhere = Path("no/such/folder.xlt");
    EXPECT_EQ(t.Save(nowhere.c_str()), GBLXLT_ERROR_OPEN);
    EXPECT_TRUE(t.GetFilePath().IsEmpty());
}

TEST_F(TranslateTest, FlagBitsBeyondTheFourAreIgnored) {
    std::string image = ValidImage();
    PutDword(&image, 524, 0xFFFFFFF0u | 1u | 8u);
    std::string path = Path("flags.xlt");
    ASSERT_TRUE(zq::test::WriteFileBytes(path, image));
    CGblTranslate t;
    ASSERT_EQ(t.Load(path.c_str()), 0u);
    EXPECT_EQ(t.IsGetEnabled(), 1);
    EXPECT_EQ(t.IsPutEnabled(), 0);
    EXPECT_EQ(t.IsPutDBCSEnabled(), 1);
    ASSERT_EQ(t.Save(path.c_str()), 0u);
    EXPECT_EQ(GetDword(zq::test::ReadFileBytes(path), 524), 1u | 8u);
}

TEST_F(TranslateTest, DefaultDescriptionComesFromTheLanguageModule) {
    ZqGblProcessData* block = ZqGblGetProcessData();
    ASSERT_NE(block, nullptr);
    HMODULE language = LoadLibraryA("ZQGBLENU.DLL");
    if (language == nullptr) {
        GTEST_SKIP() << "the English language module is not built";
    }
    HINSTANCE previous = block->m_hLanguageModule;
    block->m_hLanguageModule = language;
    CGblTranslate t;
    EXPECT_EQ(t.GetDescription(), "Default translation table");
    t.SetDescription("");
    std::string path = Path("default.xlt");
    ASSERT_EQ(t.Save(path.c_str()), 0u);
    EXPECT_EQ(t.GetDescription(), "Default translation table");  // kept in memory too
    std::string image = ValidImage();
    std::memset(&image[544], 0, 64);
    ASSERT_TRUE(zq::test::WriteFileBytes(path, image));
    CGblTranslate loaded;
    loaded.SetDescription("x");
    ASSERT_EQ(loaded.Load(path.c_str()), 0u);
    EXPECT_EQ(loaded.GetDescription(), "Default translation table");
    block->m_hLanguageModule = previous;
    FreeLibrary(language);
}

TEST_F(TranslateTest, CopyDataTakesEverything) {
    CGblTranslate source;
    source.SetInputValue(1, 2);
    source.SetOutputValue(3, 4);
    source.EnableGet(TRUE);
    source.EnablePutDBCS(TRUE);
    source.SetLastModeI(1);
    source.SetDescription("copy me");
    source.SetFilePath("C:\\tables\\copy.xlt");
    CGblTranslate target;
    target.CopyData(&source);
    EXPECT_EQ(target.GetInputValue(1), 2);
    EXPECT_EQ(target.GetOutputValue(3), 4);
    EXPECT_EQ(target.IsGetEnabled(), 1);
    EXPECT_EQ(target.IsPutDBCSEnabled(), 1);
    EXPECT_EQ(target.GetLastModeI(), 1u);
    EXPECT_EQ(target.GetDescription(), "copy me");
    EXPECT_EQ(target.GetFilePath(), "C:\\tables\\copy.xlt");
    target.CopyData(nullptr);
    target.CopyData(&target);
    EXPECT_EQ(target.GetDescription(), "copy me");
}

TEST_F(TranslateTest, DialogsAreNotThereYet) {
    CGblTranslate t;
    EXPECT_EQ(t.Edit(nullptr), GBLXLT_ERROR_NO_UI);
    EXPECT_EQ(t.Load(nullptr, "C:\\x.xlt"), GBLXLT_ERROR_NO_UI);
}

}  // namespace
