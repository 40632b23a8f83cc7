// Event logs as files: opening, reading, reporting, backing up, clearing.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/posix/base/handle_table.h"
#include "platform/posix/base/host.h"
#include "platform/posix/base/prefix.h"
#include "platform/posix/base/win32_errno.h"
#include "platform/posix/file/dos_path.h"
#include "platform/posix/security/accounts.h"
#include "platform/posix/security/event_log_file.h"
#include "platform/win32.h"

namespace zq::platform::internal {
namespace {

constexpr size_t kMaxStrings = 256;
constexpr DWORD kMaxData = 61440;

// A log or a backup opened for reading, with the position of sequential
// reads (the number of the record to read next).
class EventLogObject : public KernelObject {
public:
    EventLogObject(std::string path, bool backup) : path_(std::move(path)), backup_(backup) {}
    const std::string& path() const { return path_; }
    bool backup() const { return backup_; }

    std::mutex mutex;
    bool started = false;
    DWORD position = 0;

private:
    std::string path_;
    bool backup_;
};

class EventSourceObject : public KernelObject {
public:
    EventSourceObject(std::string path, std::string source)
        : path_(std::move(path)), source_(std::move(source)) {}
    const std::string& path() const { return path_; }
    const std::string& source() const { return source_; }

private:
    std::string path_;
    std::string source_;
};

// An open descriptor, closed (and so unlocked) with the object.
class Descriptor {
public:
    explicit Descriptor(int fd) : fd_(fd) {}
    ~Descriptor() {
        if (fd_ >= 0) {
            close(fd_);
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return fd_; }
    bool ok() const { return fd_ >= 0; }

private:
    int fd_;
};

bool Fail(DWORD error) {
    SetLastError(error);
    return false;
}

bool RunningOnNt() {
    return (GetVersion() & 0x80000000u) == 0 || Fail(ERROR_CALL_NOT_IMPLEMENTED);
}

bool IsLocalServer(LPCSTR server) {
    if (!server || !*server) {
        return true;
    }
    std::string_view name(server);
    if (name.rfind("\\\\", 0) == 0) {
        name.remove_prefix(2);
    }
    return EqualsNoCase(name, ComputerDomain()) || Fail(ERROR_BAD_NETPATH);
}

// The file of a live log; names other than the three known ones mean the
// Application log.
std::string LiveLogPath(LPCSTR name) {
    const char* file = "AppEvent.Evt";
    if (name && EqualsNoCase(name, "System")) {
        file = "SysEvent.Evt";
    } else if (name && EqualsNoCase(name, "Security")) {
        file = "SecEvent.Evt";
    }
    return SystemFolderUnix() + "/config/" + file;
}

bool LockFile(int fd, int operation) {
    while (CurrentHost().Lock(fd, operation) != 0) {
        if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

bool ReadAll(int fd, std::vector<BYTE>* bytes) {
    struct stat info {};
    if (fstat(fd, &info) != 0) {
        return Fail(SetLastErrorFromErrno(errno));
    }
    if (static_cast<size_t>(info.st_size) > kMaxEventLogSize) {
        return Fail(ERROR_EVENTLOG_FILE_CORRUPT);
    }
    bytes->resize(static_cast<size_t>(info.st_size));
    size_t done = 0;
    while (done < bytes->size()) {
        ssize_t got =
            pread(fd, bytes->data() + done, bytes->size() - done, static_cast<off_t>(done));
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got <= 0) {
            if (got < 0) {
                return Fail(SetLastErrorFromErrno(errno));
            }
            bytes->resize(done);  // the file shrank meanwhile
            break;
        }
        done += static_cast<size_t>(got);
    }
    return true;
}

bool WriteAt(int fd, const std::vector<BYTE>& bytes, off_t offset) {
    size_t done = 0;
    while (done < bytes.size()) {
        ssize_t put =
            pwrite(fd, bytes.data() + done, bytes.size() - done, offset + static_cast<off_t>(done));
        if (put < 0 && errno == EINTR) {
            continue;
        }
        if (put <= 0) {
            return Fail(SetLastErrorFromErrno(put < 0 ? errno : ENOSPC));
        }
        done += static_cast<size_t>(put);
    }
    return true;
}

// Opens a live log file for change under an exclusive lock, creating it
// empty when it is new.
std::unique_ptr<Descriptor> OpenLiveLocked(const std::string& path) {
    const std::string folder = path.substr(0, path.rfind('/'));
    if (!MakeDirectories(folder, 0755)) {
        SetLastErrorFromErrno(errno, folder);
        return nullptr;
    }
    auto fd = std::make_unique<Descriptor>(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644));
    if (!fd->ok()) {
        SetLastErrorFromErrno(errno, path);
        return nullptr;
    }
    if (!LockFile(fd->get(), LOCK_EX)) {
        SetLastErrorFromErrno(errno, path);
        return nullptr;
    }
    struct stat info {};
    if (fstat(fd->get(), &info) != 0) {
        SetLastErrorFromErrno(errno, path);
        return nullptr;
    }
    if (info.st_size == 0 && !WriteAt(fd->get(), EmptyEventLog(1, kDefaultEventLogMaxSize), 0)) {
        return nullptr;
    }
    return fd;
}

// The whole file of a log or backup, read under a shared lock.
bool ReadLogFile(const std::string& path, std::vector<BYTE>* bytes) {
    Descriptor fd(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!fd.ok()) {
        return Fail(SetLastErrorFromErrno(errno, path));
    }
    if (!LockFile(fd.get(), LOCK_SH)) {
        return Fail(SetLastErrorFromErrno(errno, path));
    }
    return ReadAll(fd.get(), bytes);
}

bool LoadContents(const std::string& path, EventLogContents* contents) {
    std::vector<BYTE> bytes;
    if (!ReadLogFile(path, &bytes)) {
        return false;
    }
    std::optional<EventLogContents> parsed = ParseEventLog(bytes.data(), bytes.size());
    if (!parsed) {
        return Fail(ERROR_EVENTLOG_FILE_CORRUPT);
    }
    *contents = std::move(*parsed);
    return true;
}

// Writes `bytes` as a new file at the DOS path `target`.
bool WriteNewFile(LPCSTR target, const std::vector<BYTE>& bytes) {
    UnixPath path = DosToUnix(target);
    if (!path) {
        return Fail(path.error);
    }
    Descriptor fd(open(path.path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644));
    if (!fd.ok()) {
        return Fail(errno == EEXIST ? ERROR_ALREADY_EXISTS
                                    : SetLastErrorFromErrno(errno, path.path));
    }
    if (!WriteAt(fd.get(), bytes, 0)) {
        const DWORD error = GetLastError();
        unlink(path.path.c_str());
        return Fail(error);
    }
    return true;
}

std::shared_ptr<EventLogObject> LiveLog(HANDLE handle) {
    std::shared_ptr<EventLogObject> log = LookupHandleAs<EventLogObject>(handle);
    if (!log || log->backup()) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    return log;
}

DWORD NowSeconds() {
    return static_cast<DWORD>(CurrentHost().RealTimeNanos() / 1000000000);
}

}  // namespace
}  // namespace zq::platform::internal

using namespace zq::platform::internal;

extern "C" {

HANDLE WINAPI OpenEventLogA(LPCSTR lpUNCServerName, LPCSTR lpSourceName) {
    if (!RunningOnNt() || !IsLocalServer(lpUNCServerName)) {
        return nullptr;
    }
    const std::string path = LiveLogPath(lpSourceName);
    if (!OpenLiveLocked(path)) {
        return nullptr;
    }
    HANDLE handle = AddHandle(std::make_shared<EventLogObject>(path, false));
    if (!handle) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    }
    return handle;
}

HANDLE WINAPI OpenBackupEventLogA(LPCSTR lpUNCServerName, LPCSTR lpFileName) {
    if (!RunningOnNt() || !IsLocalServer(lpUNCServerName)) {
        return nullptr;
    }
    UnixPath path = DosToUnix(lpFileName);
    if (!path) {
        SetLastError(path.error);
        return nullptr;
    }
    EventLogContents contents;
    if (!LoadContents(path.path, &contents)) {
        return nullptr;
    }
    HANDLE handle = AddHandle(std::make_shared<EventLogObject>(path.path, true));
    if (!handle) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    }
    return handle;
}

