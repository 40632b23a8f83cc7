#include "framework/core/exceptions.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>

namespace {

struct OsCase {
    LONG error;
    int cause;
};

class OsErrorToExceptionTest : public testing::TestWithParam<OsCase> {};

TEST_P(OsErrorToExceptionTest, MapsTheCode) {
    EXPECT_EQ(CFileException::OsErrorToException(GetParam().error), GetParam().cause);
}

INSTANTIATE_TEST_SUITE_P(
    Codes, OsErrorToExceptionTest,
    testing::Values(OsCase{0, CFileException::none},
                    OsCase{ERROR_FILE_NOT_FOUND, CFileException::fileNotFound},
                    OsCase{ERROR_PATH_NOT_FOUND, CFileException::badPath},
                    OsCase{ERROR_TOO_MANY_OPEN_FILES, CFileException::tooManyOpenFiles},
                    OsCase{ERROR_ACCESS_DENIED, CFileException::accessDenied},
                    OsCase{ERROR_INVALID_HANDLE, CFileException::fileNotFound},
                    OsCase{ERROR_SHARING_VIOLATION, CFileException::sharingViolation},
                    OsCase{ERROR_LOCK_VIOLATION, CFileException::lockViolation},
                    OsCase{ERROR_HANDLE_EOF, CFileException::endOfFile},
                    OsCase{ERROR_DISK_FULL, CFileException::diskFull},
                    OsCase{ERROR_NEGATIVE_SEEK, CFileException::badSeek},
                    OsCase{ERROR_DIR_NOT_EMPTY, CFileException::removeCurrentDir},
                    OsCase{ERROR_ALREADY_EXISTS, CFileException::accessDenied},
                    OsCase{ERROR_MORE_DATA, CFileException::generic},
                    OsCase{-1, CFileException::generic}));

TEST(CFileExceptionTest, ThrownOnTheHeapAndDeletedByTheCatcher) {
    try {
        CFileException::ThrowOsError(ERROR_ACCESS_DENIED, "C:\\data\\x.ini");
        FAIL() << "nothing thrown";
    } catch (CFileException* e) {
        EXPECT_EQ(e->m_cause, CFileException::accessDenied);
        EXPECT_EQ(e->m_lOsError, ERROR_ACCESS_DENIED);
        EXPECT_EQ(e->m_strFileName, "C:\\data\\x.ini");
        EXPECT_TRUE(e->IsKindOf(RUNTIME_CLASS(CException)));
        char text[64];
        UINT help = 99;
        EXPECT_TRUE(e->GetErrorMessage(text, sizeof text, &help));
        EXPECT_STREQ(text, "Access to C:\\data\\x.ini was denied.");
        EXPECT_EQ(help, 0u);
        char tiny[5];
        e->GetErrorMessage(tiny, sizeof tiny);
        EXPECT_STREQ(tiny, "Acce");
        e->Delete();
    }
    EXPECT_NO_THROW(CFileException::ThrowOsError(0));
}

TEST(CFileExceptionTest, ErrnoCauses) {
    EXPECT_EQ(CFileException::ErrnoToException(ENOENT), CFileException::fileNotFound);
    EXPECT_EQ(CFileException::ErrnoToException(EACCES), CFileException::accessDenied);
    EXPECT_EQ(CFileException::ErrnoToException(ENOSPC), CFileException::diskFull);
    EXPECT_EQ(CFileException::ErrnoToException(EXDEV), CFileException::generic);
}

TEST(CFileExceptionTest, StackExceptionIsNotDeleted) {
    CFileException e(CFileException::badSeek, 25);
    e.m_bAutoDelete = FALSE;
    e.Delete();  // must not free a stack object
    EXPECT_EQ(e.m_cause, CFileException::badSeek);
    char text[80];
    e.GetErrorMessage(text, sizeof text);
    EXPECT_STREQ(text, "Seek failed on an unnamed file.");
}

}  // namespace
