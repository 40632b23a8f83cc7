// Version blocks read from PE and ELF files, checked against the block
// that another resource compiler made (tests/conformance/golden/version.res)
// and what the reference system answered for it (version.txt beside it).
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "platform/posix/module/resource_directory.h"
#include "platform/posix/testdata/pe_builder.h"
#include "platform/win32.h"
#include "support/test_support.h"

namespace zq::platform::internal {
namespace {

using zq::platform::testing::BuildPeFile;

// The golden .res file, embedded in this test program as RCDATA "VERSIONRES".
std::string GoldenResFile() {
    HRSRC found = FindResourceA(nullptr, "VERSIONRES", RT_RCDATA);
    if (!found)
        return {};
    auto* data = static_cast<const char*>(LockResource(LoadResource(nullptr, found)));
    return std::string(data, SizeofResource(nullptr, found));
}

std::string GoldenBlock() {
    std::string res = GoldenResFile();
    std::vector<ResourceEntry> entries;
    if (!ParseResImage(ByteView(reinterpret_cast<const uint8_t*>(res.data()), res.size()), 0,
                       &entries))
        return {};
    for (const ResourceEntry& entry : entries) {
        if (!entry.type.IsName() && entry.type.id == 16)
            return res.substr(entry.offset, entry.size);
    }
    return {};
}

// A PE file holding the golden block as its version resource.
std::string GoldenPePath() {
    static const std::string path = [] {
        std::string file = zq::test::MakeScratchFolder("version") + "/version.exe";
        zq::test::WriteFileBytes(file, BuildPeFile({{16, {{1, {{0x0409, GoldenBlock()}}}}}}));
        return file;
    }();
    return path;
}

class GoldenVersionBlock : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(GoldenBlock().size(), 760u);
        DWORD handle = 0xEEEE;
        size_ = GetFileVersionInfoSizeA(GoldenPePath().c_str(), &handle);
        ASSERT_EQ(size_, 1524u);
        EXPECT_EQ(handle, 0u);
        buffer_.assign(size_ + 64, 0xCC);
        ASSERT_TRUE(GetFileVersionInfoA(GoldenPePath().c_str(), 0, size_, buffer_.data()));
    }
    DWORD size_ = 0;
    std::vector<uint8_t> buffer_;
};

TEST_F(GoldenVersionBlock, CopiesTheBlockThenTheSignatureAndLeavesTheRest) {
    const std::string block = GoldenBlock();
    EXPECT_EQ(std::memcmp(buffer_.data(), block.data(), block.size()), 0);
    EXPECT_EQ(std::memcmp(buffer_.data() + 760, "FE2X", 4), 0);
    for (size_t i = 764; i < buffer_.size(); ++i)
        ASSERT_EQ(buffer_[i], 0xCC) << i;
}

TEST_F(GoldenVersionBlock, FixedInformation) {
    VS_FIXEDFILEINFO* info = nullptr;
    UINT length = 0;
    ASSERT_TRUE(VerQueryValueA(buffer_.data(), "\\", reinterpret_cast<LPVOID*>(&info), &length));
    EXPECT_EQ(length, 52u);
    EXPECT_EQ(reinterpret_cast<uint8_t*>(info) - buffer_.data(), 40);
    EXPECT_EQ(info->dwSignature, 0xFEEF04BDu);
    EXPECT_EQ(info->dwStrucVersion, 0x00010000u);
    EXPECT_EQ(info->dwFileVersionMS, 0x00030000u);
    EXPECT_EQ(info->dwFileVersionLS, 0x0000000Cu);
    EXPECT_EQ(info->dwProductVersionMS, 0x00030001u);
    EXPECT_EQ(info->dwProductVersionLS, 0u);
    EXPECT_EQ(info->dwFileFlagsMask, 0x3Fu);
    EXPECT_EQ(info->dwFileFlags, 0x7u);
    EXPECT_EQ(info->dwFileOS, 0x4u);
    EXPECT_EQ(info->dwFileType, 0x1u);
    EXPECT_EQ(info->dwFileSubtype, 0u);
    EXPECT_EQ(info->dwFileDateMS, 0u);
    EXPECT_EQ(info->dwFileDateLS, 0u);
}

