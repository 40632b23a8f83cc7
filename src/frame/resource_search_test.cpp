#include "frame/resource_search.h"

#include <gtest/gtest.h>

#include <thread>

#include "frame/global_functions.h"
#include "frame/process_data.h"
#include "framework/modules/extension_module.h"

namespace {

// Makes the English language module the block's language module.
class ResourceSearchTest : public ::testing::Test {
protected:
    void SetUp() override {
        block_ = ZqGblGetProcessData();
        ASSERT_NE(block_, nullptr);
        language_ = LoadLibraryA("ZQGBLENU.DLL");
        ASSERT_NE(language_, nullptr);
        block_->m_hLanguageModule = language_;
    }
    void TearDown() override {
        if (block_ != nullptr) {
            block_->m_hLanguageModule = nullptr;
        }
        if (language_ != nullptr) {
            FreeLibrary(language_);
        }
    }

    ZqGblProcessData* block_ = nullptr;
    HINSTANCE language_ = nullptr;
};

TEST_F(ResourceSearchTest, ApplicationThenLibraryThenLanguageModule) {
    // The test program's own table, the language module's country table.
    EXPECT_EQ(zq::frame::FindResourceModule(MAKEINTRESOURCEA(77), RT_RCDATA),
              AfxGetInstanceHandle());
    EXPECT_EQ(zq::frame::FindResourceModule(MAKEINTRESOURCEA(25599), RT_RCDATA), language_);
    EXPECT_EQ(zq::frame::FindResourceModule(MAKEINTRESOURCEA(25598), RT_RCDATA), nullptr);

    CString text = "stale";
    EXPECT_TRUE(zq::frame::LoadResourceString(129, text));  // the library's own table
    EXPECT_EQ(text, "SOFTWARE\\Zq,Inc.");
    EXPECT_TRUE(zq::frame::LoadResourceString(16027, text));  // the language module's
    EXPECT_EQ(text, "International call");
    EXPECT_FALSE(zq::frame::LoadResourceString(4711, text));
    EXPECT_EQ(text, "");
}

TEST_F(ResourceSearchTest, TheApplicationOverridesTheLanguageModule) {
    // The resource handle is searched first: a module chosen there wins.
    HINSTANCE german = LoadLibraryA("ZQGBLDEU.DLL");
    ASSERT_NE(german, nullptr);
    AfxSetResourceHandle(german);
    CString text;
    EXPECT_TRUE(zq::frame::LoadResourceString(16027, text));
    EXPECT_EQ(text,
              "Auslandsgespr\xE4"
              "ch");
    EXPECT_EQ(zq::frame::FindResourceModule(MAKEINTRESOURCEA(25599), RT_RCDATA), german);
    AfxSetResourceHandle(AfxGetInstanceHandle());
    FreeLibrary(german);
}

TEST_F(ResourceSearchTest, OtherThreadsDoNotSeeTheLanguageModule) {
    HINSTANCE found = language_;
    BOOL loaded = TRUE;
    std::thread([&] {
        found = zq::frame::FindResourceModule(MAKEINTRESOURCEA(25599), RT_RCDATA);
        CString text;
        loaded = zq::frame::LoadResourceString(16027, text);
    }).join();
    EXPECT_EQ(found, nullptr);
    EXPECT_FALSE(loaded);
}

}  // namespace
