#include "diagnostics/trace.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "diagnostics/version_resource.h"
#include "settings/global_config.h"
#include "support/test_support.h"

namespace {

const std::string kAsterisks = "****************************************\r\n";

// A clock that stands still until the test moves it.
struct FakeClock {
    DWORD now = 0;
    static DWORD Read(void* context) { return static_cast<FakeClock*>(context)->now; }
};

// Gives the tests the header writer, so its lines can be checked for any
// machine.
class HeaderTrace : public CZqTrace {
public:
    using CZqTrace::FormatRelativeTime;
    using CZqTrace::WriteHeader;
};

std::string ExecutableDosFolder() {
    char module[MAX_PATH + 1] = {};
    GetModuleFileNameA(nullptr, module, MAX_PATH);
    std::string path = module;
    return path.substr(0, path.find_last_of('\\'));
}

// The registry as an installation leaves it: the suite's root (from the
// program's version strings) with a first user. Without it the program's
// version block counts as unreadable.
void InstallSuite() {
    CZqVersionResource strings;
    strings.ExtractVersionInfo();
    const std::string root = std::string("Software\\") +
                             static_cast<const char*>(strings.GetStandardValue(1)) + "\\" +
                             static_cast<const char*>(strings.GetStandardValue(7)) + "\\" +
                             static_cast<const char*>(strings.GetStandardValue(8));
    CZqGlobalConfig config;
    ASSERT_EQ(config.SetValue(1, (root + "\\Users\\Installer").c_str(), "NoviceMode", DWORD{1}),
              0u);
}

// Whether text has the shape of pattern: '#' stands for one digit, '*' for
// one or more digits, '?' for any character, everything else for itself.
bool HasShape(const std::string& text, const std::string& pattern) {
    size_t t = 0;
    for (char p : pattern) {
        const auto digit = [&] { return t < text.size() && text[t] >= '0' && text[t] <= '9'; };
        if (p == '#' || p == '*') {
            if (!digit())
                return false;
            ++t;
            while (p == '*' && digit())
                ++t;
        } else if (t < text.size() && (p == '?' || text[t] == p)) {
            ++t;
        } else {
            return false;
        }
    }
    return t == text.size();
}

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    size_t start = 0;
    for (size_t end; (end = text.find("\r\n", start)) != std::string::npos; start = end + 2) {
        lines.push_back(text.substr(start, end - start));
    }
    return lines;
}

// Every test writes its own trace file beside the test program (test
// processes run in parallel there) and removes it afterwards.
class TraceFile : public testing::Test {
protected:
    void SetUp() override {
        name_ = std::string("Test") + testing::UnitTest::GetInstance()->current_test_info()->name();
        title_ = static_cast<const char*>(CZqTrace::MakeFileTitle(name_.c_str()));
        path_ = zq::test::ExecutableFolder() + "/" + title_;
        std::remove(path_.c_str());
    }
    void TearDown() override {
        trace_.Close();
        std::remove(path_.c_str());
        for (const char* winver : {"nt4", "win32s"}) {
            zq::test::ScopedEnvironmentVariable system("ZQ_WINVER", winver);
            CZqGlobalConfig().DeleteSection(1, "Software\\Zq,Inc.", nullptr);
        }
    }
    std::string Bytes() const { return zq::test::ReadFileBytes(path_); }
    // Opens the trace and writes out the header, so the buffer starts
    // empty; returns the file's size.
    size_t OpenFlushed(BOOL append = FALSE) {
        EXPECT_TRUE(trace_.Open(name_.c_str(), append));
        trace_.Flush();
        return Bytes().size();
    }
    std::string Since(size_t offset) const {
        const std::string bytes = Bytes();
        return bytes.size() >= offset ? bytes.substr(offset) : "<file shrank>";
    }
    // Buffers exactly `count` bytes of 'x' in pieces the formatter accepts.
    void Fill(size_t count) {
        while (count > 0) {
            const size_t piece = count > 500 ? 500 : count;
            trace_.Output("%s", std::string(piece, 'x').c_str());
            count -= piece;
        }
    }

    std::string name_;
    std::string title_;
    std::string path_;
    HeaderTrace trace_;
};