TEST_F(GoldenVersionBlock, SixteenByteBufferGetsTheFirstSixteenBytes) {
    std::vector<uint8_t> small(64, 0xCC);
    ASSERT_TRUE(GetFileVersionInfoA(GoldenPePath().c_str(), 0, 16, small.data()));
    EXPECT_EQ(std::memcmp(small.data(), buffer_.data(), 16), 0);
    EXPECT_EQ(small[16], 0xCC);
}

struct QueryCase {
    const char* path;
    BOOL result;
    UINT length;
    DWORD last_error;   // 0: untouched
    long offset;        // of the returned pointer in the buffer; -1: untouched
    const char* value;  // text values only
};

class GoldenQuery : public GoldenVersionBlock, public ::testing::WithParamInterface<QueryCase> {};

TEST_P(GoldenQuery, AnswersAsTheReferenceSystem) {
    const QueryCase& c = GetParam();
    void* pointer = reinterpret_cast<void*>(1);
    UINT length = 0xEEEE;
    SetLastError(0xDEADBEEF);
    BOOL result = VerQueryValueA(buffer_.data(), c.path, &pointer, &length);
    EXPECT_EQ(result, c.result);
    EXPECT_EQ(length, c.length);
    EXPECT_EQ(GetLastError(), c.last_error ? c.last_error : 0xDEADBEEF);
    if (c.offset < 0) {
        EXPECT_EQ(pointer, reinterpret_cast<void*>(1));
        return;
    }
    EXPECT_EQ(static_cast<uint8_t*>(pointer) - buffer_.data(), c.offset);
    if (c.value) {
        const char* text = static_cast<const char*>(pointer);
        EXPECT_STREQ(text, c.value);
        EXPECT_EQ(static_cast<uint8_t>(text[c.length]),
                  0xCC);  // nothing written past the terminator
    }
}

INSTANTIATE_TEST_SUITE_P(
    Golden, GoldenQuery,
    ::testing::Values(
        QueryCase{"\\", TRUE, 52, 0, 40, nullptr}, QueryCase{"", TRUE, 52, 0, 40, nullptr},
        QueryCase{"\\VarFileInfo\\Translation", TRUE, 4, 0, 756, nullptr},
        QueryCase{"\\StringFileInfo\\040904E4\\CompanyName", TRUE, 21, 0, 948,
                  "Oracle Probe Company"},
        QueryCase{"\\StringFileInfo\\040904E4\\FileDescription", TRUE, 23, 0, 1032,
                  "Version resource probe"},
        QueryCase{"\\StringFileInfo\\040904E4\\FileVersion", TRUE, 9, 0, 1112, "3.0.0.12"},
        QueryCase{"\\StringFileInfo\\040904E4\\InternalName", TRUE, 9, 0, 1164, "VERPROBE"},
        QueryCase{"\\StringFileInfo\\040904E4\\LegalCopyright", TRUE, 19, 0, 1220,
                  "Copyright (C) 1998"},
        QueryCase{"\\StringFileInfo\\040904E4\\OriginalFilename", TRUE, 12, 0, 1300, "VERSION.EXE"},
        QueryCase{"\\StringFileInfo\\040904E4\\ProductName", TRUE, 13, 0, 1356, "Oracle Probe"},
        QueryCase{"\\StringFileInfo\\040904E4\\ProductVersion", TRUE, 4, 0, 1420, "3.1"},
        QueryCase{"\\StringFileInfo\\040904E4\\Comments", TRUE, 1, 0, 1452, ""},
        QueryCase{"\\StringFileInfo\\040904E4\\NoSuchName", FALSE, 0, 1813, -1, nullptr},
        QueryCase{"\\StringFileInfo\\040904B0\\CompanyName", FALSE, 0, 1813, -1, nullptr},
        QueryCase{"\\StringFileInfo\\04070000\\CompanyName", FALSE, 0, 1813, -1, nullptr},
        QueryCase{"\\stringfileinfo\\040904e4\\companyname", TRUE, 21, 0, 948,
                  "Oracle Probe Company"},
        QueryCase{"StringFileInfo\\040904E4\\CompanyName", TRUE, 21, 0, 948,
                  "Oracle Probe Company"},
        QueryCase{"\\StringFileInfo\\040904E4\\CompanyName\\", TRUE, 21, 0, 948,
                  "Oracle Probe Company"},
        QueryCase{"\\StringFileInfo\\\\040904E4\\CompanyName", TRUE, 21, 0, 948,
                  "Oracle Probe Company"},
        QueryCase{"\\StringFileInfo\\040904E4\\Company", FALSE, 0, 1813, -1, nullptr},
        QueryCase{"\\StringFileInfo\\040904E4", TRUE, 0, 87, 916, nullptr},
        QueryCase{"\\StringFileInfo", TRUE, 0, 87, 892, nullptr},
        QueryCase{"\\VarFileInfo", TRUE, 0, 87, 1488, nullptr},
        QueryCase{"\\VarFileInfo\\Nope", FALSE, 0, 1813, -1, nullptr}));

