#include "toolsmenu/tlm_menu.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "framework/windows/cmd_target.h"
#include "framework/windows/menu.h"
#include "framework/windows/wnd.h"
#include "support/process_probe.h"
#include "support/test_support.h"

namespace {

constexpr UINT kAnchor = 0x8100;

// A tools-menu file with the given (flags, menu text, description) items.
struct Entry {
    DWORD flags;
    const char* text;
    const char* description;
};

std::string WriteToolsFile(const std::string& path, std::initializer_list<Entry> entries) {
    CTlmFile file;
    CObArray items;
    for (const Entry& e : entries) {
        auto* item = new CTlmItem;
        item->SetDataFlags(e.flags);
        item->SetDataMenuText(e.text);
        item->SetDataDescription(e.description);
        items.Add(item);
    }
    EXPECT_EQ(file.SaveFileData(path.c_str(), TLMFILE_VERSION, TLMFILE_HEADER_SIZE, items), 0u);
    for (int i = 0; i < items.GetSize(); ++i) {
        delete items.GetAt(i);
    }
    return path;
}

std::string MenuText(CMenu* menu, int position) {
    CString text;
    menu->GetMenuString(static_cast<UINT>(position), text, MF_BYPOSITION);
    return static_cast<LPCSTR>(text);
}

class TlmMenuTest : public testing::Test {
protected:
    void SetUp() override {
        folder_ = zq::test::MakeScratchFolder("tlmmenu");
        // Main window: File (Open) | Tools (Options, anchor, old entries) | Help (About)
        HMENU bar = CreateMenu();
        file_ = CreatePopupMenu();
        AppendMenuA(file_, MF_STRING, 100, "Open");
        tools_ = CreatePopupMenu();
        AppendMenuA(tools_, MF_STRING, 200, "Options");
        AppendMenuA(tools_, MF_STRING, kAnchor, "Customize...");
        AppendMenuA(tools_, MF_SEPARATOR, 0, nullptr);
        AppendMenuA(tools_, MF_STRING, 24553, "stale");
        HMENU help = CreatePopupMenu();
        AppendMenuA(help, MF_STRING, 300, "About");
        AppendMenuA(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(file_), "File");
        AppendMenuA(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(tools_), "Tools");
        AppendMenuA(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(help), "Help");
        ASSERT_TRUE(
            frame_.CreateEx(0, nullptr, "Main", WS_OVERLAPPEDWINDOW, 0, 0, 640, 480, nullptr, bar));
        AfxSetMainWnd(&frame_);
    }
    void TearDown() override {
        AfxSetMainWnd(nullptr);
        frame_.DestroyWindow();
        CMenu::DeleteTempMap();
    }
    std::string Path(const char* name) { return folder_ + "/" + name; }
    CMenu* Tools() { return CMenu::FromHandle(tools_); }