TEST(TraceFileTitle, KeepsLettersAndDigitsBeforeTheFirstDot) {
    struct Case {
        const char* name;
        const char* title;
    };
    for (const Case& c : {Case{"fax.log", "Zqfax.TRC"}, Case{"Tel Line 2", "ZqTelLine2.TRC"},
                          Case{"a.b.c", "Zqa.TRC"}, Case{"!-+ ()", "Zq.TRC"}, Case{"", "Zq.TRC"},
                          Case{".hidden", "Zq.TRC"}, Case{"Line_\xE9t\xE9", "ZqLinet.TRC"},
                          Case{"FAX32Mirkel Session 0012", "ZqFAX32MirkelSession0012.TRC"}}) {
        EXPECT_STREQ(CZqTrace::MakeFileTitle(c.name), c.title) << c.name;
    }
}

TEST_F(TraceFile, LivesBesideTheExecutableWithHeaderAndFooter) {
    EXPECT_STREQ(trace_.GetFileName(), "");
    ASSERT_TRUE(trace_.Open(name_.c_str(), FALSE));
    EXPECT_TRUE(trace_.IsOpen());
    EXPECT_EQ(std::string(trace_.GetFileName()), ExecutableDosFolder() + "\\" + title_);
    trace_.Output("line %d of %s\r\n", 1, "text");
    trace_.Close();
    // The path is forgotten for callers, the title kept.
    EXPECT_STREQ(trace_.GetFileName(), "");
    EXPECT_EQ(std::string(trace_.GetFileTitle()), title_);
    EXPECT_FALSE(trace_.IsOpen());

    const std::string stamp = "##/##/## ##:##:## ?M";
    const std::vector<std::string> lines = Lines(Bytes());
    ASSERT_GE(lines.size(), 7u);
    EXPECT_EQ(lines[0] + "\r\n", kAsterisks);
    EXPECT_TRUE(HasShape(lines[1], title_ + " - Started " + stamp)) << lines[1];
    const size_t n = lines.size();
    EXPECT_EQ(lines[n - 5] + "\r\n", kAsterisks);
    EXPECT_EQ(lines[n - 4], "line 1 of text");
    EXPECT_EQ(lines[n - 3] + "\r\n", kAsterisks);
    EXPECT_TRUE(HasShape(lines[n - 2], title_ + " - Stopped " + stamp)) << lines[n - 2];
    EXPECT_EQ(lines[n - 1] + "\r\n", kAsterisks);
}

TEST_F(TraceFile, HeaderWithoutAnInstallationHasOnlyTheStartedLine) {
    OpenFlushed();
    const std::vector<std::string> lines = Lines(Bytes());
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[2] + "\r\n", kAsterisks);
}

TEST_F(TraceFile, HeaderDescribesTheProgramAndTheMachine) {
    InstallSuite();
    CZqVersionResource version;
    ASSERT_TRUE(version.ExtractVersionInfo());
    DWORD ms = 0, ls = 0;
    version.GetFileVersionMajorMinor(ms, ls);
    char expected[64];
    std::snprintf(expected, sizeof expected, "Version: %u.%u.%u.%u", HIWORD(ms), LOWORD(ms),
                  HIWORD(ls), LOWORD(ls));
    struct System {
        const char* winver;
        const char* line;
    };
    for (const System& system : {System{"nt4", "Operating System: Windows NT v4.0 Build 1381"},
                                 System{"win95", "Operating System: Windows 95 v4.0"},
                                 System{"win32s", "Operating System: Windows v3.10 Build 0"}}) {
        zq::test::ScopedEnvironmentVariable winver("ZQ_WINVER", system.winver);
        InstallSuite();  // Win32s keeps its registry elsewhere
        ASSERT_TRUE(trace_.Open(name_.c_str(), FALSE));
        trace_.Flush();
        const std::vector<std::string> lines = Lines(Bytes());
        ASSERT_EQ(lines.size(), 8u) << system.winver;
        EXPECT_EQ(lines[2], "");
        EXPECT_EQ(lines[3], expected);  // the test programs are plain release builds
        EXPECT_TRUE(HasShape(lines[4], "Physical Memory: *MB") &&
                    lines[4] != "Physical Memory: 0MB")
            << lines[4];
        EXPECT_TRUE(HasShape(lines[5], "Free Disk Space: *KB")) << lines[5];
        EXPECT_EQ(lines[6], system.line);
        EXPECT_EQ(lines[7] + "\r\n", kAsterisks);
    }
}

struct HeaderCase {
    const char* what;
    ZqTraceHeaderFacts facts;
    const char* lines;  // after the "Started" line
};

