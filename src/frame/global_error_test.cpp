#include "frame/global_error.h"

#include <gtest/gtest.h>

#include <thread>

namespace {

struct ErrorCase {
    void (*report)(DWORD);
    DWORD code;
    DWORD expected;
};

class GlobalErrorTest : public testing::TestWithParam<ErrorCase> {};

TEST_P(GlobalErrorTest, SetsTheLastError) {
    SetLastError(0);
    GetParam().report(GetParam().code);
    EXPECT_EQ(GetLastError(), GetParam().expected);
    EXPECT_EQ(CZqGlobalError::GetError(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Severities, GlobalErrorTest,
                         testing::Values(ErrorCase{&CZqGlobalError::Fatal, 5, 5},
                                         ErrorCase{&CZqGlobalError::Minor, 0x21124003, 0x21124003},
                                         ErrorCase{&CZqGlobalError::Warning, 7, 7},
                                         ErrorCase{&CZqGlobalError::AppFatal, 5, 0x20000005},
                                         ErrorCase{&CZqGlobalError::AppMinor, 0x1234, 0x20001234},
                                         ErrorCase{&CZqGlobalError::AppWarning, 5, 0x20000005},
                                         // The flag is set, never toggled.
                                         ErrorCase{&CZqGlobalError::AppWarning, 0x20000005,
                                                   0x20000005},
                                         ErrorCase{&CZqGlobalError::Fatal, 0, 0}));

TEST(GlobalErrorModeTest, FlagBitsSelectTheErrorMode) {
    UINT original = CZqGlobalError::SetMode(1);
    EXPECT_EQ(CZqGlobalError::SetMode(2), static_cast<UINT>(SEM_NOOPENFILEERRORBOX));
    EXPECT_EQ(CZqGlobalError::SetMode(3), static_cast<UINT>(SEM_FAILCRITICALERRORS));
    EXPECT_EQ(CZqGlobalError::SetMode(0xFFFC),
              static_cast<UINT>(SEM_NOOPENFILEERRORBOX | SEM_FAILCRITICALERRORS));
    EXPECT_EQ(CZqGlobalError::SetMode(0), 0u);  // other bits select nothing
    SetErrorMode(original);
}

TEST(GlobalErrorThreadTest, EachThreadHasItsOwnError) {
    CZqGlobalError::AppFatal(1);
    DWORD other = 0;
    std::thread([&] {
        CZqGlobalError::Warning(9);
        other = CZqGlobalError::GetError();
    }).join();
    EXPECT_EQ(other, 9u);
    EXPECT_EQ(CZqGlobalError::GetError(), 0x20000001u);
}

}  // namespace