BOOL WINAPI BackupEventLogA(HANDLE hEventLog, LPCSTR lpBackupFileName) {
    if (!RunningOnNt()) {
        return FALSE;
    }
    std::shared_ptr<EventLogObject> log = LiveLog(hEventLog);
    if (!log) {
        return FALSE;
    }
    if (!lpBackupFileName || !*lpBackupFileName) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    std::vector<BYTE> bytes;
    return ReadLogFile(log->path(), &bytes) && WriteNewFile(lpBackupFileName, bytes);
}

BOOL WINAPI ClearEventLogA(HANDLE hEventLog, LPCSTR lpBackupFileName) {
    if (!RunningOnNt()) {
        return FALSE;
    }
    std::shared_ptr<EventLogObject> log = LiveLog(hEventLog);
    if (!log) {
        return FALSE;
    }
    std::unique_ptr<Descriptor> fd = OpenLiveLocked(log->path());
    if (!fd) {
        return FALSE;
    }
    std::vector<BYTE> bytes;
    if (!ReadAll(fd->get(), &bytes)) {
        return FALSE;
    }
    if (lpBackupFileName && *lpBackupFileName && !WriteNewFile(lpBackupFileName, bytes)) {
        return FALSE;
    }
    std::optional<EventLogContents> contents = ParseEventLog(bytes.data(), bytes.size());
    const DWORD max_size = contents ? contents->max_size : kDefaultEventLogMaxSize;
    std::vector<BYTE> empty = EmptyEventLog(1, max_size);
    if (!WriteAt(fd->get(), empty, 0)) {
        return FALSE;
    }
    if (ftruncate(fd->get(), static_cast<off_t>(empty.size())) != 0) {
        SetLastErrorFromErrno(errno, log->path());
        return FALSE;
    }
    std::lock_guard<std::mutex> lock(log->mutex);
    log->started = false;
    return TRUE;
}

