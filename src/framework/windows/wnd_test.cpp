#include <gtest/gtest.h>

#include "framework/framework.h"

namespace {

TEST(FrameworkMenu, OwnsWhatItCreatedAndNotWhatItWasHanded) {
    HMENU kept = nullptr;
    {
        CMenu menu;
        ASSERT_TRUE(menu.CreatePopupMenu());
        EXPECT_EQ(CMenu::FromHandle(menu.m_hMenu), &menu);  // permanent
        EXPECT_TRUE(menu.AppendMenu(MF_STRING, 10, "Ten"));
        CString text;
        EXPECT_EQ(menu.GetMenuString(10, text, MF_BYCOMMAND), 3);
        EXPECT_EQ(text, "Ten");
        EXPECT_EQ(menu.GetMenuItemCount(), 1u);
        kept = menu.m_hMenu;
    }
    EXPECT_FALSE(IsMenu(kept));  // destroyed with its object

    HMENU raw = CreatePopupMenu();
    CMenu* temporary = CMenu::FromHandle(raw);
    ASSERT_NE(temporary, nullptr);
    EXPECT_EQ(CMenu::FromHandle(raw), temporary);
    CMenu::DeleteTempMap();
    EXPECT_TRUE(IsMenu(raw));  // temporary objects destroy nothing
    EXPECT_EQ(CMenu::FromHandle(nullptr), nullptr);
    DestroyMenu(raw);
}

TEST(FrameworkWnd, MainWindowHoldsAMenuWithSubmenus) {
    CMenu bar;
    ASSERT_TRUE(bar.CreateMenu());
    HMENU tools = CreatePopupMenu();
    AppendMenuA(tools, MF_STRING, 500, "Options");
    bar.AppendMenu(MF_POPUP, reinterpret_cast<UINT_PTR>(tools), "Tools");
    CWnd frame;
    ASSERT_TRUE(frame.CreateEx(0, nullptr, "Frame", WS_OVERLAPPEDWINDOW, 0, 0, 100, 100, nullptr,
                               bar.Detach()));  // the window owns it now
    AfxSetMainWnd(&frame);
    ASSERT_EQ(AfxGetMainWnd(), &frame);
    CMenu* menu = AfxGetMainWnd()->GetMenu();
    ASSERT_NE(menu, nullptr);
    CMenu* sub = menu->GetSubMenu(0);
    ASSERT_NE(sub, nullptr);
    EXPECT_EQ(sub->m_hMenu, tools);
    EXPECT_EQ(sub->GetMenuItemID(0), 500u);
    CString title;
    frame.GetWindowText(title);
    EXPECT_EQ(title, "Frame");
    HWND window = frame.m_hWnd;
    EXPECT_EQ(CWnd::FromHandlePermanent(window), &frame);
    EXPECT_TRUE(frame.DestroyWindow());
    EXPECT_FALSE(IsWindow(window));
    EXPECT_FALSE(IsMenu(tools));
    AfxSetMainWnd(nullptr);
    CMenu::DeleteTempMap();
}

TEST(FrameworkCmdUI, EnableAndCheckReachTheMenuItem) {
    CMenu menu;
    menu.CreatePopupMenu();
    menu.AppendMenu(MF_STRING | MF_GRAYED, 7, "Seven");
    CCmdUI ui;
    ui.m_nID = 7;
    ui.m_nIndex = 0;
    ui.m_pMenu = &menu;
    ui.Enable(TRUE);
    EXPECT_TRUE(ui.m_bEnableChanged);
    EXPECT_EQ(menu.GetMenuState(7, MF_BYCOMMAND) & MF_GRAYED, 0u);
    ui.SetCheck(1);
    EXPECT_EQ(menu.GetMenuState(7, MF_BYCOMMAND) & MF_CHECKED, static_cast<UINT>(MF_CHECKED));
    ui.Enable(FALSE);
    EXPECT_EQ(menu.GetMenuState(7, MF_BYCOMMAND) & MF_GRAYED, static_cast<UINT>(MF_GRAYED));
    CCmdTarget target;
    EXPECT_FALSE(target.OnCmdMsg(7, CN_COMMAND, nullptr, nullptr));
    EXPECT_TRUE(CWnd().IsKindOf(RUNTIME_CLASS(CCmdTarget)));
}

TEST(FrameworkWnd, DestructorDestroysAnAttachedWindow) {
    HWND window = nullptr;
    {
        CWnd wnd;
        ASSERT_TRUE(wnd.CreateEx(0, nullptr, "", 0, 0, 0, 1, 1, nullptr, nullptr));
        window = wnd.m_hWnd;
        AfxSetMainWnd(&wnd);
    }
    EXPECT_FALSE(IsWindow(window));
    EXPECT_EQ(AfxGetMainWnd(), nullptr);
}

}  // namespace