    std::string folder_;
    CWnd frame_;
    HMENU file_ = nullptr;
    HMENU tools_ = nullptr;
};

TEST_F(TlmMenuTest, LoadsShownItemsAndBuildsTheMenuOnce) {
    CTlmMenu menu;
    std::string path = WriteToolsFile(
        Path("tools.tlm"), {{4, "Editor", "Edits text"}, {0, "Hidden", "-"}, {4, "Shell", "Runs"}});
    ASSERT_EQ(menu.LoadFile(path.c_str()), 0u);
    ASSERT_EQ(menu.GetItems().GetSize(), 2);
    for (int round = 0; round < 2; ++round) {
        ASSERT_EQ(menu.RefreshMenu(kAnchor), 0u);
        CMenu* tools = Tools();
        ASSERT_EQ(tools->GetMenuItemCount(), 5u);  // Options, anchor, separator, 2 entries
        EXPECT_EQ(tools->GetMenuState(2, MF_BYPOSITION), static_cast<UINT>(MF_SEPARATOR));
        EXPECT_EQ(tools->GetMenuItemID(3), 24553u);
        EXPECT_EQ(MenuText(tools, 3), "Editor");
        EXPECT_EQ(tools->GetMenuItemID(4), 24552u);
        EXPECT_EQ(MenuText(tools, 4), "Shell");
    }
    CString message = "old";
    EXPECT_TRUE(menu.GetMessageString(24552, message));
    EXPECT_EQ(message, "Runs");
    EXPECT_FALSE(menu.GetMessageString(24551, message));
    EXPECT_TRUE(message.IsEmpty());
}

TEST_F(TlmMenuTest, NoItemsLeavesOnlyWhatStandsBeforeTheAnchor) {
    CTlmMenu menu;
    ASSERT_EQ(menu.LoadFile(WriteToolsFile(Path("none.tlm"), {{0, "x", "y"}}).c_str()), 0u);
    ASSERT_EQ(menu.RefreshMenu(kAnchor), 0u);
    EXPECT_EQ(Tools()->GetMenuItemCount(), 2u);
}

TEST_F(TlmMenuTest, AnchorIsSearchedFromTheLastSubmenu) {
    AppendMenuA(file_, MF_STRING, kAnchor, "also here");
    AppendMenuA(file_, MF_STRING, 101, "Exit");
    CTlmMenu menu;
    ASSERT_EQ(menu.LoadFile(WriteToolsFile(Path("one.tlm"), {{4, "Editor", "e"}}).c_str()), 0u);
    ASSERT_EQ(menu.RefreshMenu(kAnchor), 0u);
    EXPECT_EQ(Tools()->GetMenuItemCount(), 4u);
    EXPECT_EQ(GetMenuItemCount(file_), 3);  // untouched
}

TEST_F(TlmMenuTest, MissingMenuOrAnchor) {
    CTlmMenu menu;
    EXPECT_EQ(menu.RefreshMenu(0x7777), TLM_ERROR_NO_ANCHOR);
    CWnd bare;
    ASSERT_TRUE(bare.CreateEx(0, nullptr, "", 0, 0, 0, 1, 1, nullptr, nullptr));
    AfxSetMainWnd(&bare);
    EXPECT_EQ(menu.RefreshMenu(kAnchor), TLM_ERROR_NO_MENU);
    AfxSetMainWnd(nullptr);
    EXPECT_EQ(menu.RefreshMenu(kAnchor), TLM_ERROR_NO_MENU);
}

TEST_F(TlmMenuTest, LoadFilePathRules) {
    CTlmMenu menu;
    std::string path = WriteToolsFile(Path("two.tlm"), {{4, "a", ""}, {4, "b", ""}});
    ASSERT_EQ(menu.LoadFile(path.c_str()), 0u);
    EXPECT_EQ(menu.LoadFile(nullptr), TLM_ERROR_NO_PATH);
    EXPECT_EQ(menu.GetItems().GetSize(), 2);  // kept
    EXPECT_EQ(menu.LoadFile(""), TLM_ERROR_NO_PATH);
    EXPECT_EQ(menu.GetItems().GetSize(), 0);  // already dropped
    EXPECT_EQ(menu.LoadFile(Path("missing.tlm").c_str()), TLM_ERROR_OPEN);
    ASSERT_EQ(menu.LoadFile(path.c_str()), 0u);
    ASSERT_EQ(menu.LoadFile(path.c_str()), 0u);  // replaces, does not add
    EXPECT_EQ(menu.GetItems().GetSize(), 2);
    menu.FreeAllMemory();
    EXPECT_EQ(menu.GetItems().GetSize(), 0);
}

TEST_F(TlmMenuTest, CommandRouting) {
    CTlmMenu menu;
    ASSERT_EQ(menu.LoadFile(WriteToolsFile(Path("r.tlm"), {{4, "NoProgram", "d"}}).c_str()), 0u);
    ASSERT_EQ(menu.RefreshMenu(kAnchor), 0u);
    CMenu* tools = Tools();
    tools->EnableMenuItem(3, MF_BYPOSITION | MF_GRAYED);
    CCmdUI ui;
    ui.m_nID = 24553;
    ui.m_nIndex = 3;
    ui.m_pMenu = tools;
    EXPECT_TRUE(menu.DoCommandMessage(24553, -1, &ui, &frame_));
    EXPECT_TRUE(ui.m_bEnableChanged);
    EXPECT_EQ(tools->GetMenuState(24553, MF_BYCOMMAND) & MF_GRAYED, 0u);
    EXPECT_TRUE(menu.DoCommandMessage(24553, 0, nullptr, &frame_));  // handled, nothing to start
    EXPECT_FALSE(menu.DoCommandMessage(24553, 1, nullptr, &frame_));
    EXPECT_FALSE(menu.DoCommandMessage(24552, 0, nullptr, &frame_));
    EXPECT_FALSE(menu.DoCommandMessage(200, -1, &ui, &frame_));
}

// Starting programs: the test executable is the program (see process_probe.h).
class TlmActivateTest : public testing::Test {
protected:
    void SetUp() override {
        report_ = zq::test::MakeScratchFolder("activate") + "/report";
        std::filesystem::path folder =
            std::filesystem::path(zq::test::TestPrefix()) / "drive_c" / "Program Files" / "My Tool";
        std::filesystem::create_directories(folder);
        std::filesystem::path probe = folder / "my tool.exe";
        std::filesystem::remove(probe);
        std::filesystem::create_symlink(zq::test::ProbeExecutable(), probe);
        ASSERT_TRUE(SetEnvironmentVariableA("ZQ_PROCESS_PROBE", report_.c_str()));
    }
    void TearDown() override { SetEnvironmentVariableA("ZQ_PROCESS_PROBE", nullptr); }
    std::string report_;
};

TEST_F(TlmActivateTest, StartsTheProgramWithBlanksAndQuotesIntact) {
    CTlmItem item;
    item.SetDataProgramPath(R"(C:\Program Files\My Tool\my tool.exe)");
    item.SetDataArguments(R"(one "two words" "say \"hi\"" back\slash)");
    item.SetDataWorkingDirectory(R"(C:\Program Files)");
    item.SetDataFlags(TLMITEM_FLAG_SHOWN | TLMITEM_FLAG_MINIMIZED);
    ASSERT_EQ(item.ActivateItem(nullptr), 0u);
    zq::test::ProbeReport report = zq::test::AwaitProbeReport(report_);
    ASSERT_TRUE(report.written);
    EXPECT_EQ(report.args,
              (std::vector<std::string>{R"(C:\Program Files\My Tool\my tool.exe)", "one",
                                        "two words", "say \"hi\"", "back\\slash"}));
    EXPECT_EQ(report.cwd, zq::test::TestPrefix() + "/drive_c/Program Files");
}

TEST_F(TlmActivateTest, EmptyWorkingFolderAndNoArguments) {
    CTlmItem item;
    item.SetDataProgramPath(R"(C:\Program Files\My Tool\my tool.exe)");
    ASSERT_EQ(item.ActivateItem(nullptr), 0u);
    zq::test::ProbeReport report = zq::test::AwaitProbeReport(report_);
    ASSERT_TRUE(report.written);
    EXPECT_EQ(report.args, (std::vector<std::string>{R"(C:\Program Files\My Tool\my tool.exe)"}));
}

TEST_F(TlmActivateTest, FailuresStartNothing) {
    CTlmItem item;
    EXPECT_EQ(item.ActivateItem(nullptr), TLM_ERROR_NO_PROGRAM);
    item.SetDataProgramPath(R"(C:\Program Files\My Tool\missing.exe)");
    EXPECT_EQ(item.ActivateItem(nullptr), TLM_ERROR_NOT_STARTED);
    item.SetDataProgramPath(R"(C:\Program Files\My Tool\my tool.exe)");
    item.SetDataWorkingDirectory(R"(C:\no such folder)");
    EXPECT_EQ(item.ActivateItem(nullptr), TLM_ERROR_NOT_STARTED);
    // The prompt cannot be made yet: nothing starts, the arguments stay.
    item.SetDataWorkingDirectory("");
    item.SetDataFlags(TLMITEM_FLAG_PROMPT | TLMITEM_FLAG_KEEP_ARGUMENTS);
    item.SetDataArguments("kept");
    CString typed;
    EXPECT_EQ(item.PromptForArgument(nullptr, typed), TLM_ERROR_PROMPT_FAILED);
    EXPECT_EQ(item.ActivateItem(nullptr), TLM_ERROR_PROMPT_FAILED);
    EXPECT_EQ(item.GetDataArguments(), "kept");
    EXPECT_FALSE(std::filesystem::exists(report_));
}

}  // namespace
