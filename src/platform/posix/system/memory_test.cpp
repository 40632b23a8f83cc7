#include <gtest/gtest.h>

#include <cstring>

#include "platform/win32.h"

namespace {

TEST(GlobalMemory, FixedBlocksAreTheirOwnHandle) {
    HGLOBAL block = GlobalAlloc(GPTR, 64);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(GlobalLock(block), block);
    EXPECT_EQ(GlobalSize(block), 64u);
    const auto* bytes = static_cast<const unsigned char*>(block);
    for (int i = 0; i < 64; ++i) {
        EXPECT_EQ(bytes[i], 0) << i;
    }
    EXPECT_TRUE(GlobalUnlock(block));
    EXPECT_EQ(GlobalFree(block), nullptr);
    EXPECT_EQ(GlobalFree(block), block);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
    EXPECT_EQ(GlobalFree(nullptr), nullptr);
}

TEST(GlobalMemory, MoveableBlocksCountTheirLocks) {
    HGLOBAL block = GlobalAlloc(GHND, 10);
    ASSERT_NE(block, nullptr);
    void* first = GlobalLock(block);
    ASSERT_NE(first, nullptr);
    EXPECT_NE(first, block);
    EXPECT_EQ(GlobalLock(block), first);
    EXPECT_TRUE(GlobalUnlock(block));
    SetLastError(0xDEADBEEF);
    EXPECT_FALSE(GlobalUnlock(block));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(NO_ERROR));
    EXPECT_FALSE(GlobalUnlock(block));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOT_LOCKED));
    EXPECT_EQ(GlobalFree(block), nullptr);
    EXPECT_EQ(GlobalLock(block), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
}

TEST(GlobalMemory, RefusesUnknownFlagsAndEmptyBlocksStillHaveAnAddress) {
    EXPECT_EQ(GlobalAlloc(GMEM_MODIFY, 4), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    HLOCAL a = LocalAlloc(LPTR, 0);
    HLOCAL b = LocalAlloc(LPTR, 0);
    ASSERT_NE(a, nullptr);
    ASSERT_NE(b, nullptr);
    EXPECT_NE(a, b);
    EXPECT_EQ(LocalSize(a), 0u);
    EXPECT_EQ(LocalFree(a), nullptr);
    EXPECT_EQ(LocalFree(b), nullptr);
}

}  // namespace
