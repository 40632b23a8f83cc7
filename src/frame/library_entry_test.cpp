#include "frame/library_entry.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

#include "frame/global_functions.h"
#include "frame/process_data.h"
#include "framework/core/cstring.h"
#include "framework/modules/extension_module.h"

namespace {

bool InChain(HMODULE module) {
    std::vector<HMODULE> chain = zq::framework::ExtensionModuleChain();
    return std::count(chain.begin(), chain.end(), module) == 1;
}

// The library was attached when the test executable loaded it, on the
// thread that now runs the tests.
TEST(LibraryEntryTest, AttachStateIsVisibleOnTheLoadingThread) {
    HINSTANCE instance = ZqGblGetInstanceHandle();
    ASSERT_NE(instance, nullptr);
    EXPECT_EQ(instance,
              ZqModuleFromAddress(reinterpret_cast<const void*>(&ZqGblGetInstanceHandle)));
    ZqGblProcessData* block = ZqGblGetProcessData();
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(block->m_hInstance, instance);
    EXPECT_EQ(block->m_nLanguageRefCount, 0);
    EXPECT_EQ(block->m_hLanguageModule, nullptr);
    EXPECT_EQ(block->m_pLanguageSupport, nullptr);
    EXPECT_EQ(zq::frame::FrameworkInitCount(), 1);
    EXPECT_TRUE(InChain(instance));
}

TEST(LibraryEntryTest, OtherThreadsSeeNoBlock) {
    ZqGblProcessData* seen = reinterpret_cast<ZqGblProcessData*>(1);
    HINSTANCE instance = nullptr;
    std::thread([&] {
        seen = ZqGblGetProcessData();
        instance = ZqGblGetInstanceHandle();  // process-wide, not per thread
    }).join();
    EXPECT_EQ(seen, nullptr);
    EXPECT_EQ(instance, ZqGblGetInstanceHandle());
    EXPECT_NE(ZqGblGetProcessData(), nullptr);
}

TEST(LibraryEntryTest, LookingUpTheBlockKeepsTheLastError) {
    SetLastError(0xDEADBEEF);
    ZqGblGetProcessData();
    EXPECT_EQ(GetLastError(), 0xDEADBEEFu);
}

TEST(LibraryEntryTest, DetachAndAttachAgain) {
    HINSTANCE instance = ZqGblGetInstanceHandle();
    zq::frame::DetachLibrary();
    EXPECT_EQ(ZqGblGetProcessData(), nullptr);
    EXPECT_EQ(zq::frame::FrameworkInitCount(), 0);
    EXPECT_FALSE(InChain(instance));
    zq::frame::DetachLibrary();  // a second detach finds nothing to undo
    EXPECT_EQ(zq::frame::FrameworkInitCount(), 0);

    ASSERT_TRUE(zq::frame::AttachLibrary(instance));
    ZqGblProcessData* block = ZqGblGetProcessData();
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(block->m_hInstance, instance);
    EXPECT_EQ(zq::frame::FrameworkInitCount(), 1);
    EXPECT_TRUE(InChain(instance));
}

TEST(LibraryEntryTest, DetachFromAnotherThreadFreesTheBlock) {
    HINSTANCE instance = ZqGblGetInstanceHandle();
    std::thread([] { zq::frame::DetachLibrary(); }).join();
    EXPECT_EQ(ZqGblGetProcessData(), nullptr);
    EXPECT_EQ(zq::frame::FrameworkInitCount(), 0);
    ASSERT_TRUE(zq::frame::AttachLibrary(instance));
    EXPECT_NE(ZqGblGetProcessData(), nullptr);
}

TEST(GlobalFunctionsTest, SelectDirectoryFailsCleanlyWithoutTheDialog) {
    char result[16];
    std::fill(std::begin(result), std::end(result), '\xCC');
    SetLastError(0);
    EXPECT_EQ(ZqSelectDirectory(result, sizeof result, nullptr, "C:\\", 4), 2);
    for (char c : result) {
        EXPECT_EQ(c, '\0');
    }
    EXPECT_EQ(GetLastError(), 0x21124003u);
    EXPECT_EQ(ZqSelectDirectory(nullptr, 10, nullptr, nullptr, 0), 2);
}

TEST(GlobalFunctionsTest, KeptEntryPointsDoNothing) {
    FILEERRORDATA data{};
    EXPECT_EQ(VelnorSetup(nullptr, 1), 0);
    EXPECT_EQ(ZqLogFileError(&data, 1, 2, 3), 0u);
    EXPECT_EQ(ZqLogFileErrorData(&data, 1, 2, 3, nullptr, 0), 0u);
    EXPECT_EQ(ZqLogFileError(nullptr, 0, 0, 0), 0u);
}

}  // namespace

namespace {

TEST(LibraryEntryTest, LibraryStringsAreFoundThroughTheExtensionChain) {
    CString name;
    ASSERT_TRUE(name.LoadString(130));
    EXPECT_EQ(name, "Location");
    EXPECT_EQ(CString(MAKEINTRESOURCE(129)), "SOFTWARE\\Zq,Inc.");
    CString formatted;
    formatted.Format(170u);  // a format without conversions
    EXPECT_EQ(formatted, "TAPIDialingEnabled");
    EXPECT_EQ(AfxFindResourceHandle(MAKEINTRESOURCE(130 / 16 + 1), RT_STRING),
              ZqGblGetInstanceHandle());
    EXPECT_FALSE(name.LoadString(171));
    EXPECT_TRUE(name.IsEmpty());
}

TEST(LibraryEntryTest, StringsAreGoneWhileDetached) {
    HINSTANCE instance = ZqGblGetInstanceHandle();
    zq::frame::DetachLibrary();
    CString name;
    EXPECT_FALSE(name.LoadString(130));
    ASSERT_TRUE(zq::frame::AttachLibrary(instance));
    EXPECT_TRUE(name.LoadString(130));
}

TEST(LibraryEntryTest, MissingSampleControlLibraryLeavesTheFieldEmpty) {
    ZqGblProcessData* block = ZqGblGetProcessData();
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(block->m_hSampleControl, nullptr);
}

TEST(GlobalFunctionsTest, LocalTimeIsThePlatformsLocalTime) {
    SYSTEMTIME mine{}, platform{};
    ZqGblGetLocalTime(&mine);
    GetLocalTime(&platform);
    EXPECT_GE(mine.wYear, 2020);
    EXPECT_GE(mine.wMonth, 1);
    EXPECT_LE(mine.wMonth, 12);
    EXPECT_EQ(mine.wYear, platform.wYear);  // may differ only across New Year's midnight
    ZqGblGetLocalTime(nullptr);
}

}  // namespace
