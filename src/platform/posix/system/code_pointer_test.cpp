#include <gtest/gtest.h>

#include <dlfcn.h>

#include <memory>

#include "platform/win32.h"

namespace {

LONG_PTR WINAPI LocalFunction() {
    return 1;
}
int g_data = 0;

FARPROC AsProc(void* address) {
    return reinterpret_cast<FARPROC>(address);
}

TEST(IsBadCodePtr, TellsCodeFromData) {
    EXPECT_FALSE(IsBadCodePtr(&LocalFunction));
    // Code of a shared library the process loaded (the C library).
    void* libc_function = dlsym(RTLD_DEFAULT, "strlen");
    ASSERT_NE(libc_function, nullptr);
    EXPECT_FALSE(IsBadCodePtr(AsProc(libc_function)));
    EXPECT_TRUE(IsBadCodePtr(nullptr));
    EXPECT_TRUE(IsBadCodePtr(AsProc(&g_data)));
    int local = 0;
    EXPECT_TRUE(IsBadCodePtr(AsProc(&local)));
    auto heap = std::make_unique<int>(0);
    EXPECT_TRUE(IsBadCodePtr(AsProc(heap.get())));
    EXPECT_TRUE(IsBadCodePtr(AsProc(reinterpret_cast<void*>(0x10))));
    // Asked again after a hit elsewhere: the per-thread cache does not mislead.
    EXPECT_FALSE(IsBadCodePtr(&LocalFunction));
    EXPECT_TRUE(IsBadCodePtr(AsProc(&g_data)));
}

}  // namespace
