#include "frame/custom_resource.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

HINSTANCE Self() {
    return GetModuleHandleA(nullptr);
}

TEST(CZqCustomResource, LoadsByNameAndById) {
    CZqCustomResource resource;
    ASSERT_EQ(resource.LoadCustomResource(Self(), "CountryData"), 0u);
    ASSERT_EQ(resource.GetResourceSize(), 12u);
    const DWORD* words = static_cast<const DWORD*>(resource.GetResourceData());
    EXPECT_EQ(words[0], 0x3EADu);
    EXPECT_EQ(words[2], 49u);
    char name[31];
    EXPECT_EQ(resource.GetResourceName(name, sizeof name), 0u);
    EXPECT_STREQ(name, "CountryData");
    EXPECT_EQ(resource.GetResourceIndex(), 0u);

    ASSERT_EQ(resource.LoadCustomResource(Self(), 77u), 0u);
    EXPECT_EQ(std::string(static_cast<const char*>(resource.GetResourceData()),
                          resource.GetResourceSize()),
              "seventy-seven");
    EXPECT_EQ(resource.GetResourceIndex(), 77u);
    EXPECT_EQ(resource.GetResourceName(name, sizeof name), 0u);
    EXPECT_STREQ(name, "");  // the previous name went with the new load
    EXPECT_TRUE(resource.IsKindOf(RUNTIME_CLASS(CObject)));
}

TEST(CZqCustomResource, ArgumentChecks) {
    CZqCustomResource resource;
    EXPECT_EQ(resource.LoadCustomResource(Self(), static_cast<const char*>(nullptr)), 7u);
    EXPECT_EQ(resource.LoadCustomResource(Self(), std::string(31, 'A').c_str()), 8u);
    EXPECT_EQ(resource.LoadCustomResource(Self(), std::string(30, 'A').c_str()),
              4u);  // fits, not found
    EXPECT_EQ(resource.LoadCustomResource(Self(), 0u), 9u);
    EXPECT_EQ(resource.LoadCustomResource(nullptr, 77u), 2u);
    EXPECT_EQ(resource.LoadCustomResource(Self(), ""), 3u);
    EXPECT_EQ(resource.LoadCustomResource(Self(), 9999u), 4u);
    EXPECT_EQ(resource.GetResourceData(), nullptr);

    char name[31];
    EXPECT_EQ(resource.GetResourceName(nullptr, 31), 10u);
    EXPECT_EQ(resource.GetResourceName(name, 30), 11u);
}

TEST(CZqCustomResource, FreeClearsEverything) {
    CZqCustomResource resource;
    ASSERT_EQ(resource.LoadCustomResource(Self(), 77u), 0u);
    EXPECT_EQ(resource.FreeCustomResource(), 0u);
    EXPECT_EQ(resource.GetResourceData(), nullptr);
    EXPECT_EQ(resource.GetResourceSize(), 0u);
    EXPECT_EQ(resource.GetResourceIndex(), 0u);
}

}  // namespace
