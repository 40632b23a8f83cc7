#include "diagnostics/event_log.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "support/test_support.h"

namespace {

using zq::test::ScopedEnvironmentVariable;

// A scratch folder in DOS form, and files in it.
class Folder {
public:
    Folder() : unix_(zq::test::MakeScratchFolder("eventlog")) {}
    std::string Unix(const char* name) const { return unix_ + "/" + name; }
    // The platform accepts plain Unix paths wherever a DOS path goes.
    std::string Path(const char* name) const { return Unix(name); }

private:
    std::string unix_;
};

class PlainFileLog : public testing::TestWithParam<const char*> {
protected:
    PlainFileLog() : winver_("ZQ_WINVER", GetParam()) {
        EXPECT_TRUE(zq::test::WriteFileBytes(folder_.Unix("log.txt"), "three records"));
    }
    ScopedEnvironmentVariable winver_;
    Folder folder_;
};

INSTANTIATE_TEST_SUITE_P(Systems, PlainFileLog, testing::Values("win95", "win32s"));

TEST_P(PlainFileLog, OpensBacksUpAndClosesTheFile) {
    CZqGlobalEventLog log;
    const std::string file = folder_.Path("log.txt");
    ASSERT_EQ(log.OpenBackup(nullptr, file.c_str()), 0u);
    EXPECT_NE(log.GetHandle(), nullptr);
    EXPECT_EQ(log.GetFileName(), file.c_str());

    ASSERT_TRUE(zq::test::WriteFileBytes(folder_.Unix("copy.txt"), "old contents"));
    EXPECT_EQ(log.BackUp(folder_.Path("copy.txt").c_str()), 0u);  // overwrites
    EXPECT_EQ(zq::test::ReadFileBytes(folder_.Unix("copy.txt")), "three records");

    EXPECT_EQ(log.Close(), 0u);
    EXPECT_EQ(log.GetHandle(), nullptr);
    EXPECT_EQ(log.GetFileName(), "");
    EXPECT_EQ(log.Close(), 0u);
}

TEST_P(PlainFileLog, ClearCopiesFirstThenEmpties) {
    CZqGlobalEventLog log;
    ASSERT_EQ(log.OpenBackup(nullptr, folder_.Path("log.txt").c_str()), 0u);
    EXPECT_EQ(log.Clear(folder_.Path("saved.txt").c_str()), 0u);
    EXPECT_EQ(zq::test::ReadFileBytes(folder_.Unix("saved.txt")), "three records");
    EXPECT_EQ(zq::test::ReadFileBytes(folder_.Unix("log.txt")), "");

    ASSERT_TRUE(zq::test::WriteFileBytes(folder_.Unix("log.txt"), "more"));
    EXPECT_EQ(log.Clear(nullptr), 0u);
    EXPECT_EQ(zq::test::ReadFileBytes(folder_.Unix("log.txt")), "");
    EXPECT_EQ(zq::test::ReadFileBytes(folder_.Unix("saved.txt")), "three records");
}

TEST_P(PlainFileLog, FailuresReportTheSystemsError) {
    CZqGlobalEventLog log;
    EXPECT_EQ(log.OpenBackup(nullptr, folder_.Path("missing.txt").c_str()),
              static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(log.GetHandle(), nullptr);
    EXPECT_EQ(log.GetFileName(), "");

    // A read-only file opens for reading; cutting it is refused after the copy.
    ASSERT_TRUE(SetFileAttributesA(folder_.Path("log.txt").c_str(), FILE_ATTRIBUTE_READONLY));
    ASSERT_EQ(log.OpenBackup(nullptr, folder_.Path("log.txt").c_str()), 0u);
    EXPECT_EQ(log.Clear(folder_.Path("saved.txt").c_str()),
              static_cast<DWORD>(ERROR_ACCESS_DENIED));
    EXPECT_EQ(zq::test::ReadFileBytes(folder_.Unix("saved.txt")), "three records");
    EXPECT_EQ(zq::test::ReadFileBytes(folder_.Unix("log.txt")), "three records");
    EXPECT_EQ(log.BackUp(folder_.Unix("no/such/folder/x.txt").c_str()),
              static_cast<DWORD>(ERROR_PATH_NOT_FOUND));
}

TEST_P(PlainFileLog, TheDestructorCloses) {
    auto log = std::make_unique<CZqGlobalEventLog>();
    ASSERT_EQ(log->OpenBackup(nullptr, folder_.Path("log.txt").c_str()), 0u);
    HANDLE handle = log->GetHandle();
    log.reset();
    EXPECT_FALSE(CloseHandle(handle));
}

class NtEventLog : public testing::Test {
protected:
    NtEventLog() : winver_("ZQ_WINVER", "nt4") {}

    // A backup of the Application log holding two records.
    std::string MakeBackup(const char* name) {
        HANDLE source = RegisterEventSourceA(nullptr, "ZqDiagnosticsTests");
        EXPECT_NE(source, nullptr);
        for (const char* text : {"first", "second"}) {
            LPCSTR strings[] = {text};
            EXPECT_TRUE(ReportEventA(source, EVENTLOG_INFORMATION_TYPE, 0, 1, nullptr, 1, 0,
                                     strings, nullptr));
        }
        DeregisterEventSource(source);
        HANDLE live = OpenEventLogA(nullptr, "Application");
        const std::string path = folder_.Path(name);
        EXPECT_TRUE(BackupEventLogA(live, path.c_str()));
        CloseEventLog(live);
        return path;
    }

    ScopedEnvironmentVariable winver_;
    Folder folder_;
};

TEST_F(NtEventLog, OpensABackupThroughTheEventLog) {
    const std::string backup = MakeBackup("app.evt");
    CZqGlobalEventLog log;
    ASSERT_EQ(log.OpenBackup(nullptr, backup.c_str()), 0u);
    EXPECT_EQ(log.GetFileName(), backup.c_str());
    DWORD count = 0;
    ASSERT_TRUE(GetNumberOfEventLogRecords(log.GetHandle(), &count));
    EXPECT_GE(count, 2u);

    // The event log refuses to back up or clear a backup.
    EXPECT_EQ(log.BackUp(folder_.Path("again.evt").c_str()),
              static_cast<DWORD>(ERROR_INVALID_HANDLE));
    EXPECT_EQ(log.Clear(nullptr), static_cast<DWORD>(ERROR_INVALID_HANDLE));
    EXPECT_EQ(log.Close(), 0u);
    EXPECT_EQ(log.GetHandle(), nullptr);
}

TEST_F(NtEventLog, RefusesFilesThatAreNoLog) {
    ASSERT_TRUE(zq::test::WriteFileBytes(folder_.Unix("text.evt"), std::string(100, 'x')));
    CZqGlobalEventLog log;
    EXPECT_EQ(log.OpenBackup(nullptr, folder_.Path("text.evt").c_str()),
              static_cast<DWORD>(ERROR_EVENTLOG_FILE_CORRUPT));
    EXPECT_EQ(log.OpenBackup(nullptr, folder_.Path("missing.evt").c_str()),
              static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(log.GetFileName(), "");
}

TEST_F(NtEventLog, TheTypeIsTakenAtConstruction) {
    MakeBackup("kept.evt");
    CZqGlobalEventLog log;
    ScopedEnvironmentVariable later("ZQ_WINVER", "win95");
    // Still the event log's way: a text file is no backup for it.
    ASSERT_TRUE(zq::test::WriteFileBytes(folder_.Unix("plain.txt"), std::string(100, 'x')));
    EXPECT_EQ(log.OpenBackup(nullptr, folder_.Path("plain.txt").c_str()),
              static_cast<DWORD>(ERROR_CALL_NOT_IMPLEMENTED));
}

TEST(EventLogMembers, DeliberatelyEmptyOnesTouchNothing) {
    CZqGlobalEventLog log;
    DWORD count = 0xABCD, oldest = 0x1234, read = 5, needed = 6;
    char buffer[4] = {'k', 'e', 'e', 'p'};
    EXPECT_EQ(log.Open("\\\\SERVER", "Application"), 0u);
    EXPECT_EQ(log.GetHandle(), nullptr);
    EXPECT_EQ(log.GetRecordCount(count), 0u);
    EXPECT_EQ(log.GetOldestRecord(oldest), 0u);
    EXPECT_EQ(log.Read(EVENTLOG_SEQUENTIAL_READ, 0, buffer, sizeof buffer, read, needed), 0u);
    EXPECT_EQ(count, 0xABCDu);
    EXPECT_EQ(oldest, 0x1234u);
    EXPECT_EQ(read, 5u);
    EXPECT_EQ(needed, 6u);
    EXPECT_EQ(std::string(buffer, 4), "keep");

    CZqGlobalEventLogSource source;
    CStringArray strings;
    strings.Add("text");
    const char* texts[] = {"a"};
    CString entry("untouched");
    EXPECT_EQ(source.Open("Zq"), 0u);
    EXPECT_EQ(source.Report(EVENTLOG_ERROR_TYPE, 0, 1, 1, texts, 0, nullptr), 0u);
    EXPECT_EQ(source.Report(EVENTLOG_ERROR_TYPE, 0, 1, &strings, 0, nullptr), 0u);
    EXPECT_EQ(source.AddEntry("Zq", "msg.dll", "cat.dll", 3, "par.dll", 7), 0u);
    EXPECT_EQ(source.RemoveEntry("Zq"), 0u);
    EXPECT_EQ(source.GetEntry("Zq", entry), 0u);
    EXPECT_EQ(entry, "untouched");
    EXPECT_EQ(source.Close(), 0u);
}

}  // namespace