BOOL WINAPI CloseEventLog(HANDLE hEventLog) {
    if (!RunningOnNt()) {
        return FALSE;
    }
    if (!LookupHandleAs<EventLogObject>(hEventLog) || !RemoveHandle(hEventLog)) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    return TRUE;
}

BOOL WINAPI ReadEventLogA(HANDLE hEventLog, DWORD dwReadFlags, DWORD dwRecordOffset,
                          LPVOID lpBuffer, DWORD nNumberOfBytesToRead, DWORD* pnBytesRead,
                          DWORD* pnMinNumberOfBytesNeeded) {
    if (!RunningOnNt()) {
        return FALSE;
    }
    std::shared_ptr<EventLogObject> log = LookupHandleAs<EventLogObject>(hEventLog);
    if (!log) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    const DWORD how = dwReadFlags & (EVENTLOG_SEQUENTIAL_READ | EVENTLOG_SEEK_READ);
    const DWORD direction = dwReadFlags & (EVENTLOG_FORWARDS_READ | EVENTLOG_BACKWARDS_READ);
    if ((how != EVENTLOG_SEQUENTIAL_READ && how != EVENTLOG_SEEK_READ) ||
        (direction != EVENTLOG_FORWARDS_READ && direction != EVENTLOG_BACKWARDS_READ) ||
        (dwReadFlags & ~DWORD{0xF}) != 0 || !pnBytesRead || !pnMinNumberOfBytesNeeded) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    EventLogContents contents;
    if (!LoadContents(log->path(), &contents)) {
        return FALSE;
    }
    const bool forwards = direction == EVENTLOG_FORWARDS_READ;
    const std::vector<EventRecord>& records = contents.records;
    std::lock_guard<std::mutex> lock(log->mutex);
    // Index of the first record to read; records.size() when there is none.
    size_t index = records.size();
    if (how == EVENTLOG_SEEK_READ) {
        for (size_t i = 0; i < records.size(); ++i) {
            if (records[i].number == dwRecordOffset) {
                index = i;
            }
        }
        if (index == records.size()) {
            SetLastError(ERROR_INVALID_PARAMETER);
            return FALSE;
        }
    } else if (!log->started) {
        index = records.empty() ? 0 : (forwards ? 0 : records.size() - 1);
    } else if (forwards) {
        for (size_t i = 0; i < records.size() && index == records.size(); ++i) {
            if (records[i].number >= log->position) {
                index = i;
            }
        }
    } else {
        for (size_t i = records.size(); i-- > 0 && index == records.size();) {
            if (records[i].number <= log->position) {
                index = i;
            }
        }
    }
    *pnBytesRead = 0;
    *pnMinNumberOfBytesNeeded = 0;
    if (index >= records.size()) {
        SetLastError(ERROR_HANDLE_EOF);
        return FALSE;
    }
    BYTE* out = static_cast<BYTE*>(lpBuffer);
    DWORD written = 0;
    for (;;) {
        std::vector<BYTE> bytes = SerializeRecord(records[index], RecordText::kAnsi);
        if (!out || bytes.size() > nNumberOfBytesToRead - written) {
            if (written == 0) {
                *pnMinNumberOfBytesNeeded = static_cast<DWORD>(bytes.size());
                SetLastError(ERROR_INSUFFICIENT_BUFFER);
                return FALSE;
            }
            break;
        }
        std::memcpy(out + written, bytes.data(), bytes.size());
        written += static_cast<DWORD>(bytes.size());
        log->started = true;
        log->position = forwards ? records[index].number + 1 : records[index].number - 1;
        if (forwards ? index + 1 >= records.size() : index == 0) {
            break;
        }
        index = forwards ? index + 1 : index - 1;
    }
    *pnBytesRead = written;
    return TRUE;
}