TEST(VersionInfo, TranslationOfTheGoldenBlock) {
    std::string path = GoldenPePath();
    std::vector<uint8_t> buffer(GetFileVersionInfoSizeA(path.c_str(), nullptr));
    ASSERT_TRUE(
        GetFileVersionInfoA(path.c_str(), 0, static_cast<DWORD>(buffer.size()), buffer.data()));
    WORD* translation = nullptr;
    UINT length = 0;
    ASSERT_TRUE(VerQueryValueA(buffer.data(), "\\VarFileInfo\\Translation",
                               reinterpret_cast<LPVOID*>(&translation), &length));
    ASSERT_EQ(length, 4u);
    EXPECT_EQ(translation[0], 0x0409);
    EXPECT_EQ(translation[1], 1252);
}

TEST(VersionInfo, WithoutTheRoomBehindTheBlockTextsStillComeBack) {
    // The block as a resource holds it (no signature behind it, as after
    // LockResource of an RT_VERSION resource): texts come from elsewhere.
    std::string block = GoldenBlock() + std::string(4, '\0');
    const std::string before = block;
    void* pointer = nullptr;
    UINT length = 0;
    ASSERT_TRUE(
        VerQueryValueA(block.data(), "\\StringFileInfo\\040904E4\\ProductName", &pointer, &length));
    EXPECT_EQ(length, 13u);
    EXPECT_STREQ(static_cast<const char*>(pointer), "Oracle Probe");
    EXPECT_EQ(block, before);  // nothing written into the caller's block
}

TEST(VersionInfo, BinaryLengthsAreCutToTheirNode) {
    // A root that claims a 0xF834-byte value: the answer stays inside the block.
    std::vector<uint8_t> buffer(1524, 0);
    std::string block = GoldenBlock();
    std::memcpy(buffer.data(), block.data(), block.size());
    std::memcpy(buffer.data() + 760, "FE2X", 4);
    buffer[2] = 0x34;
    buffer[3] = 0xF8;
    void* pointer = nullptr;
    UINT length = 0;
    ASSERT_TRUE(VerQueryValueA(buffer.data(), "\\", &pointer, &length));
    EXPECT_EQ(static_cast<uint8_t*>(pointer) - buffer.data(), 40);
    EXPECT_EQ(length, 760u - 40u);
}

