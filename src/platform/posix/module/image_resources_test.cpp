// The readers of .res images, PE resource directories, ELF sections and
// version blocks on damaged input: every failure is a result, never a read
// outside the data (the asan build checks the latter).
#include "platform/posix/module/image_resources.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "platform/posix/module/version_block.h"
#include "platform/posix/testdata/pe_builder.h"
#include "support/test_support.h"

namespace zq::platform::internal {
namespace {

using zq::platform::testing::BuildPeFile;
using zq::platform::testing::PutU16;
using zq::platform::testing::PutU32;

ByteView View(const std::string& bytes) {
    return ByteView(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
}

// The golden .res file, embedded in this test program as RCDATA "VERSIONRES".
std::string GoldenRes() {
    HRSRC found = FindResourceA(nullptr, "VERSIONRES", RT_RCDATA);
    if (!found)
        return {};
    return std::string(static_cast<const char*>(LockResource(LoadResource(nullptr, found))),
                       SizeofResource(nullptr, found));
}

TEST(ResImage, GoldenFileHasOneVersionEntry) {
    std::string res = GoldenRes();
    ASSERT_EQ(res.size(), 824u);
    std::vector<ResourceEntry> entries;
    ASSERT_TRUE(ParseResImage(View(res), 0, &entries));
    ASSERT_EQ(entries.size(), 1u);  // the leading empty entry is not one
    EXPECT_EQ(entries[0].type.id, 16);
    EXPECT_EQ(entries[0].name.id, 1);
    EXPECT_EQ(entries[0].language, 0x0409);
    EXPECT_EQ(entries[0].size, 760u);
    EXPECT_EQ(entries[0].offset, 64u);
}

TEST(ResImage, EveryTruncationFailsOrStopsShort) {
    std::string res = GoldenRes();
    for (size_t length = 0; length < res.size(); ++length) {
        std::vector<ResourceEntry> entries;
        std::string cut = res.substr(0, length);
        bool ok = ParseResImage(View(cut), 0, &entries);
        EXPECT_TRUE(entries.empty()) << length;
        EXPECT_TRUE(ok == (length < 8 || length == 32 || (length > 32 && length < 40))) << length;
    }
}

TEST(ResImage, LyingSizesAreRefused) {
    std::string res = GoldenRes();
    std::vector<ResourceEntry> entries;
    std::string bad = res;
    PutU32(bad, 32, 0xFFFFFFF0u);  // data size of the version entry
    EXPECT_FALSE(ParseResImage(View(bad), 0, &entries));
    bad = res;
    PutU32(bad, 36, 4);  // header size smaller than a header
    EXPECT_FALSE(ParseResImage(View(bad), 0, &entries));
    bad = res;
    PutU16(bad, 40, 'A');  // a type name that never ends inside the header
    for (size_t i = 42; i < 64; i += 2)
        PutU16(bad, i, 'A');
    EXPECT_FALSE(ParseResImage(View(bad), 0, &entries));
}

std::string GoldenBlock() {
    std::string res = GoldenRes();
    return res.size() == 824 ? res.substr(64, 760) : std::string();
}

DWORD ReadPe(const std::string& file, ImageResources* out) {
    MemoryByteSource source(reinterpret_cast<const uint8_t*>(file.data()), file.size());
    return ReadImageResources(source, nullptr, out);
}

TEST(PeResources, ReadsTheDirectory) {
    std::string file = BuildPeFile(
        {{16, {{1, {{0x0409, GoldenBlock()}}}}}, {10, {{7, {{0, "x"}, {0x407, "yz"}}}}}});
    ImageResources resources;
    ASSERT_EQ(ReadPe(file, &resources), 0u);
    ASSERT_EQ(resources.entries.size(), 3u);
    LookupFailure failure;
    long index = SelectResource(resources.entries, ResourceName::Id(10), ResourceName::Id(7),
                                0x0407, &failure);
    ASSERT_GE(index, 0);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(resources.bytes.data()) +
                              resources.entries[index].offset,
                          resources.entries[index].size),
              "yz");
}

TEST(PeResources, TruncatedAndCorruptedFilesFailCleanly) {
    const std::string file = BuildPeFile({{16, {{1, {{0x0409, GoldenBlock()}}}}}});
    for (size_t length = 0; length < file.size(); length += 7) {
        ImageResources resources;
        DWORD rc = ReadPe(file.substr(0, length), &resources);
        EXPECT_TRUE(rc == ERROR_RESOURCE_DATA_NOT_FOUND || rc == ERROR_BAD_FORMAT) << length;
    }
    std::mt19937 random(1234);
    for (int round = 0; round < 2000; ++round) {
        std::string bad = file;
        for (int flips = 0; flips < 4; ++flips) {
            bad[random() % 0x300] = static_cast<char>(random());
        }
        ImageResources resources;
        ReadPe(bad, &resources);  // any result; never a bad read
    }
}

TEST(PeResources, SelfReferencingDirectoriesEndWithinTheBudget) {
    std::string file = BuildPeFile({{16, {{1, {{0x0409, "x"}}}}}});
    // Make the root claim 0xFFFF entries that all point back at the root.
    const size_t root = 0x200;
    PutU16(file, root + 14, 0xFFFF);
    file.resize(root + 16 + 0xFFFF * 8, '\0');
    for (size_t i = 0; i < 0xFFFF; ++i) {
        PutU32(file, root + 16 + i * 8, 16);
        PutU32(file, root + 16 + i * 8 + 4, 0x80000000u);
    }
    // Section sizes so that the whole directory is inside the section.
    PutU32(file, 0x44 + 20 + 240 + 8, static_cast<uint32_t>(file.size() - 0x200));
    PutU32(file, 0x44 + 20 + 240 + 16, static_cast<uint32_t>(file.size() - 0x200));
    ImageResources resources;
    EXPECT_EQ(ReadPe(file, &resources), static_cast<DWORD>(ERROR_BAD_FORMAT));
}

TEST(ElfSection, TruncatedModulesFailCleanly) {
    const std::string module =
        zq::test::ReadFileBytes(zq::test::ExecutableFolder() + "/zqtstok.dll.so");
    ASSERT_FALSE(module.empty());
    ImageResources whole;
    ASSERT_EQ(ReadPe(module, &whole), 0u);
    EXPECT_FALSE(whole.entries.empty());
    for (size_t length = 0; length < module.size(); length += 97) {
        ImageResources resources;
        DWORD rc = ReadPe(module.substr(0, length), &resources);
        EXPECT_TRUE(rc == 0 || rc == ERROR_RESOURCE_DATA_NOT_FOUND || rc == ERROR_BAD_FORMAT)
            << length;
    }
}

TEST(VersionBlock, DamagedLengthsNeverLeaveTheBlock) {
    const std::string block = GoldenBlock();
    std::mt19937 random(99);
    for (int round = 0; round < 5000; ++round) {
        std::string bad = block;
        for (int flips = 0; flips < 3; ++flips)
            bad[random() % bad.size()] = static_cast<char>(random());
        VersionNode node;
        FindVersionNode(View(bad), "\\StringFileInfo\\040904E4\\ProductName", &node);
        FindVersionNode(View(bad), "\\VarFileInfo\\Translation", &node);
    }
    for (size_t length = 0; length < block.size(); ++length) {
        VersionNode node;
        std::string cut = block.substr(0, length);
        EXPECT_FALSE(FindVersionNode(View(cut), "\\StringFileInfo\\040904E4\\Comments", &node));
    }
    // A child of length zero ends the walk instead of looping.
    std::string looping = block;
    PutU16(looping, 92, 0);
    VersionNode node;
    EXPECT_FALSE(FindVersionNode(View(looping), "\\VarFileInfo", &node));
}

}  // namespace
}  // namespace zq::platform::internal
