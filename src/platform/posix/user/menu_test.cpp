#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "platform/win32.h"

namespace {

std::string Text(HMENU menu, UINT item, UINT flags) {
    char buffer[64];
    std::memset(buffer, 0xCC, sizeof buffer);
    int n = GetMenuStringA(menu, item, buffer, sizeof buffer, flags);
    return n > 0 ? std::string(buffer, static_cast<size_t>(n)) : std::string();
}

TEST(Menu, AppendsItemsAndReportsThem) {
    HMENU bar = CreateMenu();
    HMENU file = CreatePopupMenu();
    ASSERT_NE(bar, nullptr);
    ASSERT_NE(file, nullptr);
    EXPECT_TRUE(AppendMenuA(file, MF_STRING, 100, "Open"));
    EXPECT_TRUE(AppendMenuA(file, MF_SEPARATOR, 0, nullptr));
    EXPECT_TRUE(AppendMenuA(file, MF_STRING | MF_GRAYED, 101, "Exit"));
    EXPECT_TRUE(AppendMenuA(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(file), "File"));
    EXPECT_EQ(GetMenuItemCount(bar), 1);
    EXPECT_EQ(GetMenuItemCount(file), 3);
    EXPECT_EQ(GetSubMenu(bar, 0), file);
    EXPECT_EQ(GetSubMenu(file, 0), nullptr);
    EXPECT_EQ(GetMenuItemID(bar, 0), static_cast<UINT>(-1));
    EXPECT_EQ(GetMenuItemID(file, 0), 100u);
    EXPECT_EQ(GetMenuItemID(file, 1), 0u);
    EXPECT_EQ(GetMenuItemID(file, 3), static_cast<UINT>(-1));
    EXPECT_EQ(GetMenuItemID(file, -1), static_cast<UINT>(-1));
    EXPECT_EQ(Text(bar, 0, MF_BYPOSITION), "File");
    EXPECT_EQ(Text(bar, 101, MF_BYCOMMAND), "Exit");  // found in the submenu
    EXPECT_EQ(GetMenuState(file, 101, MF_BYCOMMAND), static_cast<UINT>(MF_GRAYED));
    EXPECT_EQ(GetMenuState(file, 1, MF_BYPOSITION), static_cast<UINT>(MF_SEPARATOR));
    EXPECT_EQ(GetMenuState(bar, 0, MF_BYPOSITION), (3u << 8) | MF_POPUP);
    EXPECT_TRUE(DestroyMenu(bar));
    EXPECT_FALSE(IsMenu(file));  // went with its menu
    EXPECT_FALSE(IsMenu(bar));
}

TEST(Menu, TextIsCutToTheBuffer) {
    HMENU menu = CreatePopupMenu();
    AppendMenuA(menu, MF_STRING, 1, "Settings");
    char small[4];
    EXPECT_EQ(GetMenuStringA(menu, 1, small, sizeof small, MF_BYCOMMAND), 3);
    EXPECT_STREQ(small, "Set");
    EXPECT_EQ(GetMenuStringA(menu, 1, nullptr, 0, MF_BYCOMMAND), 8);
    EXPECT_EQ(GetMenuStringA(menu, 2, small, sizeof small, MF_BYCOMMAND), 0);
    DestroyMenu(menu);
}

TEST(Menu, InsertDeleteAndRemove) {
    HMENU menu = CreatePopupMenu();
    HMENU sub = CreatePopupMenu();
    AppendMenuA(menu, MF_STRING, 1, "a");
    AppendMenuA(menu, MF_STRING, 3, "c");
    EXPECT_TRUE(InsertMenuA(menu, 3, MF_BYCOMMAND | MF_STRING, 2, "b"));
    EXPECT_TRUE(InsertMenuA(menu, 0, MF_BYPOSITION | MF_STRING, 0x10, "first"));
    EXPECT_TRUE(InsertMenuA(menu, static_cast<UINT>(-1), MF_BYPOSITION | MF_POPUP,
                            reinterpret_cast<UINT_PTR>(sub), "sub"));
    EXPECT_FALSE(InsertMenuA(menu, 99, MF_BYCOMMAND, 4, "x"));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_MENU_ITEM_NOT_FOUND));
    ASSERT_EQ(GetMenuItemCount(menu), 5);
    EXPECT_EQ(GetMenuItemID(menu, 0), 0x10u);
    EXPECT_EQ(GetMenuItemID(menu, 2), 2u);
    EXPECT_TRUE(DeleteMenu(menu, 2, MF_BYCOMMAND));
    EXPECT_FALSE(DeleteMenu(menu, 2, MF_BYCOMMAND));
    EXPECT_TRUE(RemoveMenu(menu, 3, MF_BYPOSITION));  // the submenu stays
    EXPECT_TRUE(IsMenu(sub));
    AppendMenuA(menu, MF_POPUP, reinterpret_cast<UINT_PTR>(sub), "sub");
    EXPECT_TRUE(DeleteMenu(menu, 3, MF_BYPOSITION));  // and now goes
    EXPECT_FALSE(IsMenu(sub));
    EXPECT_EQ(GetMenuItemCount(menu), 3);
    DestroyMenu(menu);
}

TEST(Menu, RefusesBadHandlesAndCycles) {
    HMENU gone = CreateMenu();
    DestroyMenu(gone);
    SetLastError(0);
    EXPECT_EQ(GetMenuItemCount(gone), -1);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_MENU_HANDLE));
    EXPECT_FALSE(AppendMenuA(gone, MF_STRING, 1, "x"));
    EXPECT_FALSE(DestroyMenu(gone));
    EXPECT_FALSE(DestroyMenu(nullptr));
    HMENU a = CreatePopupMenu();
    HMENU b = CreatePopupMenu();
    EXPECT_TRUE(AppendMenuA(a, MF_POPUP, reinterpret_cast<UINT_PTR>(b), "b"));
    EXPECT_FALSE(AppendMenuA(b, MF_POPUP, reinterpret_cast<UINT_PTR>(a), "a"));
    EXPECT_FALSE(AppendMenuA(a, MF_POPUP, reinterpret_cast<UINT_PTR>(a), "a"));
    EXPECT_FALSE(AppendMenuA(a, MF_POPUP, reinterpret_cast<UINT_PTR>(gone), "gone"));
    EXPECT_FALSE(AppendMenuA(a, MF_BITMAP, 1, nullptr));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOT_SUPPORTED));
    DestroyMenu(a);
}

TEST(Menu, EnableAndCheckReturnPreviousState) {
    HMENU menu = CreatePopupMenu();
    AppendMenuA(menu, MF_STRING, 7, "x");
    EXPECT_EQ(EnableMenuItem(menu, 7, MF_GRAYED), MF_ENABLED);
    EXPECT_EQ(EnableMenuItem(menu, 7, MF_ENABLED), MF_GRAYED);
    EXPECT_EQ(EnableMenuItem(menu, 8, MF_ENABLED), -1);
    EXPECT_EQ(CheckMenuItem(menu, 0, MF_BYPOSITION | MF_CHECKED), static_cast<DWORD>(MF_UNCHECKED));
    EXPECT_EQ(GetMenuState(menu, 7, MF_BYCOMMAND), static_cast<UINT>(MF_CHECKED));
    DestroyMenu(menu);
}

}  // namespace
