#include <unistd.h>

#include <gtest/gtest.h>

#include <cctype>
#include <cstring>
#include <string>

#include "platform/win32.h"
#include "support/test_support.h"

namespace {

using zq::test::ScopedEnvironmentVariable;

struct VersionCase {
    const char* winver;
    DWORD version;
    DWORD major, minor, build, platform;
    const char* service_pack;
};

class EmulatedVersion : public testing::TestWithParam<VersionCase> {};

TEST_P(EmulatedVersion, ReportsTheChosenSystem) {
    const VersionCase& c = GetParam();
    ScopedEnvironmentVariable winver("ZQ_WINVER", c.winver);
    EXPECT_EQ(GetVersion(), c.version);

    OSVERSIONINFOA info;
    std::memset(&info, 0xCC, sizeof info);
    info.dwOSVersionInfoSize = sizeof info;
    ASSERT_TRUE(GetVersionExA(&info));
    EXPECT_EQ(info.dwMajorVersion, c.major);
    EXPECT_EQ(info.dwMinorVersion, c.minor);
    EXPECT_EQ(info.dwBuildNumber, c.build);
    EXPECT_EQ(info.dwPlatformId, c.platform);
    EXPECT_STREQ(info.szCSDVersion, c.service_pack);
    EXPECT_EQ(info.szCSDVersion[127], '\0');
}

INSTANTIATE_TEST_SUITE_P(
    Systems, EmulatedVersion,
    testing::Values(
        VersionCase{nullptr, 0x05650004u, 4, 0, 1381, VER_PLATFORM_WIN32_NT, "Service Pack 6"},
        VersionCase{"nt4", 0x05650004u, 4, 0, 1381, VER_PLATFORM_WIN32_NT, "Service Pack 6"},
        VersionCase{"bogus", 0x05650004u, 4, 0, 1381, VER_PLATFORM_WIN32_NT, "Service Pack 6"},
        VersionCase{"win95", 0xC3B60004u, 4, 0, 0x040003B6u, VER_PLATFORM_WIN32_WINDOWS, ""},
        VersionCase{"win32s", 0x80000A03u, 3, 10, 0, VER_PLATFORM_WIN32s, ""}));

TEST(GetVersion, DecodesAsTheTraceHeaderReadsIt) {
    ScopedEnvironmentVariable winver("ZQ_WINVER", nullptr);
    const DWORD v = GetVersion();
    EXPECT_EQ(v & 0x80000000u, 0u);  // NT
    EXPECT_EQ(LOBYTE(LOWORD(v)), 4);
    EXPECT_EQ(HIBYTE(LOWORD(v)), 0);
    EXPECT_EQ(HIWORD(v), 1381);
}

TEST(GetVersionExA, ExtendedStructureOnNtOnly) {
    OSVERSIONINFOEXA ex;
    std::memset(&ex, 0xCC, sizeof ex);
    ex.dwOSVersionInfoSize = sizeof ex;
    {
        ScopedEnvironmentVariable winver("ZQ_WINVER", nullptr);
        ASSERT_TRUE(GetVersionExA(reinterpret_cast<LPOSVERSIONINFOA>(&ex)));
        EXPECT_EQ(ex.wServicePackMajor, 6);
        EXPECT_EQ(ex.wServicePackMinor, 0);
        EXPECT_EQ(ex.wProductType, VER_NT_WORKSTATION);
    }
    ScopedEnvironmentVariable winver("ZQ_WINVER", "win95");
    SetLastError(0);
    EXPECT_FALSE(GetVersionExA(reinterpret_cast<LPOSVERSIONINFOA>(&ex)));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
}

TEST(GetVersionExA, RefusesOtherSizes) {
    OSVERSIONINFOA info;
    std::memset(&info, 0xCC, sizeof info);
    info.dwOSVersionInfoSize = 100;
    SetLastError(0);
    EXPECT_FALSE(GetVersionExA(&info));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(info.dwMajorVersion, 0xCCCCCCCCu);
    EXPECT_EQ(sizeof(OSVERSIONINFOA), 148u);
    EXPECT_EQ(sizeof(OSVERSIONINFOEXA), 156u);
}

TEST(GetComputerNameA, UpperCaseNetBiosName) {
    char host[256] = {};
    ASSERT_EQ(gethostname(host, sizeof host - 1), 0);
    std::string expected(host, std::strcspn(host, "."));
    expected.resize(std::min<size_t>(expected.size(), MAX_COMPUTERNAME_LENGTH));
    for (char& c : expected)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));

    char name[MAX_COMPUTERNAME_LENGTH + 1];
    DWORD size = sizeof name;
    ASSERT_TRUE(GetComputerNameA(name, &size));
    EXPECT_EQ(name, expected);
    EXPECT_EQ(size, expected.size());

    size = static_cast<DWORD>(expected.size());  // no room for the terminator
    SetLastError(0);
    EXPECT_FALSE(GetComputerNameA(name, &size));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_BUFFER_OVERFLOW));
    EXPECT_EQ(size, expected.size() + 1);
}

TEST(GetUserNameA, SizeCountsTheTerminator) {
    char name[UNLEN + 1];
    DWORD size = sizeof name;
    ASSERT_TRUE(GetUserNameA(name, &size));
    ASSERT_GT(std::strlen(name), 0u);
    EXPECT_EQ(size, std::strlen(name) + 1);

    char small[1] = {'~'};
    DWORD small_size = 1;
    SetLastError(0);
    EXPECT_FALSE(GetUserNameA(small, &small_size));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(small_size, size);
    EXPECT_EQ(small[0], '~');
}

TEST(GlobalMemoryStatus, FiguresFitIn32Bits) {
    MEMORYSTATUS status;
    std::memset(&status, 0xCC, sizeof status);
    GlobalMemoryStatus(&status);
    EXPECT_EQ(status.dwLength, sizeof status);
    EXPECT_LE(status.dwMemoryLoad, 100u);
    EXPECT_GT(status.dwTotalPhys, 0u);
    for (SIZE_T figure : {status.dwTotalPhys, status.dwAvailPhys, status.dwTotalPageFile,
                          status.dwAvailPageFile, status.dwTotalVirtual, status.dwAvailVirtual}) {
        EXPECT_LE(figure, 0xFFFFFFFFu);
    }
    EXPECT_LE(status.dwAvailPhys, status.dwTotalPhys);
    EXPECT_EQ(status.dwTotalVirtual, 0x7FFE0000u);
}

TEST(OutputDebugStringA, SilentWithoutTheChannel) {
    // The channel list is read once per process; the test runs without it.
    if (const char* debug = std::getenv("ZQ_DEBUG"); debug && *debug) {
        GTEST_SKIP() << "ZQ_DEBUG is set";
    }
    testing::internal::CaptureStderr();
    OutputDebugStringA("line for a debugger\r\n");
    OutputDebugStringA(nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

}  // namespace

namespace {

TEST(OutputDebugStringADeathTest, WritesWithTheChannel) {
    // A fresh process, so that it reads ZQ_DEBUG anew.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    zq::test::ScopedEnvironmentVariable debug("ZQ_DEBUG", "tapi,debugstring");
    EXPECT_EXIT(
        {
            OutputDebugStringA("line for a debugger\n");
            std::exit(0);
        },
        testing::ExitedWithCode(0), "^line for a debugger\n$");
}

}  // namespace
