#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "platform/posix/file/dos_path.h"
#include "platform/posix/security/event_log_file.h"
#include "platform/win32.h"
#include "support/test_support.h"

namespace {

using namespace zq::platform::internal;
using zq::test::ScopedEnvironmentVariable;

// Reads every record of `log` in one direction, as (number, first string).
std::vector<std::pair<DWORD, std::string>> ReadAllRecords(HANDLE log, DWORD direction) {
    std::vector<std::pair<DWORD, std::string>> seen;
    std::vector<BYTE> buffer(256);
    for (;;) {
        DWORD read = 0, needed = 0;
        if (!ReadEventLogA(log, EVENTLOG_SEQUENTIAL_READ | direction, 0, buffer.data(),
                           static_cast<DWORD>(buffer.size()), &read, &needed)) {
            EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_HANDLE_EOF));
            break;
        }
        for (DWORD at = 0; at < read;) {
            const auto* record = reinterpret_cast<const EVENTLOGRECORD*>(buffer.data() + at);
            const char* first = record->NumStrings
                                    ? reinterpret_cast<const char*>(record) + record->StringOffset
                                    : "";
            seen.emplace_back(record->RecordNumber, first);
            at += record->Length;
        }
    }
    return seen;
}

class EventLog : public testing::Test {
protected:
    void SetUp() override {
        log_ = OpenEventLogA(nullptr, "Application");
        ASSERT_NE(log_, nullptr);
        ASSERT_TRUE(ClearEventLogA(log_, nullptr));
        source_ = RegisterEventSourceA(nullptr, "ZqTests");
        ASSERT_NE(source_, nullptr);
        folder_ = UnixToDos(zq::test::MakeScratchFolder("eventlog"));
    }
    void TearDown() override {
        DeregisterEventSource(source_);
        CloseEventLog(log_);
    }
    void Report(const char* text, DWORD id = 1000) {
        LPCSTR strings[] = {text, "second"};
        ASSERT_TRUE(
            ReportEventA(source_, EVENTLOG_WARNING_TYPE, 7, id, nullptr, 2, 0, strings, nullptr));
    }
    std::string File(const char* name) const { return folder_ + "\\" + name; }

    HANDLE log_ = nullptr;
    HANDLE source_ = nullptr;
    std::string folder_;
};

TEST_F(EventLog, ReportsAreReadInBothDirections) {
    Report("one");
    Report("two");
    Report("three");
    DWORD count = 0, oldest = 0;
    ASSERT_TRUE(GetNumberOfEventLogRecords(log_, &count));
    ASSERT_TRUE(GetOldestEventLogRecord(log_, &oldest));
    EXPECT_EQ(count, 3u);
    EXPECT_EQ(oldest, 1u);

    using Seen = std::vector<std::pair<DWORD, std::string>>;
    EXPECT_EQ(ReadAllRecords(log_, EVENTLOG_FORWARDS_READ),
              (Seen{{1, "one"}, {2, "two"}, {3, "three"}}));
    HANDLE again = OpenEventLogA(nullptr, "application");
    EXPECT_EQ(ReadAllRecords(again, EVENTLOG_BACKWARDS_READ),
              (Seen{{3, "three"}, {2, "two"}, {1, "one"}}));
    CloseEventLog(again);
}