TEST(VersionInfo, FilesWithoutABlock) {
    DWORD handle = 0xEEEE;
    SetLastError(0);
    EXPECT_EQ(GetFileVersionInfoSizeA("C:\\no\\such\\file.exe", &handle), 0u);
    EXPECT_EQ(handle, 0u);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_PATH_NOT_FOUND));

    std::string folder = zq::test::MakeScratchFolder("noversion");
    EXPECT_EQ(GetFileVersionInfoSizeA((folder + "/missing.exe").c_str(), nullptr), 0u);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));

    zq::test::WriteFileBytes(folder + "/text.txt", "not a PE file\r\n");
    EXPECT_EQ(GetFileVersionInfoSizeA((folder + "/text.txt").c_str(), nullptr), 0u);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_RESOURCE_DATA_NOT_FOUND));

    // A PE file with resources but no version block.
    zq::test::WriteFileBytes(folder + "/data.dll", BuildPeFile({{10, {{1, {{0, "data"}}}}}}));
    EXPECT_EQ(GetFileVersionInfoSizeA((folder + "/data.dll").c_str(), nullptr), 0u);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_RESOURCE_TYPE_NOT_FOUND));

    uint8_t byte = 0;
    EXPECT_FALSE(GetFileVersionInfoA((folder + "/text.txt").c_str(), 0, 1, &byte));
    EXPECT_FALSE(GetFileVersionInfoA(GoldenPePath().c_str(), 0, 16, nullptr));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_DATA));
}

// The block of this very program (an ELF file), read from disk: every test
// program carries the suite's version block.
TEST(VersionInfo, OwnExecutableCarriesTheSuitesBlock) {
    char path[MAX_PATH];
    ASSERT_GT(GetModuleFileNameA(nullptr, path, sizeof path), 0u);
    DWORD size = GetFileVersionInfoSizeA(path, nullptr);
    ASSERT_GT(size, 0u) << path << " error " << GetLastError();
    std::vector<uint8_t> buffer(size);
    ASSERT_TRUE(GetFileVersionInfoA(path, 0, size, buffer.data()));
    char* value = nullptr;
    UINT length = 0;
    ASSERT_TRUE(VerQueryValueA(buffer.data(), "\\StringFileInfo\\040904E4\\CompanyName",
                               reinterpret_cast<LPVOID*>(&value), &length));
    EXPECT_STREQ(value, "Zq,Inc.");
    ASSERT_TRUE(VerQueryValueA(buffer.data(), "\\StringFileInfo\\040904E4\\InternalName",
                               reinterpret_cast<LPVOID*>(&value), &length));
    EXPECT_STREQ(value, "zq_platform_tests");
    VS_FIXEDFILEINFO* info = nullptr;
    ASSERT_TRUE(VerQueryValueA(buffer.data(), "\\", reinterpret_cast<LPVOID*>(&info), &length));
    EXPECT_EQ(info->dwSignature, 0xFEEF04BDu);
    EXPECT_EQ(info->dwFileType, 1u);
}

TEST(VersionInfo, LanguageModuleIsReadWithoutLoadingIt) {
    std::string path = zq::test::ExecutableFolder() + "/zqgbldeu.dll.so";
    std::vector<uint8_t> buffer(GetFileVersionInfoSizeA(path.c_str(), nullptr));
    ASSERT_FALSE(buffer.empty());
    ASSERT_TRUE(
        GetFileVersionInfoA(path.c_str(), 0, static_cast<DWORD>(buffer.size()), buffer.data()));
    char* value = nullptr;
    UINT length = 0;
    ASSERT_TRUE(VerQueryValueA(buffer.data(), "\\StringFileInfo\\040904E4\\InternalName",
                               reinterpret_cast<LPVOID*>(&value), &length));
    EXPECT_STREQ(value, "ZQGBLDEU");
    EXPECT_EQ(GetModuleHandleA("ZQGBLDEU.DLL"), nullptr);
}

}  // namespace
}  // namespace zq::platform::internal
