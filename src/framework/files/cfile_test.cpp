#include "framework/files/cfile.h"

#include <gtest/gtest.h>

#include <string>

#include "support/test_support.h"

namespace {

class CFileTest : public testing::Test {
protected:
    void SetUp() override { folder_ = zq::test::MakeScratchFolder("cfile"); }
    std::string PathOf(const char* name) const { return folder_ + "/" + name; }

    std::string folder_;
};

TEST_F(CFileTest, OpenReportsFailureWithoutThrowing) {
    CFile file;
    CFileException error;
    std::string missing = PathOf("missing.dat");
    EXPECT_FALSE(file.Open(missing.c_str(), CFile::modeRead, &error));
    EXPECT_EQ(error.m_cause, CFileException::fileNotFound);
    EXPECT_EQ(error.m_lOsError, ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(error.m_strFileName, missing.c_str());
    EXPECT_EQ(file.m_hFile, CFile::hFileNull);
    EXPECT_FALSE(file.Open(missing.c_str(), CFile::modeRead));  // no error object
    EXPECT_FALSE(file.Open(nullptr, CFile::modeRead, &error));
    EXPECT_EQ(error.m_cause, CFileException::badPath);
    std::string inMissingFolder = PathOf("nofolder/x.dat");
    EXPECT_FALSE(file.Open(inMissingFolder.c_str(), CFile::modeCreate | CFile::modeWrite, &error));
    EXPECT_EQ(error.m_cause, CFileException::badPath);
}

TEST_F(CFileTest, ConstructorThrowsWhenTheFileCannotBeOpened) {
    std::string missing = PathOf("missing.dat");
    try {
        CFile file(missing.c_str(), CFile::modeRead | CFile::shareDenyNone);
        FAIL() << "opened a missing file";
    } catch (CFileException* e) {
        EXPECT_EQ(e->m_cause, CFileException::fileNotFound);
        EXPECT_EQ(e->m_strFileName, missing.c_str());
        e->Delete();
    }
}

TEST_F(CFileTest, WriteSeekReadAndLength) {
    std::string path = PathOf("data.bin");
    CFile file(path.c_str(), CFile::modeCreate | CFile::modeReadWrite | CFile::typeBinary);
    file.Write("hello world", 11);
    file.Write("", 0);
    EXPECT_EQ(file.GetPosition(), 11u);
    EXPECT_EQ(file.GetLength(), 11u);
    EXPECT_EQ(file.Seek(-5, CFile::end), 6);
    char buffer[16] = {};
    EXPECT_EQ(file.Read(buffer, sizeof buffer), 5u);
    EXPECT_STREQ(buffer, "world");
    EXPECT_EQ(file.Read(buffer, sizeof buffer), 0u);  // at the end
    file.SeekToBegin();
    EXPECT_EQ(file.Read(buffer, 5), 5u);
    EXPECT_EQ(std::string(buffer, 5), "hello");
    EXPECT_EQ(file.Seek(1, CFile::current), 6);
    EXPECT_EQ(file.SeekToEnd(), 11u);

    file.SetLength(5);
    EXPECT_EQ(file.GetLength(), 5u);
    file.SetLength(100);  // extends with zero bytes
    EXPECT_EQ(file.GetLength(), 100u);
    file.Flush();
    file.Close();
    EXPECT_EQ(file.m_hFile, CFile::hFileNull);
    EXPECT_TRUE(file.GetFilePath().IsEmpty());
    std::string bytes = zq::test::ReadFileBytes(path);
    ASSERT_EQ(bytes.size(), 100u);
    EXPECT_EQ(bytes.substr(0, 5), "hello");
    EXPECT_EQ(bytes[99], '\0');
}

TEST_F(CFileTest, SeekBeforeTheStartThrowsBadSeek) {
    std::string path = PathOf("seek.bin");
    CFile file(path.c_str(), CFile::modeCreate | CFile::modeReadWrite);
    try {
        file.Seek(-1, CFile::begin);
        FAIL() << "seek before the start succeeded";
    } catch (CFileException* e) {
        EXPECT_EQ(e->m_cause, CFileException::badSeek);
        EXPECT_EQ(e->m_lOsError, ERROR_NEGATIVE_SEEK);
        e->Delete();
    }
    EXPECT_EQ(file.GetPosition(), 0u);
}

TEST_F(CFileTest, CreateTruncatesUnlessNoTruncate) {
    std::string path = PathOf("keep.txt");
    ASSERT_TRUE(zq::test::WriteFileBytes(path, "existing"));
    {
        CFile file(path.c_str(), CFile::modeCreate | CFile::modeNoTruncate | CFile::modeReadWrite);
        EXPECT_EQ(file.GetLength(), 8u);
        file.SeekToEnd();
        file.Write("+", 1);
    }  // the destructor closes
    EXPECT_EQ(zq::test::ReadFileBytes(path), "existing+");
    {
        CFile file(path.c_str(), CFile::modeCreate | CFile::modeWrite);
        EXPECT_EQ(file.GetLength(), 0u);
    }
    EXPECT_EQ(zq::test::ReadFileBytes(path), "");
}

TEST_F(CFileTest, ReadingAWriteOnlyFileThrows) {
    std::string path = PathOf("wo.bin");
    CFile file(path.c_str(), CFile::modeCreate | CFile::modeWrite);
    char c;
    try {
        file.Read(&c, 1);
        FAIL() << "read from a write-only file";
    } catch (CFileException* e) {
        EXPECT_EQ(e->m_cause, CFileException::accessDenied);
        e->Delete();
    }
}

TEST_F(CFileTest, NamesAndStatus) {
    std::string path = PathOf("Status.Dat");
    CFile file(path.c_str(), CFile::modeCreate | CFile::modeWrite);
    file.Write("12345", 5);
    EXPECT_EQ(file.GetFileName(), "Status.Dat");
    EXPECT_EQ(file.GetFileTitle(), "Status.Dat");
    CString full = file.GetFilePath();
    EXPECT_EQ(full.Right(11), "\\Status.Dat");

    CFileStatus status;
    ASSERT_TRUE(file.GetStatus(status));
    EXPECT_EQ(status.m_size, 5);
    EXPECT_STREQ(status.m_szFullName, full);
    EXPECT_EQ(status.m_attribute & CFile::readOnly, 0);
    EXPECT_GT(status.m_mtime.GetTime(), 0);
    file.Close();

    CFileStatus named;
    ASSERT_TRUE(CFile::GetStatus(path.c_str(), named));
    EXPECT_EQ(named.m_size, 5);
    EXPECT_STREQ(named.m_szFullName, full);
    EXPECT_EQ(named.m_mtime, status.m_mtime);
    EXPECT_FALSE(CFile::GetStatus(PathOf("none.dat").c_str(), named));
    EXPECT_FALSE(CFile::GetStatus("", named));

    file.SetFilePath("C:\\dir\\other.txt");
    EXPECT_EQ(file.GetFileName(), "other.txt");
    file.SetFilePath("A:name");
    EXPECT_EQ(file.GetFileName(), "name");
}

TEST_F(CFileTest, RenameAndRemove) {
    std::string from = PathOf("a.txt");
    std::string to = PathOf("b.txt");
    ASSERT_TRUE(zq::test::WriteFileBytes(from, "x"));
    CFile::Rename(from.c_str(), to.c_str());
    EXPECT_EQ(zq::test::ReadFileBytes(to), "x");
    CFile::Remove(to.c_str());
    try {
        CFile::Remove(to.c_str());
        FAIL() << "removed a missing file";
    } catch (CFileException* e) {
        EXPECT_EQ(e->m_cause, CFileException::fileNotFound);
        EXPECT_EQ(e->m_strFileName, to.c_str());
        e->Delete();
    }
    try {
        CFile::Rename(from.c_str(), to.c_str());
        FAIL() << "renamed a missing file";
    } catch (CFileException* e) {
        EXPECT_EQ(e->m_cause, CFileException::fileNotFound);
        e->Delete();
    }
}

TEST_F(CFileTest, WrappedHandleIsNotClosedByTheObject) {
    std::string path = PathOf("wrapped.bin");
    HANDLE handle = CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(handle, INVALID_HANDLE_VALUE);
    {
        CFile file(handle);
        file.Write("abc", 3);
    }
    EXPECT_EQ(GetFileSize(handle, nullptr), 3u);  // still open
    EXPECT_TRUE(CloseHandle(handle));
}

TEST_F(CFileTest, OpeningAgainClosesTheFirstFile) {
    std::string first = PathOf("first.bin");
    std::string second = PathOf("second.bin");
    CFile file(first.c_str(), CFile::modeCreate | CFile::modeWrite | CFile::shareExclusive);
    ASSERT_TRUE(file.Open(second.c_str(), CFile::modeCreate | CFile::modeWrite));
    CFile again;
    EXPECT_TRUE(again.Open(first.c_str(), CFile::modeRead | CFile::shareExclusive));
}

}  // namespace
