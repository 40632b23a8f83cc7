#include "frame/novice_mode.h"

#include <gtest/gtest.h>

#include <string>

#include "settings/global_config.h"
#include "support/test_support.h"

namespace {

using zq::test::ScopedEnvironmentVariable;

// The suite's root as this test program's version block gives it.
constexpr char kUsers[] = "Software\\Zq,Inc.\\Zq Communication Suite\\1.0\\Users";

std::string CurrentUserKey() {
    char name[UNLEN + 1] = {};
    DWORD size = sizeof name;
    EXPECT_TRUE(GetUserNameA(name, &size));
    return std::string(kUsers) + "\\" + name;
}

class NoviceMode : public testing::TestWithParam<const char*> {
protected:
    NoviceMode() : winver_("ZQ_WINVER", GetParam()) {
        config_.DeleteSection(1, "Software\\Zq,Inc.", nullptr);
    }
    ~NoviceMode() override { config_.DeleteSection(1, "Software\\Zq,Inc.", nullptr); }
    // The first user the installation made.
    void Install() {
        ASSERT_EQ(config_.SetValue(1, (std::string(kUsers) + "\\Setup").c_str(), "Language", "ENU"),
                  0u);
    }

    ScopedEnvironmentVariable winver_;
    CZqGlobalConfig config_;
};

INSTANTIATE_TEST_SUITE_P(Systems, NoviceMode, testing::Values("nt4", "win95", "win32s"));

TEST_P(NoviceMode, NothingStoredReadsAsFalse) {
    Install();
    EXPECT_FALSE(ZqGblGetRegNoviceMode());
}

TEST_P(NoviceMode, TheStoredValueComesBack) {
    Install();
    ZqGblSetRegNoviceMode(TRUE);
    EXPECT_EQ(ZqGblGetRegNoviceMode(), 1);
    DWORD stored = 0;
    EXPECT_EQ(config_.GetValue(1, CurrentUserKey().c_str(), "NoviceMode", stored, 7), 0u);
    EXPECT_EQ(stored, 1u);
    ZqGblSetRegNoviceMode(FALSE);
    EXPECT_EQ(ZqGblGetRegNoviceMode(), 0);
    // Any other number is handed back as it is.
    ASSERT_EQ(config_.SetValue(1, CurrentUserKey().c_str(), "NoviceMode", DWORD{5}), 0u);
    EXPECT_EQ(ZqGblGetRegNoviceMode(), 5);
}

TEST_P(NoviceMode, WithoutAnInstallationNothingIsWritten) {
    ZqGblSetRegNoviceMode(TRUE);
    EXPECT_FALSE(ZqGblGetRegNoviceMode());
    BOOL exists = TRUE;
    config_.DoesSubkeyExist(1, "Software\\Zq,Inc.\\Zq Communication Suite\\1.0", "Users", exists);
    EXPECT_FALSE(exists);
}

TEST_P(NoviceMode, AValueOfAnotherTypeReadsAsFalse) {
    if (std::string(GetParam()) == "win32s") {
        GTEST_SKIP() << "Win32s keeps every value as text";
    }
    Install();
    ZqGblSetRegNoviceMode(TRUE);
    ASSERT_EQ(config_.SetValue(1, CurrentUserKey().c_str(), "NoviceMode", "1"), 0u);
    EXPECT_FALSE(ZqGblGetRegNoviceMode());
}

}  // namespace