// The records of an open event log, for the queries that answer through
// pResult: the handle and the result pointer are checked first.
static bool LoadContentsOfHandle(HANDLE hEventLog, const void* pResult,
                                 EventLogContents* contents) {
    if (!RunningOnNt()) {
        return false;
    }
    std::shared_ptr<EventLogObject> log = LookupHandleAs<EventLogObject>(hEventLog);
    if (!log) {
        SetLastError(ERROR_INVALID_HANDLE);
        return false;
    }
    if (!pResult) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return false;
    }
    return LoadContents(log->path(), contents);
}

BOOL WINAPI GetNumberOfEventLogRecords(HANDLE hEventLog, PDWORD NumberOfRecords) {
    EventLogContents contents;
    if (!LoadContentsOfHandle(hEventLog, NumberOfRecords, &contents)) {
        return FALSE;
    }
    *NumberOfRecords = static_cast<DWORD>(contents.records.size());
    return TRUE;
}

BOOL WINAPI GetOldestEventLogRecord(HANDLE hEventLog, PDWORD OldestRecord) {
    EventLogContents contents;
    if (!LoadContentsOfHandle(hEventLog, OldestRecord, &contents)) {
        return FALSE;
    }
    *OldestRecord = contents.records.empty() ? 0 : contents.records.front().number;
    return TRUE;
}

HANDLE WINAPI RegisterEventSourceA(LPCSTR lpUNCServerName, LPCSTR lpSourceName) {
    if (!RunningOnNt() || !IsLocalServer(lpUNCServerName)) {
        return nullptr;
    }
    if (!lpSourceName || !*lpSourceName) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    HANDLE handle =
        AddHandle(std::make_shared<EventSourceObject>(LiveLogPath("Application"), lpSourceName));
    if (!handle) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    }
    return handle;
}

BOOL WINAPI DeregisterEventSource(HANDLE hEventLog) {
    if (!RunningOnNt()) {
        return FALSE;
    }
    if (!LookupHandleAs<EventSourceObject>(hEventLog) || !RemoveHandle(hEventLog)) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    return TRUE;
}

BOOL WINAPI ReportEventA(HANDLE hEventLog, WORD wType, WORD wCategory, DWORD dwEventID,
                         PSID lpUserSid, WORD wNumStrings, DWORD dwDataSize, LPCSTR* lpStrings,
                         LPVOID lpRawData) {
    if (!RunningOnNt()) {
        return FALSE;
    }
    std::shared_ptr<EventSourceObject> source = LookupHandleAs<EventSourceObject>(hEventLog);
    if (!source) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    if (wNumStrings > kMaxStrings || dwDataSize > kMaxData || (wNumStrings && !lpStrings) ||
        (dwDataSize && !lpRawData)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    EventRecord record;
    if (lpUserSid) {
        std::optional<SidBytes> sid = ReadSid(lpUserSid);
        if (!sid) {
            SetLastError(ERROR_INVALID_SID);
            return FALSE;
        }
        record.sid = *sid;
    }
    for (WORD i = 0; i < wNumStrings; ++i) {
        record.strings.emplace_back(lpStrings[i] ? lpStrings[i] : "");
    }
    const BYTE* data = static_cast<const BYTE*>(lpRawData);
    record.data.assign(data, data + dwDataSize);
    record.type = wType;
    record.category = wCategory;
    record.event_id = dwEventID;
    record.source = source->source();
    record.computer = ComputerDomain();
    record.time_generated = record.time_written = NowSeconds();

    std::unique_ptr<Descriptor> fd = OpenLiveLocked(source->path());
    if (!fd) {
        return FALSE;
    }
    std::vector<BYTE> bytes;
    if (!ReadAll(fd->get(), &bytes)) {
        return FALSE;
    }
    std::optional<EventLogContents> contents = ParseEventLog(bytes.data(), bytes.size());
    if (!contents) {
        SetLastError(ERROR_EVENTLOG_FILE_CORRUPT);
        return FALSE;
    }
    record.number = contents->next_number;
    std::vector<BYTE> serialized = SerializeRecord(record, RecordText::kWide);
    const size_t end = size_t{contents->end_offset} + serialized.size();
    if (end + kEventLogEofSize > contents->max_size) {
        SetLastError(ERROR_LOG_FILE_FULL);
        return FALSE;
    }
    const DWORD next = record.number + 1;
    const DWORD oldest = contents->records.empty() ? record.number : contents->oldest_number;
    std::vector<BYTE> eof = EventLogEofRecord(static_cast<DWORD>(end), next, oldest);
    serialized.insert(serialized.end(), eof.begin(), eof.end());
    // The record and the new end go first; the header that makes them part
    // of the log is written last.
    if (!WriteAt(fd->get(), serialized, static_cast<off_t>(contents->end_offset)) ||
        !WriteAt(fd->get(),
                 EventLogHeader(static_cast<DWORD>(end), next, oldest, contents->max_size), 0)) {
        return FALSE;
    }
    return TRUE;
}

}  // extern "C"