ZqTraceHeaderFacts Facts(DWORD ms, DWORD ls, BOOL debug, BOOL prerelease, BOOL patched,
                         DWORD memory, BOOL disk, DWORD clusters, DWORD version) {
    ZqTraceHeaderFacts facts;
    facts.csDate = "01/02/03";
    facts.csTime = "04:05:06 PM";
    facts.bVersionBlock = TRUE;
    facts.dwFileVersionMS = ms;
    facts.dwFileVersionLS = ls;
    facts.bDebug = debug;
    facts.bPreRelease = prerelease;
    facts.bPatched = patched;
    facts.dwTotalPhys = memory;
    facts.bDiskFree = disk;
    facts.DiskFree = {0x10000, clusters, 64, 512};  // 32 KB clusters
    facts.dwVersion = version;
    return facts;
}

class TraceHeader : public TraceFile, public testing::WithParamInterface<HeaderCase> {};

TEST_P(TraceHeader, Lines) {
    const size_t offset = OpenFlushed();
    trace_.WriteHeader(GetParam().facts);
    trace_.Flush();
    EXPECT_EQ(Since(offset), title_ + " - Started 01/02/03 04:05:06 PM\r\n" + GetParam().lines);
}

const DWORD kNT4 = 0x05650004;     // 4.0 build 1381
const DWORD kWin95 = 0xC3B60004;   // 4.0, top bit set
const DWORD kWin32s = 0x80CE0A03;  // 3.10, build 0xCE with the top bit
const DWORD k64MB = 64u << 20;

INSTANTIATE_TEST_SUITE_P(
    Facts, TraceHeader,
    testing::Values(
        HeaderCase{"NoVersionBlock", ZqTraceHeaderFacts{"01/02/03", "04:05:06 PM"},
                   "****************************************\r\n"},
        HeaderCase{"DebugPreRelease",
                   Facts(0x00030000, 0x0000000C, TRUE, TRUE, FALSE, k64MB, TRUE, 0x10000, kNT4),
                   "\r\nVersion: 3.0.0.12 (Debug, PreRelease)\r\n"
                   "Physical Memory: 65MB\r\n"
                   "Free Disk Space: 2097152KB\r\n"
                   "Operating System: Windows NT v4.0 Build 1381\r\n"
                   "****************************************\r\n"},
        HeaderCase{
            "AllFlagsDiskWrapsAtFourGigabytes",
            Facts(0x00010002, 0x00030004, TRUE, TRUE, TRUE, 0xFFFFFFFF, TRUE, 0x20001, kWin95),
            "\r\nVersion: 1.2.3.4 (Debug, PreRelease, Patched)\r\n"
            "Physical Memory: 4096MB\r\n"
            "Free Disk Space: 32KB\r\n"
            "Operating System: Windows 95 v4.0\r\n"
            "****************************************\r\n"},
        HeaderCase{"PatchedWithoutDiskFigures",
                   Facts(0x00010002, 0x00030004, FALSE, FALSE, TRUE, 0, FALSE, 0, kWin32s),
                   "\r\nVersion: 1.2.3.4 (Patched)\r\n"
                   "Physical Memory: 1MB\r\n"
                   "Operating System: Windows v3.10 Build 206\r\n"
                   "****************************************\r\n"},
        HeaderCase{"NoFlags",
                   Facts(0x00050000, 0x00000000, FALSE, FALSE, FALSE, k64MB - 1, TRUE, 0, kNT4),
                   "\r\nVersion: 5.0.0.0\r\n"
                   "Physical Memory: 64MB\r\n"
                   "Free Disk Space: 0KB\r\n"
                   "Operating System: Windows NT v4.0 Build 1381\r\n"
                   "****************************************\r\n"}),
    [](const testing::TestParamInfo<HeaderCase>& info) { return info.param.what; });

struct RollOverCase {
    const char* what;
    size_t existing;  // bytes of 'o' in the file before the open
    BOOL append;
    bool kept;
};

class TraceRollOver : public TraceFile, public testing::WithParamInterface<RollOverCase> {};

TEST_P(TraceRollOver, AppendsBelowOneMegabyteOnly) {
    const RollOverCase& c = GetParam();
    ASSERT_TRUE(zq::test::WriteFileBytes(path_, std::string(c.existing, 'o')));
    ASSERT_TRUE(trace_.Open(name_.c_str(), c.append));
    trace_.Close();
    const std::string bytes = Bytes();
    const size_t start = c.kept ? c.existing : 0;
    ASSERT_GT(bytes.size(), start);
    EXPECT_EQ(bytes.find_first_not_of('o'), start);
    EXPECT_EQ(bytes.compare(start, kAsterisks.size(), kAsterisks), 0);
}

