#include <gtest/gtest.h>

#include "platform/win32.h"

namespace {

LRESULT CALLBACK NoOpProc(HWND, UINT, WPARAM, LPARAM) {
    return 0;
}

class WindowTest : public testing::Test {
protected:
    void SetUp() override {
        WNDCLASSA wc{};
        wc.lpfnWndProc = NoOpProc;
        wc.lpszClassName = "ZqTestFrame";
        atom_ = RegisterClassA(&wc);
        ASSERT_NE(atom_, 0);
    }
    void TearDown() override { UnregisterClassA("ZqTestFrame", nullptr); }
    ATOM atom_ = 0;
};

TEST_F(WindowTest, TopLevelWindowHoldsItsMenuAndDestroysIt) {
    HMENU menu = CreateMenu();
    HWND frame = CreateWindowExA(0, "zqtestframe", "Main", WS_OVERLAPPEDWINDOW, CW_USEDEFAULT, 0,
                                 CW_USEDEFAULT, 0, nullptr, menu, nullptr, nullptr);
    ASSERT_NE(frame, nullptr);
    EXPECT_TRUE(IsWindow(frame));
    EXPECT_EQ(GetMenu(frame), menu);
    EXPECT_TRUE(DrawMenuBar(frame));
    char title[8];
    EXPECT_EQ(GetWindowTextA(frame, title, sizeof title), 4);
    EXPECT_STREQ(title, "Main");
    HMENU other = CreateMenu();
    EXPECT_TRUE(SetMenu(frame, other));
    EXPECT_EQ(GetMenu(frame), other);
    EXPECT_TRUE(IsMenu(menu));  // replaced, not destroyed
    EXPECT_FALSE(UnregisterClassA("ZqTestFrame", nullptr));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_CLASS_HAS_WINDOWS));
    EXPECT_TRUE(DestroyWindow(frame));
    EXPECT_FALSE(IsWindow(frame));
    EXPECT_FALSE(IsMenu(other));
    EXPECT_TRUE(DestroyMenu(menu));
    EXPECT_FALSE(DestroyWindow(frame));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_WINDOW_HANDLE));
    EXPECT_EQ(GetMenu(frame), nullptr);
}

TEST_F(WindowTest, ChildWindowsGoWithTheirParent) {
    HWND frame = CreateWindowExA(0, MAKEINTRESOURCEA(atom_), "", 0, 0, 0, 10, 10, nullptr, nullptr,
                                 nullptr, nullptr);
    ASSERT_NE(frame, nullptr);
    HWND child =
        CreateWindowExA(0, "ZqTestFrame", "", WS_CHILD, 0, 0, 1, 1, frame,
                        reinterpret_cast<HMENU>(static_cast<UINT_PTR>(42)), nullptr, nullptr);
    ASSERT_NE(child, nullptr);
    EXPECT_EQ(GetParent(child), frame);
    EXPECT_EQ(GetMenu(child), nullptr);  // 42 is its identifier, not a menu
    EXPECT_FALSE(SetMenu(child, nullptr));
    EXPECT_TRUE(DestroyWindow(frame));
    EXPECT_FALSE(IsWindow(child));
}

TEST_F(WindowTest, CreationRefusesBadArguments) {
    EXPECT_EQ(
        CreateWindowExA(0, "NoSuchClass", "", 0, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr),
        nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_CANNOT_FIND_WND_CLASS));
    EXPECT_EQ(CreateWindowExA(0, "ZqTestFrame", "", WS_CHILD, 0, 0, 1, 1, nullptr, nullptr, nullptr,
                              nullptr),
              nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_TLW_WITH_WSCHILD));
    HMENU gone = CreateMenu();
    DestroyMenu(gone);
    EXPECT_EQ(CreateWindowExA(0, "ZqTestFrame", "", 0, 0, 0, 1, 1, nullptr, gone, nullptr, nullptr),
              nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_MENU_HANDLE));
    WNDCLASSA wc{};
    wc.lpfnWndProc = NoOpProc;
    wc.lpszClassName = "ZQTESTFRAME";
    EXPECT_EQ(RegisterClassA(&wc), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_CLASS_ALREADY_EXISTS));
}

TEST(SystemMetrics, ScreenHasASize) {
    EXPECT_GT(GetSystemMetrics(SM_CXSCREEN), 0);
    EXPECT_GT(GetSystemMetrics(SM_CYSCREEN), 0);
    EXPECT_EQ(GetSystemMetrics(9999), 0);
}

}  // namespace