TEST_F(EventLog, RecordLayoutAsReadEventLogDeliversIt) {
    SID_IDENTIFIER_AUTHORITY world = SECURITY_WORLD_SID_AUTHORITY;
    PSID everyone = nullptr;
    ASSERT_TRUE(AllocateAndInitializeSid(&world, 1, 0, 0, 0, 0, 0, 0, 0, 0, &everyone));
    const BYTE data[5] = {1, 2, 3, 4, 5};
    LPCSTR strings[] = {"alpha",
                        "\xE4"
                        "bc"};
    ASSERT_TRUE(ReportEventA(source_, EVENTLOG_ERROR_TYPE, 3, 0xC0000123u, everyone, 2, sizeof data,
                             strings, const_cast<BYTE*>(data)));

    BYTE buffer[512];
    DWORD read = 0, needed = 0;
    ASSERT_TRUE(ReadEventLogA(log_, EVENTLOG_SEEK_READ | EVENTLOG_FORWARDS_READ, 1, buffer,
                              sizeof buffer, &read, &needed));
    const auto* record = reinterpret_cast<const EVENTLOGRECORD*>(buffer);
    ASSERT_EQ(read, record->Length);
    EXPECT_EQ(record->Length % 4, 0u);
    EXPECT_EQ(record->Reserved, 0x654C664Cu);
    EXPECT_EQ(record->RecordNumber, 1u);
    EXPECT_EQ(record->EventID, 0xC0000123u);
    EXPECT_EQ(record->EventType, EVENTLOG_ERROR_TYPE);
    EXPECT_EQ(record->EventCategory, 3);
    EXPECT_STREQ(reinterpret_cast<const char*>(buffer + sizeof(EVENTLOGRECORD)), "ZqTests");
    EXPECT_TRUE(EqualSid(const_cast<BYTE*>(buffer) + record->UserSidOffset, everyone));
    EXPECT_EQ(record->UserSidOffset % 4, 0u);
    EXPECT_EQ(record->NumStrings, 2);
    const char* text = reinterpret_cast<const char*>(buffer + record->StringOffset);
    EXPECT_STREQ(text, "alpha");
    EXPECT_STREQ(text + 6,
                 "\xE4"
                 "bc");  // the file keeps UTF-16; reads give ANSI again
    EXPECT_EQ(record->DataLength, 5u);
    EXPECT_EQ(std::memcmp(buffer + record->DataOffset, data, 5), 0);
    DWORD trailer = 0;
    std::memcpy(&trailer, buffer + record->Length - 4, 4);
    EXPECT_EQ(trailer, record->Length);
    FreeSid(everyone);
}

TEST_F(EventLog, ReadRefusesBadRequests) {
    Report("one");
    BYTE buffer[512];
    DWORD read = 77, needed = 0;
    EXPECT_FALSE(ReadEventLogA(log_, EVENTLOG_SEQUENTIAL_READ | EVENTLOG_FORWARDS_READ, 0, buffer,
                               20, &read, &needed));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(read, 0u);
    EXPECT_GT(needed, 20u);

    for (DWORD flags :
         {DWORD{EVENTLOG_FORWARDS_READ}, DWORD{EVENTLOG_SEQUENTIAL_READ},
          DWORD{EVENTLOG_SEQUENTIAL_READ | EVENTLOG_SEEK_READ | EVENTLOG_FORWARDS_READ},
          DWORD{EVENTLOG_SEQUENTIAL_READ | EVENTLOG_FORWARDS_READ | EVENTLOG_BACKWARDS_READ}}) {
        EXPECT_FALSE(ReadEventLogA(log_, flags, 0, buffer, sizeof buffer, &read, &needed));
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER)) << flags;
    }
    EXPECT_FALSE(ReadEventLogA(log_, EVENTLOG_SEEK_READ | EVENTLOG_FORWARDS_READ, 9, buffer,
                               sizeof buffer, &read, &needed));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_FALSE(GetNumberOfEventLogRecords(source_, &read));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
}

