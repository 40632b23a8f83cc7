#include "frame/global_directory_functions.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "platform/win32.h"
#include "support/test_support.h"

namespace {

class DirectoryFunctions : public ::testing::Test {
protected:
    void SetUp() override {
        char full[MAX_PATH];
        std::string unix_path = zq::test::MakeScratchFolder("dirfunctions");
        ASSERT_GT(GetFullPathNameA(unix_path.c_str(), sizeof full, full, nullptr), 0u);
        folder_ = full;
    }
    std::string Path(const std::string& name) const { return folder_ + "\\" + name; }
    void Write(const std::string& name, const std::string& bytes) {
        HANDLE file = CreateFileA(Path(name).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                  FILE_ATTRIBUTE_NORMAL, nullptr);
        ASSERT_NE(file, INVALID_HANDLE_VALUE);
        DWORD written = 0;
        WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
        CloseHandle(file);
    }
    void MakeFolder(const std::string& name) {
        ASSERT_TRUE(CreateDirectoryA(Path(name).c_str(), nullptr));
    }
    bool IsThere(const std::string& name) const {
        return GetFileAttributesA(Path(name).c_str()) != INVALID_FILE_ATTRIBUTES;
    }
    // a (3 bytes), b (5 bytes) and sub\c (7 bytes).
    void MakeTree() {
        Write("a", "aaa");
        Write("b", "bbbbb");
        MakeFolder("sub");
        Write("sub\\c", "ccccccc");
    }

