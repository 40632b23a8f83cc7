#include "framework/modules/extension_module.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "framework/core/cstring.h"

namespace {

HMODULE FakeModule(UINT_PTR n) {
    return reinterpret_cast<HMODULE>(0x10000 * n);
}

TEST(ExtensionModuleTest, ChainIsNewestFirstAndTermRemovesTheModule) {
    std::vector<HMODULE> before = zq::framework::ExtensionModuleChain();
    AFX_EXTENSION_MODULE first{}, second{};
    ASSERT_TRUE(AfxInitExtensionModule(first, FakeModule(1)));
    EXPECT_TRUE(first.bInitialized);
    EXPECT_EQ(first.hResource, FakeModule(1));
    ASSERT_TRUE(AfxInitExtensionModule(second, FakeModule(2)));
    ASSERT_TRUE(AfxInitExtensionModule(first, FakeModule(3)));  // already done: unchanged
    EXPECT_EQ(first.hModule, FakeModule(1));
    new CDynLinkLibrary(first);
    new CDynLinkLibrary(second);
    new CDynLinkLibrary(first);

    std::vector<HMODULE> chain = zq::framework::ExtensionModuleChain();
    ASSERT_GE(chain.size(), 3u);
    EXPECT_EQ(chain[0], FakeModule(1));
    EXPECT_EQ(chain[1], FakeModule(2));
    EXPECT_EQ(chain[2], FakeModule(1));

    AfxTermExtensionModule(first);
    EXPECT_FALSE(first.bInitialized);
    chain = zq::framework::ExtensionModuleChain();
    ASSERT_GE(chain.size(), 1u);
    EXPECT_EQ(chain[0], FakeModule(2));
    EXPECT_EQ(std::count(chain.begin(), chain.end(), FakeModule(1)), 0);
    AfxTermExtensionModule(second);
    EXPECT_EQ(zq::framework::ExtensionModuleChain(), before);
}

TEST(ExtensionModuleTest, ModulesWithoutResourcesFindNothing) {
    AFX_EXTENSION_MODULE fake{};
    AfxInitExtensionModule(fake, FakeModule(7));
    new CDynLinkLibrary(fake);
    char buffer[8] = "xxxxxxx";
    EXPECT_EQ(AfxLoadString(0xFFF0, buffer, sizeof buffer), 0);
    EXPECT_STREQ(buffer, "");
    EXPECT_EQ(AfxLoadString(1, nullptr, 10), 0);
    EXPECT_EQ(AfxFindResourceHandle(MAKEINTRESOURCE(0xFFF), RT_STRING), AfxGetResourceHandle());
    AfxTermExtensionModule(fake);
}

TEST(ExtensionModuleTest, ResourceHandleDefaultsToTheApplication) {
    EXPECT_EQ(AfxGetInstanceHandle(), GetModuleHandleA(nullptr));
    HINSTANCE original = AfxGetResourceHandle();
    EXPECT_EQ(original, AfxGetInstanceHandle());
    AfxSetResourceHandle(FakeModule(9));
    EXPECT_EQ(AfxGetResourceHandle(), FakeModule(9));
    AfxSetResourceHandle(original);
    EXPECT_EQ(AfxGetResourceHandle(), original);
}

}  // namespace
