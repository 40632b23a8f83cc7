#include <gtest/gtest.h>

#include <string>

#include "platform/win32.h"
#include "support/test_support.h"

namespace {

TEST(ZqGetPrefixA, GivesThePrefixOrTheSizeItNeeds) {
    const std::string& prefix = zq::test::TestPrefix();
    char buffer[4096];
    EXPECT_EQ(ZqGetPrefixA(buffer, sizeof buffer), prefix.size());
    EXPECT_EQ(std::string(buffer), prefix);

    char small[4] = {'x', 'x', 'x', 'x'};
    EXPECT_EQ(ZqGetPrefixA(small, sizeof small), prefix.size() + 1);
    EXPECT_EQ(small[0], 'x');
    EXPECT_EQ(ZqGetPrefixA(nullptr, 0), prefix.size() + 1);
}

}  // namespace