INSTANTIATE_TEST_SUITE_P(Sizes, TraceRollOver,
                         testing::Values(RollOverCase{"AppendJustBelow", 1048575, TRUE, true},
                                         RollOverCase{"AppendAtOneMegabyte", 1048576, TRUE, false},
                                         RollOverCase{"AppendBeyond", 1048577, TRUE, false},
                                         RollOverCase{"AppendSmall", 10, TRUE, true},
                                         RollOverCase{"NoAppendSmall", 10, FALSE, false},
                                         RollOverCase{"NoAppendEmpty", 0, FALSE, false}),
                         [](const testing::TestParamInfo<RollOverCase>& info) {
                             return info.param.what;
                         });

TEST_F(TraceFile, AppendCreatesAMissingFile) {
    ASSERT_TRUE(trace_.Open(name_.c_str(), TRUE));
    trace_.Close();
    EXPECT_EQ(Bytes().compare(0, kAsterisks.size(), kAsterisks), 0);
}

TEST_F(TraceFile, FlushesOnlyWhenAPieceWouldOverflowTheBuffer) {
    const size_t offset = OpenFlushed();
    Fill(CZqTrace::kBufferSize - 1);
    trace_.Output("y");  // exactly full: stays in the buffer
    EXPECT_EQ(Bytes().size(), offset);
    trace_.Output("z");  // one byte more: the full buffer goes first
    EXPECT_EQ(Since(offset), std::string(CZqTrace::kBufferSize - 1, 'x') + "y");
    trace_.Flush();
    EXPECT_EQ(Bytes().size(), offset + CZqTrace::kBufferSize + 1);
    EXPECT_EQ(Bytes().back(), 'z');
    trace_.Flush();  // nothing buffered: nothing written
    EXPECT_EQ(Bytes().size(), offset + CZqTrace::kBufferSize + 1);
}

TEST_F(TraceFile, StampAndTextAreFlushedSeparately) {
    FakeClock clock;
    trace_.SetTickSource(&FakeClock::Read, &clock);
    const std::string stamp = "(00:00:00.000) ";
    const size_t offset = OpenFlushed();
    // The stamp fills the buffer exactly; the text then finds it full.
    Fill(CZqTrace::kBufferSize - stamp.size());
    trace_.EnableTimeStamp(TRUE);
    trace_.Output("tail\r\n");
    ASSERT_EQ(Bytes().size(), offset + CZqTrace::kBufferSize);
    EXPECT_EQ(Bytes().substr(offset + CZqTrace::kBufferSize - stamp.size()), stamp);
    trace_.Flush();
    EXPECT_EQ(Since(offset + CZqTrace::kBufferSize), "tail\r\n");

    // A stamp that does not fit goes after what was buffered.
    trace_.EnableTimeStamp(FALSE);
    Fill(CZqTrace::kBufferSize - stamp.size() + 1);
    trace_.EnableTimeStamp(TRUE);
    trace_.Output("t");
    const size_t second = offset + CZqTrace::kBufferSize + 6;
    EXPECT_EQ(Bytes().size(), second + CZqTrace::kBufferSize - stamp.size() + 1);
    trace_.Flush();
    EXPECT_EQ(Since(second + CZqTrace::kBufferSize - stamp.size() + 1), stamp + "t");
}

TEST_F(TraceFile, PiecesAreCutAt511Characters) {
    const size_t offset = OpenFlushed();
    trace_.Output("%s", std::string(700, 'q').c_str());
    trace_.Output("%s", "");
    trace_.Output(nullptr);
    trace_.Flush();
    EXPECT_EQ(Since(offset), std::string(511, 'q'));
}

struct DumpCase {
    const char* what;
    std::string data;
    const char* dump;  // between the two framing lines
};

class TraceDump : public TraceFile, public testing::WithParamInterface<DumpCase> {};

TEST_P(TraceDump, Layout) {
    const DumpCase& c = GetParam();
    const size_t offset = OpenFlushed();
    std::string data = c.data;
    trace_.OutputBlock(data.data(), static_cast<DWORD>(data.size()));
    trace_.Flush();
    EXPECT_EQ(Since(offset), "Block Print: " + std::to_string(data.size()) + " Bytes\r\n" + c.dump +
                                 "End Block Print\r\n");
}

