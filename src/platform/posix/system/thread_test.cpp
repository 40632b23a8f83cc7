#include <gtest/gtest.h>

#include <thread>

#include "platform/win32.h"

namespace {

TEST(ThreadLocalStorage, SlotIsPerThreadAndStartsEmpty) {
    DWORD slot = TlsAlloc();
    ASSERT_NE(slot, TLS_OUT_OF_INDEXES);
    int here = 1;
    ASSERT_TRUE(TlsSetValue(slot, &here));
    EXPECT_EQ(TlsGetValue(slot), &here);

    LPVOID seen_elsewhere = &here;
    DWORD error_elsewhere = 0xDEADBEEF;
    std::thread([&] {
        seen_elsewhere = TlsGetValue(slot);
        error_elsewhere = GetLastError();
    }).join();
    EXPECT_EQ(seen_elsewhere, nullptr);
    EXPECT_EQ(error_elsewhere, 0u);  // a NULL slot is not a failure

    ASSERT_TRUE(TlsFree(slot));
    SetLastError(0);
    EXPECT_EQ(TlsGetValue(slot), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_FALSE(TlsFree(slot));
}

TEST(ThreadLocalStorage, RunsOutAndRecovers) {
    std::vector<DWORD> slots;
    for (;;) {
        DWORD slot = TlsAlloc();
        if (slot == TLS_OUT_OF_INDEXES)
            break;
        slots.push_back(slot);
    }
    EXPECT_GE(slots.size(), 60u);
    EXPECT_TRUE(TlsFree(slots.back()));
    DWORD again = TlsAlloc();
    EXPECT_EQ(again, slots.back());
    for (DWORD slot : slots)
        TlsFree(slot);
}

TEST(LastError, IsPerThread) {
    SetLastError(42);
    DWORD other = 0xDEADBEEF;
    std::thread([&] { other = GetLastError(); }).join();
    EXPECT_EQ(other, 0u);
    EXPECT_EQ(GetLastError(), 42u);
    SetLastErrorEx(0x20000005, SLE_WARNING);
    EXPECT_EQ(GetLastError(), 0x20000005u);
}

TEST(ErrorMode, ReturnsPreviousMode) {
    UINT first = SetErrorMode(SEM_FAILCRITICALERRORS);
    EXPECT_EQ(SetErrorMode(first), static_cast<UINT>(SEM_FAILCRITICALERRORS));
}

}  // namespace