    std::string folder_;
};

int WINAPI Collect(void* context, LPCTSTR path) {
    static_cast<std::set<std::string>*>(context)->insert(path);
    return 0;
}

TEST_F(DirectoryFunctions, ExistsTellsFoldersFromFiles) {
    Write("file", "x");
    DWORD is_directory = 77;
    EXPECT_EQ(CZqGlobalDirectoryFunctions::Exists(folder_.c_str(), is_directory), 0u);
    EXPECT_EQ(is_directory, 1u);
    EXPECT_EQ(CZqGlobalDirectoryFunctions::Exists(Path("FILE").c_str(), is_directory), 0u);
    EXPECT_EQ(is_directory, 0u);
    is_directory = 77;
    EXPECT_EQ(CZqGlobalDirectoryFunctions::Exists(Path("none").c_str(), is_directory),
              static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(is_directory, 0u);
}

TEST_F(DirectoryFunctions, CreateAndDelete) {
    EXPECT_EQ(CZqGlobalDirectoryFunctions::Create(Path("new").c_str()), 0u);
    EXPECT_EQ(CZqGlobalDirectoryFunctions::Create(Path("NEW").c_str()), 0u);  // already there
    EXPECT_EQ(CZqGlobalDirectoryFunctions::Create(Path("x\\y").c_str()), ZQ_ERROR_DIRECTORY_CREATE);
    Write("new\\f", "x");
    EXPECT_EQ(CZqGlobalDirectoryFunctions::Delete(Path("new").c_str()), ZQ_ERROR_DIRECTORY_REMOVE);
    DeleteFileA(Path("new\\f").c_str());
    EXPECT_EQ(CZqGlobalDirectoryFunctions::Delete(Path("new").c_str()), 0u);
    EXPECT_FALSE(IsThere("new"));
}

TEST_F(DirectoryFunctions, CreateDirChainMakesEveryLevel) {
    DWORD exists = 77;
    EXPECT_EQ(CZqGlobalDirectoryFunctions::CreateDirChain(Path("a\\b\\c").c_str(), exists), 0u);
    EXPECT_EQ(exists, 0u);
    EXPECT_EQ(GetFileAttributesA(Path("a\\b\\c").c_str()),
              static_cast<DWORD>(FILE_ATTRIBUTE_DIRECTORY));
    EXPECT_EQ(CZqGlobalDirectoryFunctions::CreateDirChain(Path("A\\B\\C").c_str(), exists), 0u);
    EXPECT_EQ(exists, 1u);
    Write("file", "x");
    EXPECT_EQ(CZqGlobalDirectoryFunctions::CreateDirChain(Path("file\\d\\e").c_str(), exists),
              ZQ_ERROR_DIRECTORY_CREATE);
    EXPECT_EQ(CZqGlobalDirectoryFunctions::CreateDirChain("Q:\\x\\y", exists),
              ZQ_ERROR_DIRECTORY_CREATE);
}

TEST_F(DirectoryFunctions, DeleteDirChainRemovesTheTree) {
    MakeTree();
    MakeFolder("sub\\deeper");
    Write("sub\\deeper\\d", "d");
    CZqGlobalDirectoryFunctions::DeleteDirChain(folder_.c_str());
    EXPECT_EQ(GetFileAttributesA(folder_.c_str()), INVALID_FILE_ATTRIBUTES);
}

TEST_F(DirectoryFunctions, DeleteDirChainLeavesReadOnlyFiles) {
    MakeTree();
    ASSERT_TRUE(SetFileAttributesA(Path("sub\\c").c_str(), FILE_ATTRIBUTE_READONLY));
    CZqGlobalDirectoryFunctions::DeleteDirChain(folder_.c_str());
    EXPECT_TRUE(IsThere("sub\\c"));
    EXPECT_FALSE(IsThere("a"));
}

TEST_F(DirectoryFunctions, Rename) {
    MakeFolder("old");
    EXPECT_EQ(CZqGlobalDirectoryFunctions::Rename(Path("old").c_str(), ""),
              ZQ_ERROR_DIRECTORY_EMPTY_NAME);
    EXPECT_EQ(CZqGlobalDirectoryFunctions::Rename(Path("old").c_str(), nullptr),
              ZQ_ERROR_DIRECTORY_EMPTY_NAME);
    EXPECT_EQ(CZqGlobalDirectoryFunctions::Rename(Path("none").c_str(), Path("x").c_str()),
              ZQ_ERROR_DIRECTORY_RENAME);
    EXPECT_EQ(CZqGlobalDirectoryFunctions::Rename(Path("old").c_str(), Path("new").c_str()), 0u);
    EXPECT_TRUE(IsThere("new"));
}

TEST_F(DirectoryFunctions, OneLevelWalksCountFilesOnly) {
    MakeTree();
    DWORD value = 77;
    EXPECT_EQ(CZqGlobalDirectoryFunctions::GetSpace(folder_.c_str(), value), 0u);
    EXPECT_EQ(value, 8u);
    EXPECT_EQ(CZqGlobalDirectoryFunctions::GetFileCount(folder_.c_str(), value), 0u);
    EXPECT_EQ(value, 2u);
    std::set<std::string> seen;
    EXPECT_EQ(CZqGlobalDirectoryFunctions::EnumerateFiles(&seen, folder_.c_str(), Collect), 0u);
    EXPECT_EQ(seen, (std::set<std::string>{Path("a"), Path("b")}));
    EXPECT_EQ(CZqGlobalDirectoryFunctions::EnumerateFiles(nullptr, folder_.c_str(), nullptr), 0u);
}

TEST_F(DirectoryFunctions, TreeWalksDescendIntoDotsUntilThePathIsTooLong) {
    MakeTree();
    // Kept as designed: "." is listed first and descended into, again and
    // again, until the path no longer fits; that error ends the walk.
    DWORD value = 77;
    EXPECT_EQ(CZqGlobalDirectoryFunctions::GetTotalFileCount(folder_.c_str(), value),
              static_cast<DWORD>(ERROR_FILENAME_EXCED_RANGE));
    EXPECT_EQ(value, 0u);
    value = 77;
    EXPECT_EQ(CZqGlobalDirectoryFunctions::GetTotalSpace(folder_.c_str(), value),
              static_cast<DWORD>(ERROR_FILENAME_EXCED_RANGE));
    EXPECT_EQ(value, 0u);
    std::set<std::string> seen;
    EXPECT_EQ(CZqGlobalDirectoryFunctions::EnumerateAllFiles(&seen, folder_.c_str(), Collect),
              static_cast<DWORD>(ERROR_FILENAME_EXCED_RANGE));
    EXPECT_TRUE(seen.empty());
}

TEST_F(DirectoryFunctions, UnlistablePathsFailAtOnce) {
    DWORD value = 77;
    EXPECT_EQ(CZqGlobalDirectoryFunctions::GetSpace(Path("none").c_str(), value),
              static_cast<DWORD>(ERROR_PATH_NOT_FOUND));
    EXPECT_EQ(value, 0u);
    value = 77;
    EXPECT_EQ(CZqGlobalDirectoryFunctions::GetTotalFileCount(Path("none").c_str(), value),
              static_cast<DWORD>(ERROR_PATH_NOT_FOUND));
    EXPECT_EQ(value, 0u);
}

TEST(DirectoryFunctionsShared, IsDirSharedAlwaysAnswersFalse) {
    BOOL shared = TRUE;
    EXPECT_EQ(CZqGlobalDirectoryFunctions::IsDirShared("C:\\windows", shared), 0u);
    EXPECT_FALSE(shared);
    shared = TRUE;
    EXPECT_EQ(CZqGlobalDirectoryFunctions::IsDirShared(nullptr, shared), 0u);
    EXPECT_FALSE(shared);
}

}  // namespace
