#include "frame/document_save.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/win32.h"
#include "support/test_support.h"

namespace {

struct SaveNameCase {
    const char* path_name;
    const char* document_path;
    const char* title;
    const char* extension;
    const char* expected;
};

class SaveNames : public ::testing::TestWithParam<SaveNameCase> {};

TEST_P(SaveNames, ComeFromNamePathOrTitle) {
    const SaveNameCase& c = GetParam();
    EXPECT_STREQ(ZqMakeSaveFileName(c.path_name, c.document_path, c.title, c.extension),
                 c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    ZqDoSave, SaveNames,
    ::testing::Values(SaveNameCase{"C:\\given.fax", "C:\\old.fax", "Title", ".fax",
                                   "C:\\given.fax"},
                      SaveNameCase{nullptr, "C:\\old.fax", "Title", ".fax", "C:\\old.fax"},
                      SaveNameCase{"", "", "Untitled", ".fax", "Untitled.fax"},
                      SaveNameCase{"", "", "Document1 long", ".fax", "Document.fax"},
                      SaveNameCase{"", "", "My Fax", ".fax", "My.fax"},
                      SaveNameCase{"", "", "a;b", nullptr, "a"},
                      SaveNameCase{"", "", "1234567#9", ".x", "1234567.x"},
                      SaveNameCase{nullptr, nullptr, nullptr, ".x", ".x"}));

TEST(ZqDoSave, NothingIsSavedUntilTheDialogsExist) {
    EXPECT_FALSE(ZqDoSave(nullptr, "C:\\x.fax"));
    CString name("keep.fax");
    EXPECT_FALSE(ZqDoPromptFileName(name, 0, 0, FALSE, nullptr));
    EXPECT_STREQ(name, "keep.fax");
}

TEST(CExeFileDialog, ChecksForProgramFiles) {
    std::string folder = zq::test::MakeScratchFolder("exe");
    for (const char* name : {"tool.exe", "RUN.BAT", "program", "notes.txt"}) {
        HANDLE file = CreateFileA((folder + "/" + name).c_str(), GENERIC_WRITE, 0, nullptr,
                                  CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
        ASSERT_NE(file, INVALID_HANDLE_VALUE);
        CloseHandle(file);
    }
    ASSERT_TRUE(CreateDirectoryA((folder + "/dir.exe").c_str(), nullptr));
    EXPECT_TRUE(CExeFileDialog::IsProgramFileName((folder + "\\TOOL.EXE").c_str()));
    EXPECT_TRUE(CExeFileDialog::IsProgramFileName((folder + "\\run.bat").c_str()));
    EXPECT_TRUE(CExeFileDialog::IsProgramFileName((folder + "\\program").c_str()));
    EXPECT_FALSE(CExeFileDialog::IsProgramFileName((folder + "\\notes.txt").c_str()));
    EXPECT_FALSE(CExeFileDialog::IsProgramFileName((folder + "\\dir.exe").c_str()));
    EXPECT_FALSE(CExeFileDialog::IsProgramFileName((folder + "\\missing.exe").c_str()));
    EXPECT_FALSE(CExeFileDialog::IsProgramFileName((folder + "\\*.exe").c_str()));
    EXPECT_FALSE(CExeFileDialog::IsProgramFileName(nullptr));

    CExeFileDialog dialog(TRUE, (folder + "\\tool.exe").c_str());
    EXPECT_EQ(dialog.DoModal(), IDCANCEL);
    EXPECT_STREQ(dialog.GetPathName(), (folder + "\\tool.exe").c_str());
}

}  // namespace