INSTANTIATE_TEST_SUITE_P(
    Blocks, TraceDump,
    testing::Values(DumpCase{"Empty", "", ""},
                    DumpCase{"OneLine", "0123456789abcdef",
                             "0  1  2  3  4  5  6  7  8  9  a  b  c  d  e  f  \r\n"},
                    DumpCase{"OneMore", "0123456789abcdefg",
                             "0  1  2  3  4  5  6  7  8  9  a  b  c  d  e  f  \r\ng  \r\n"},
                    DumpCase{"Boundaries", std::string("\x7F\x1F\x80\x00\xFF\x20~\r", 8),
                             "\x7F  1F 80 00 FF    ~  0D \r\n"},
                    DumpCase{"TwoLines", std::string(32, '\x01'),
                             "01 01 01 01 01 01 01 01 01 01 01 01 01 01 01 01 \r\n"
                             "01 01 01 01 01 01 01 01 01 01 01 01 01 01 01 01 \r\n"}),
    [](const testing::TestParamInfo<DumpCase>& info) { return info.param.what; });

TEST_F(TraceFile, DumpPiecesFlushWhenTheyWouldNotFit) {
    const size_t offset = OpenFlushed();
    const std::string intro = "Block Print: 16 Bytes\r\n";
    Fill(CZqTrace::kBufferSize - intro.size() - 1);
    unsigned char data[16] = {};
    trace_.OutputBlock(data, sizeof data);
    // The first byte's piece found one byte free.
    EXPECT_EQ(Bytes().size(), offset + CZqTrace::kBufferSize - 1);
    trace_.Flush();
    EXPECT_EQ(Since(offset).substr(CZqTrace::kBufferSize - 1 - intro.size()),
              intro + "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 \r\nEnd Block Print\r\n");
}

TEST_F(TraceFile, NullBlockDumpsNothing) {
    const size_t offset = OpenFlushed();
    trace_.OutputBlock(nullptr, 100);
    trace_.Flush();
    EXPECT_EQ(Since(offset), "Block Print: 0 Bytes\r\nEnd Block Print\r\n");
}

TEST_F(TraceFile, StampsCountFromOpenOnly) {
    FakeClock clock{0xFFFFFF00};  // wraps during the trace
    trace_.SetTickSource(&FakeClock::Read, &clock);
    trace_.EnableTimeStamp(TRUE);
    ASSERT_TRUE(trace_.Open(name_.c_str(), FALSE));
    trace_.Flush();
    const size_t offset = Bytes().size();
    // The header carries no stamps although they are switched on.
    EXPECT_EQ(Lines(Bytes())[1].rfind(title_, 0), 0u);
    EXPECT_TRUE(trace_.IsTimeStampEnabled());

    clock.now += 512;
    trace_.Output("a\r\n");
    clock.now += 90061001 - 512;
    trace_.Output("b\r\n");
    EXPECT_STREQ(trace_.FormatRelativeTime(), "(25:01:01.001) ");
    clock.now += 1;
    unsigned char block[2] = {'x', 0x02};
    trace_.OutputBlock(block, sizeof block);
    clock.now = 0xFFFFFF00 + 3599999;
    trace_.Close();
    const std::string written = Since(offset);
    const std::string expected_start =
        "(00:00:00.512) a\r\n"
        "(25:01:01.001) b\r\n"
        "(25:01:01.002) Block Print: 2 Bytes\r\n"
        "x  02 \r\n"
        "(25:01:01.002) End Block Print\r\n" +
        kAsterisks;
    EXPECT_EQ(written.substr(0, expected_start.size()), expected_start);
    // The footer has no stamps either.
    EXPECT_EQ(Lines(written)[6].rfind(title_ + " - Stopped ", 0), 0u);
    EXPECT_TRUE(trace_.IsTimeStampEnabled());
}

TEST_F(TraceFile, StampAtTheLastMillisecondOfAnHour) {
    FakeClock clock{1000};
    trace_.SetTickSource(&FakeClock::Read, &clock);
    ASSERT_TRUE(trace_.Open(name_.c_str(), FALSE));
    clock.now += 3599999;
    EXPECT_STREQ(trace_.FormatRelativeTime(), "(00:59:59.999) ");
    clock.now += 1;
    EXPECT_STREQ(trace_.FormatRelativeTime(), "(01:00:00.000) ");
    clock.now = 999;  // the whole 32-bit range later
    EXPECT_STREQ(trace_.FormatRelativeTime(), "(1193:02:47.295) ");
}