TEST_F(EventLog, BackupsArePlainCopiesThatCanOnlyBeRead) {
    Report("one");
    Report("two");
    const std::string backup = File("app.evt");
    ASSERT_TRUE(BackupEventLogA(log_, backup.c_str()));
    EXPECT_EQ(zq::test::ReadFileBytes(DosToUnix(backup.c_str()).path),
              zq::test::ReadFileBytes(SystemFolderUnix() + "/config/AppEvent.Evt"));
    EXPECT_FALSE(BackupEventLogA(log_, backup.c_str()));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ALREADY_EXISTS));

    HANDLE saved = OpenBackupEventLogA(nullptr, backup.c_str());
    ASSERT_NE(saved, nullptr);
    Report("three");  // the live log moves on; the backup does not
    DWORD count = 0;
    ASSERT_TRUE(GetNumberOfEventLogRecords(saved, &count));
    EXPECT_EQ(count, 2u);
    EXPECT_FALSE(BackupEventLogA(saved, File("again.evt").c_str()));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
    EXPECT_FALSE(ClearEventLogA(saved, nullptr));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
    EXPECT_TRUE(CloseEventLog(saved));
    EXPECT_FALSE(CloseEventLog(saved));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
}

TEST_F(EventLog, ClearBacksUpFirstAndStartsNumberingAgain) {
    Report("one");
    Report("two");
    const std::string backup = File("cleared.evt");
    ASSERT_TRUE(ClearEventLogA(log_, backup.c_str()));
    DWORD count = 9, oldest = 9;
    ASSERT_TRUE(GetNumberOfEventLogRecords(log_, &count));
    ASSERT_TRUE(GetOldestEventLogRecord(log_, &oldest));
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(oldest, 0u);
    Report("fresh");
    using Seen = std::vector<std::pair<DWORD, std::string>>;
    EXPECT_EQ(ReadAllRecords(log_, EVENTLOG_FORWARDS_READ), (Seen{{1, "fresh"}}));

    HANDLE saved = OpenBackupEventLogA(nullptr, backup.c_str());
    ASSERT_NE(saved, nullptr);
    EXPECT_EQ(ReadAllRecords(saved, EVENTLOG_FORWARDS_READ), (Seen{{1, "one"}, {2, "two"}}));
    CloseEventLog(saved);

    // An existing backup file stops the clear.
    EXPECT_FALSE(ClearEventLogA(log_, backup.c_str()));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ALREADY_EXISTS));
    ASSERT_TRUE(GetNumberOfEventLogRecords(log_, &count));
    EXPECT_EQ(count, 1u);
}

TEST_F(EventLog, OpenBackupRefusesMissingAndForeignFiles) {
    EXPECT_EQ(OpenBackupEventLogA(nullptr, File("missing.evt").c_str()), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    const std::string text = File("notes.txt");
    ASSERT_TRUE(zq::test::WriteFileBytes(DosToUnix(text.c_str()).path,
                                         "not an event log at all, "
                                         "long enough for a header"));
    EXPECT_EQ(OpenBackupEventLogA(nullptr, text.c_str()), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_EVENTLOG_FILE_CORRUPT));
    EXPECT_EQ(OpenBackupEventLogA("\\\\FARAWAY", text.c_str()), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_BAD_NETPATH));
}

TEST_F(EventLog, AFullLogRefusesReportsUntilCleared) {
    // A log whose maximum size leaves room for one record.
    std::vector<BYTE> small = EmptyEventLog(1, 0x30 + 0x28 + 0xA0);
    const std::string path = SystemFolderUnix() + "/config/AppEvent.Evt";
    ASSERT_TRUE(zq::test::WriteFileBytes(path, std::string(small.begin(), small.end())));
    Report("fits");
    LPCSTR strings[] = {"does not fit"};
    EXPECT_FALSE(
        ReportEventA(source_, EVENTLOG_INFORMATION_TYPE, 0, 1, nullptr, 1, 0, strings, nullptr));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_LOG_FILE_FULL));
    ASSERT_TRUE(ClearEventLogA(log_, nullptr));
    Report("fits again");
}