TEST_F(TraceFile, PausedTraceDropsOutputAndClosesWithoutFooter) {
    const size_t offset = OpenFlushed();
    trace_.Output("kept\r\n");
    trace_.Pause();
    EXPECT_TRUE(trace_.IsPaused());
    trace_.Output("dropped\r\n");
    trace_.OutputBlock(const_cast<char*>("dropped"), 7);
    trace_.Close();
    EXPECT_EQ(Since(offset), "kept\r\n");
    EXPECT_FALSE(trace_.IsPaused());

    // Switches other than the pause survive into the next trace.
    trace_.SetLevel(12);
    trace_.EnableTimeStamp(TRUE);
    trace_.Pause();
    trace_.Resume();
    ASSERT_TRUE(trace_.Open(name_.c_str(), TRUE));
    EXPECT_EQ(trace_.GetLevel(), 12);
    EXPECT_TRUE(trace_.IsTimeStampEnabled());
}

TEST_F(TraceFile, HighLevelsWriteEveryPieceAtOnce) {
    trace_.SetLevel(CZqTrace::kFlushEveryWriteLevel);
    ASSERT_TRUE(trace_.Open(name_.c_str(), FALSE));
    // Already the header went out line by line.
    const size_t offset = Bytes().size();
    ASSERT_GT(offset, 2 * kAsterisks.size());
    trace_.Output("now");
    EXPECT_EQ(Since(offset), "now");
    unsigned char byte = 'b';
    trace_.OutputBlock(&byte, 1);
    EXPECT_EQ(Since(offset), "nowBlock Print: 1 Bytes\r\nb  \r\nEnd Block Print\r\n");

    trace_.SetLevel(CZqTrace::kFlushEveryWriteLevel - 1);
    trace_.Output("later");
    EXPECT_EQ(Since(offset), "nowBlock Print: 1 Bytes\r\nb  \r\nEnd Block Print\r\n");
}

TEST_F(TraceFile, OpeningAgainEndsTheOpenTrace) {
    ASSERT_TRUE(trace_.Open(name_.c_str(), FALSE));
    trace_.Output("first\r\n");
    ASSERT_TRUE(trace_.Open(name_.c_str(), TRUE));
    trace_.Output("second\r\n");
    trace_.Close();
    const std::vector<std::string> lines = Lines(Bytes());
    std::vector<size_t> started, stopped;
    for (size_t i = 0; i < lines.size(); ++i) {
        if (lines[i].find(" - Started ") != std::string::npos)
            started.push_back(i);
        if (lines[i].find(" - Stopped ") != std::string::npos)
            stopped.push_back(i);
    }
    ASSERT_EQ(started.size(), 2u);
    ASSERT_EQ(stopped.size(), 2u);
    EXPECT_LT(stopped[0], started[1]);
    EXPECT_EQ(lines[stopped[0] - 2], "first");
    EXPECT_EQ(lines[stopped[1] - 2], "second");
}

TEST_F(TraceFile, FailedOpenLeavesTheTraceClosed) {
    // The full path exceeds what OpenFile accepts.
    const std::string name(300, 'n');
    EXPECT_FALSE(trace_.Open(name.c_str(), FALSE));
    EXPECT_FALSE(trace_.IsOpen());
    EXPECT_STREQ(trace_.GetFileName(), "");
    trace_.Output("nothing");
    trace_.OutputBlock(const_cast<char*>("x"), 1);
    trace_.Flush();
    trace_.Close();
}

TEST_F(TraceFile, CopiesShareTheOpenTrace) {
    const size_t offset = OpenFlushed();
    {
        CZqTrace copy(trace_);
        EXPECT_TRUE(copy.IsOpen());
        copy.Output("from the copy\r\n");
        trace_.Output("from the original\r\n");
        trace_.Flush();
        EXPECT_EQ(Since(offset), "from the copy\r\nfrom the original\r\n");
    }  // the copy's destruction closes the trace for both
    EXPECT_FALSE(trace_.IsOpen());
    EXPECT_EQ(Lines(Since(offset)).size(), 5u);
    trace_.Output("dropped");
}

}  // namespace