TEST(EventLogFile, ReadsALogThatWrappedAround) {
    // Three records written in a circle: the third starts near the end of the
    // file and continues after the header.
    EventRecord records[3];
    std::vector<std::vector<BYTE>> bytes;
    for (int i = 0; i < 3; ++i) {
        records[i].number = static_cast<DWORD>(5 + i);
        records[i].source = "Src";
        records[i].computer = "PC";
        records[i].strings = {std::string("record ") + char('A' + i)};
        bytes.push_back(SerializeRecord(records[i], RecordText::kWide));
    }
    const size_t start = 0x30 + 0x80;  // a gap of old bytes before the oldest record
    const size_t split = 24;           // bytes of the third record at the end of the file
    std::vector<BYTE> file = EventLogHeader(0, 8, 5, 0);
    file.resize(start, 0xEE);
    file.insert(file.end(), bytes[0].begin(), bytes[0].end());
    file.insert(file.end(), bytes[1].begin(), bytes[1].end());
    file.insert(file.end(), bytes[2].begin(), bytes[2].begin() + split);
    // The rest of the third record goes right after the header, then the end.
    std::vector<BYTE> tail(bytes[2].begin() + split, bytes[2].end());
    std::vector<BYTE> eof = EventLogEofRecord(0, 8, 5);
    tail.insert(tail.end(), eof.begin(), eof.end());
    ASSERT_LE(0x30 + tail.size(), start);
    std::copy(tail.begin(), tail.end(), file.begin() + 0x30);
    const DWORD end = static_cast<DWORD>(0x30 + tail.size() - eof.size());
    std::vector<BYTE> header = EventLogHeader(end, 8, 5, static_cast<DWORD>(file.size()));
    std::memcpy(&header[16], &start, 4);  // StartOffset
    std::copy(header.begin(), header.end(), file.begin());

    std::optional<EventLogContents> contents = ParseEventLog(file.data(), file.size());
    ASSERT_TRUE(contents.has_value());
    ASSERT_EQ(contents->records.size(), 3u);
    EXPECT_EQ(contents->records[2].number, 7u);
    EXPECT_EQ(contents->records[2].strings[0], "record C");
    EXPECT_EQ(contents->oldest_number, 5u);
}

TEST(EventLogFile, SurvivesEveryTruncationAndFlippedByte) {
    EventRecord record;
    record.number = 1;
    record.source = "S";
    record.computer = "C";
    record.strings = {"x", "y"};
    record.data = {1, 2, 3};
    record.sid = {1, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0};
    std::vector<BYTE> record_bytes = SerializeRecord(record, RecordText::kWide);
    std::vector<BYTE> file = EventLogHeader(static_cast<DWORD>(0x30 + record_bytes.size()), 2, 1,
                                            kDefaultEventLogMaxSize);
    file.insert(file.end(), record_bytes.begin(), record_bytes.end());
    std::vector<BYTE> eof = EventLogEofRecord(static_cast<DWORD>(file.size()), 2, 1);
    file.insert(file.end(), eof.begin(), eof.end());
    ASSERT_TRUE(ParseEventLog(file.data(), file.size()).has_value());
    for (size_t size = 0; size < file.size(); ++size) {
        std::vector<BYTE> cut(file.begin(), file.begin() + static_cast<long>(size));
        ParseEventLog(cut.data(), cut.size());
    }
    for (size_t at = 0; at < file.size(); ++at) {
        for (BYTE value : {BYTE{0}, BYTE{0xFF}, BYTE{0x7F}}) {
            std::vector<BYTE> changed = file;
            changed[at] = value;
            ParseEventLog(changed.data(), changed.size());
        }
    }
}

TEST(EventLogSystems, Windows95HasNoEventLog) {
    for (const char* system : {"win95", "win32s"}) {
        ScopedEnvironmentVariable winver("ZQ_WINVER", system);
        EXPECT_EQ(OpenEventLogA(nullptr, "Application"), nullptr);
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_CALL_NOT_IMPLEMENTED));
        EXPECT_EQ(OpenBackupEventLogA(nullptr, "C:\\any.evt"), nullptr);
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_CALL_NOT_IMPLEMENTED));
        EXPECT_EQ(RegisterEventSourceA(nullptr, "Zq"), nullptr);
    }
}

}  // namespace
