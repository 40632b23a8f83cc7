#include "platform/posix/profile/profile_store.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <thread>
#include <unordered_map>

#include "platform/posix/base/debug_channel.h"
#include "platform/posix/base/host.h"
#include "platform/posix/base/win32_errno.h"
#include "platform/posix/file/dos_attributes.h"
#include "platform/posix/profile/profile_path.h"

namespace zq::platform::internal {

namespace {

int64_t Nanos(const struct timespec& ts) {
    return static_cast<int64_t>(ts.tv_sec) * 1'000'000'000 + ts.tv_nsec;
}

// Reads `fd` from its current offset to the end into `out`; false on a
// read error or when the file reaches ProfileText::kMaxBytes.
bool ReadAll(Host& host, int fd, off_t size_hint, std::string& out) {
    out.clear();
    size_t capacity = size_hint > 0 ? static_cast<size_t>(size_hint) + 1 : 4096;
    for (;;) {
        if (capacity >= ProfileText::kMaxBytes) {
            capacity = ProfileText::kMaxBytes;
        }
        const size_t used = out.size();
        if (used >= capacity) {
            if (capacity == ProfileText::kMaxBytes) {
                return false;
            }
            capacity *= 2;
            continue;
        }
        out.resize(capacity);
        const ssize_t n = host.Read(fd, out.data() + used, capacity - used);
        if (n < 0) {
            out.clear();
            return false;
        }
        out.resize(used + static_cast<size_t>(n));
        if (n == 0) {
            return true;
        }
    }
}

// True when the file behind `fd` holds exactly `bytes`.
bool SameBytes(int fd, const std::string& bytes) {
    char buffer[16384];
    size_t offset = 0;
    for (;;) {
        const ssize_t n = pread(fd, buffer, sizeof buffer, static_cast<off_t>(offset));
        if (n < 0) {
            return false;
        }
        if (n == 0) {
            return offset == bytes.size();
        }
        const size_t got = static_cast<size_t>(n);
        if (offset + got > bytes.size() || std::memcmp(buffer, bytes.data() + offset, got) != 0) {
            return false;
        }
        offset += got;
    }
}

bool WriteAll(Host& host, int fd, const std::string& bytes) {
    size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t n = host.Write(fd, bytes.data() + done, bytes.size() - done);
        if (n < 0) {
            return false;
        }
        if (n == 0) {
            errno = ENOSPC;
            return false;
        }
        done += static_cast<size_t>(n);
    }
    return true;
}

std::string FolderOf(const std::string& path) {
    const size_t slash = path.find_last_of('/');
    if (slash == std::string::npos) {
        return ".";
    }
    return slash == 0 ? "/" : path.substr(0, slash);
}

// The temporary file that becomes `path`: one per file (writers of a file
// take turns under its lock), hidden, in the same folder so that the rename
// stays on one file system.
std::string TemporaryPathFor(const std::string& path) {
    const size_t slash = path.find_last_of('/');
    const std::string folder = slash == std::string::npos ? "" : path.substr(0, slash + 1);
    const std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
    if (name.size() <= 200) {
        return folder + "." + name + ".zq-tmp";
    }
    uint64_t hash = 1469598103934665603ull;
    for (char c : name) {
        hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211ull;
    }
    char tail[40];
    std::snprintf(tail, sizeof tail, ".zq-%016llx.tmp", static_cast<unsigned long long>(hash));
    return folder + tail;
}

void SyncFolder(Host& host, const std::string& folder) {
    const int fd = host.Open(folder.c_str(), O_RDONLY | O_DIRECTORY, 0);
    if (fd >= 0) {
        host.Fsync(fd);  // some file systems refuse; the rename itself is done
        host.Close(fd);
    }
}

void SleepMillis(unsigned millis) {
    std::this_thread::sleep_for(std::chrono::milliseconds(millis));
}

}  // namespace

struct ProfileStore::CachedFile {
    std::mutex mutex;        // guards the fields below
    std::mutex write_mutex;  // one writer of this file at a time within the process
    std::string unix_path;   // what the name resolved to when last resolved
    int fd = -1;             // open on the file whose bytes `text` holds
    FileIdentity identity;
    bool racy = false;
    uint64_t path_checked = 0;  // MonotonicMillis of the last stat of the path
    std::shared_ptr<const ProfileText> text;
    uint64_t last_used = 0;  // guarded by State::mutex

    ~CachedFile() {
        if (fd >= 0) {
            CurrentHost().Close(fd);
        }
    }

    void Replace(int new_fd, const FileIdentity& new_identity,
                 std::shared_ptr<const ProfileText> new_text, bool new_racy, uint64_t now) {
        if (fd >= 0) {
            CurrentHost().Close(fd);
        }
        fd = new_fd;
        identity = new_identity;
        text = std::move(new_text);
        racy = new_racy;
        path_checked = now;
    }
};

struct ProfileStore::State {
    std::mutex mutex;  // guards files and clock
    std::unordered_map<std::string, std::shared_ptr<CachedFile>> files;
    uint64_t clock = 0;
    std::atomic<uint32_t> lock_timeout{kDefaultLockTimeoutMillis};
    const std::shared_ptr<const ProfileText> empty = std::make_shared<const ProfileText>();
};

ProfileStore& ProfileStore::Instance() {
    // Never destroyed: profile functions may run during exit.
    static ProfileStore* store = new ProfileStore(&ProfileFilePath);
    return *store;
}

ProfileStore::ProfileStore(Resolver resolver)
    : resolver_(resolver), state_(std::make_unique<State>()) {}

ProfileStore::~ProfileStore() = default;

void ProfileStore::Clear() {
    std::lock_guard lock(state_->mutex);
    state_->files.clear();
}

DWORD ProfileStore::Flush(const std::string& name) {
    Host& host = CurrentHost();
    DWORD error = ERROR_SUCCESS;
    const std::string path = resolver_(name, error);
    if (path.empty()) {
        return error;
    }
    const int fd = host.Open(path.c_str(), O_RDONLY | O_NONBLOCK, 0);
    if (fd < 0) {
        return errno == ENOENT ? ERROR_SUCCESS : Win32ErrorFromErrno(errno, path);
    }
    const int rc = host.Fsync(fd);
    const int sync_error = errno;
    host.Close(fd);
    if (rc != 0 && sync_error != EINVAL) {
        return Win32ErrorFromErrno(sync_error, path);
    }
    SyncFolder(host, FolderOf(path));  // makes the last rename durable too
    return ERROR_SUCCESS;
}

void ProfileStore::SetLockTimeoutForTesting(uint32_t millis) {
    state_->lock_timeout = millis;
}

ProfileStore::FileIdentity ProfileStore::IdentityOf(const struct stat& st) {
    FileIdentity id;
    id.dev = st.st_dev;
    id.ino = st.st_ino;
    id.size = st.st_size;
    id.mtime = Nanos(st.st_mtim);
    id.ctime = Nanos(st.st_ctim);
    return id;
}

bool ProfileStore::IsRacy(const FileIdentity& identity, int64_t now) {
    // A time without nanoseconds suggests a file system that keeps whole seconds.
    const int64_t window =
        identity.mtime % 1'000'000'000 == 0 ? kCoarseRacyWindowNanos : kRacyWindowNanos;
    return now - identity.mtime < window;
}

std::shared_ptr<ProfileStore::CachedFile> ProfileStore::Entry(const std::string& name) {
    std::lock_guard lock(state_->mutex);
    auto it = state_->files.find(name);
    if (it != state_->files.end()) {
        it->second->last_used = ++state_->clock;
        return it->second;
    }
    if (state_->files.size() >= kMaxCachedFiles) {
        auto oldest = state_->files.begin();
        for (auto i = state_->files.begin(); i != state_->files.end(); ++i) {
            if (i->second->last_used < oldest->second->last_used) {
                oldest = i;
            }
        }
        state_->files.erase(oldest);
    }
    auto file = std::make_shared<CachedFile>();
    file->last_used = ++state_->clock;
    state_->files.emplace(name, file);
    return file;
}

ProfileStore::Snapshot ProfileStore::Read(const std::string& name) {
    std::shared_ptr<CachedFile> file = Entry(name);
    std::lock_guard lock(file->mutex);
    Refresh(*file, name);
    return Snapshot{file->text, file->fd >= 0};
}

void ProfileStore::Refresh(CachedFile& file, const std::string& name) {
    if (!file.text || file.fd < 0) {
        Load(file, name);  // a missing file may have appeared, under any case of its name
        return;
    }
    Host& host = CurrentHost();
    struct stat st;
    if (host.Fstat(file.fd, &st) != 0 || st.st_nlink == 0 || !(IdentityOf(st) == file.identity)) {
        Load(file, name);
        return;
    }
    if (file.racy) {
        const bool still_racy = IsRacy(file.identity, host.RealTimeNanos());
        if (!SameBytes(file.fd, file.text->bytes())) {
            ZQ_TRACE(kProfile, "%s changed within the clock's tick; reloading", name.c_str());
            Load(file, name);
            return;
        }
        file.racy = still_racy;
    }
    const uint64_t now = host.MonotonicMillis();
    if (now - file.path_checked >= kPathCheckMillis) {
        DWORD error = ERROR_SUCCESS;
        const std::string path = resolver_(name, error);
        if (path != file.unix_path || host.Stat(path.c_str(), &st) != 0 ||
            st.st_dev != file.identity.dev || st.st_ino != file.identity.ino) {
            Load(file, name);
            return;
        }
        file.path_checked = now;
    }
}

void ProfileStore::Load(CachedFile& file, const std::string& name) {
    Host& host = CurrentHost();
    const uint64_t now = host.MonotonicMillis();
    file.Replace(-1, FileIdentity{}, state_->empty, false, now);
    DWORD error = ERROR_SUCCESS;
    file.unix_path = resolver_(name, error);
    if (file.unix_path.empty()) {
        return;
    }
    const int fd = host.Open(file.unix_path.c_str(), O_RDONLY | O_NONBLOCK, 0);
    if (fd < 0) {
        return;
    }
    struct stat st;
    if (host.Fstat(fd, &st) != 0 || !S_ISREG(st.st_mode) || st.st_size >= ProfileText::kMaxBytes) {
        ZQ_TRACE(kProfile, "%s: not a readable profile file", file.unix_path.c_str());
        host.Close(fd);
        return;
    }
    const int64_t read_at = host.RealTimeNanos();
    std::string bytes;
    if (!ReadAll(host, fd, st.st_size, bytes)) {
        host.Close(fd);
        return;
    }
    ZQ_TRACE(kProfile, "load %s (%zu bytes)", file.unix_path.c_str(), bytes.size());
    const FileIdentity identity = IdentityOf(st);
    file.Replace(fd, identity, std::make_shared<const ProfileText>(std::move(bytes)),
                 IsRacy(identity, read_at), now);
}

namespace {

// A descriptor on the file at a path, holding its exclusive lock, and
// proven to still be the file that the path names.
struct LockedFile {
    int fd = -1;
    bool created = false;  // this writer created the (empty) file
    struct stat st {};
};

DWORD OpenLocked(Host& host, const std::string& path, uint32_t timeout, LockedFile& out) {
    const uint64_t deadline = host.MonotonicMillis() + timeout;
    for (;;) {
        out.created = false;
        int fd = host.Open(path.c_str(), O_RDWR | O_NONBLOCK, 0);
        if (fd < 0 && errno == ENOENT) {
            fd = host.Open(path.c_str(), O_RDWR | O_NONBLOCK | O_CREAT | O_EXCL, 0666);
            if (fd < 0 && errno == EEXIST) {
                continue;  // created by someone else meanwhile
            }
            out.created = fd >= 0;
        }
        if (fd < 0) {
            return Win32ErrorFromErrno(errno, path);
        }
        if (host.Fstat(fd, &out.st) != 0 || !S_ISREG(out.st.st_mode)) {
            host.Close(fd);
            return ERROR_ACCESS_DENIED;
        }
        unsigned pause = 1;
        int lock_error = 0;
        while (host.Lock(fd, LOCK_EX | LOCK_NB) != 0) {
            lock_error = errno;
            if (lock_error != EWOULDBLOCK || host.MonotonicMillis() >= deadline) {
                break;
            }
            SleepMillis(pause);
            pause = pause < 16 ? pause * 2 : 16;
            lock_error = 0;
        }
        if (lock_error != 0) {
            host.Close(fd);  // a file we created stays: its lock holder writes it
            return lock_error == EWOULDBLOCK ? ERROR_SHARING_VIOLATION
                                             : Win32ErrorFromErrno(lock_error, path);
        }
        // A writer that held the lock before us may have renamed a new file
        // over the path: then this lock guards nothing.
        struct stat now;
        if (host.Stat(path.c_str(), &now) == 0 && now.st_dev == out.st.st_dev &&
            now.st_ino == out.st.st_ino && host.Fstat(fd, &out.st) == 0) {
            out.fd = fd;
            return ERROR_SUCCESS;
        }
        host.Lock(fd, LOCK_UN);
        host.Close(fd);
        if (host.MonotonicMillis() >= deadline) {
            return ERROR_SHARING_VIOLATION;
        }
    }
}

// Writes `bytes` to a temporary file beside `path` with the permissions of
// `old` and renames it over `path`. On success `out_fd` is open
// on the new file.
DWORD ReplaceFile(Host& host, const std::string& path, const std::string& bytes,
                  const struct stat& old, int& out_fd) {
    const DWORD kept_bits = LoadKeptBits(path);
    const std::string temporary = TemporaryPathFor(path);
    const int fd = host.Open(temporary.c_str(), O_RDWR | O_CREAT | O_TRUNC, 0600);
    if (fd < 0) {
        return Win32ErrorFromErrno(errno, temporary);
    }
    ::fchmod(fd, old.st_mode & 07777);
    if (::geteuid() == 0 && (old.st_uid != 0 || old.st_gid != 0)) {
        if (::fchown(fd, old.st_uid, old.st_gid) != 0) {
            // keeps root's ownership; the permission bits still hold
        }
    }
    if (kept_bits != 0) {
        StoreKeptBits(temporary, kept_bits);  // where the file system keeps them at all
    }
    // No sync here: the bytes are the kernel's once written, so a crash of
    // this process leaves the old or the new file; Flush syncs on request.
    int error = 0;
    if (!WriteAll(host, fd, bytes)) {
        error = errno;
    } else if (host.Rename(temporary.c_str(), path.c_str()) != 0) {
        error = errno;
    }
    if (error != 0) {
        host.Close(fd);
        host.Unlink(temporary.c_str());
        return Win32ErrorFromErrno(error, path);
    }
    out_fd = fd;
    return ERROR_SUCCESS;
}

}  // namespace

DWORD ProfileStore::Modify(const std::string& name, const Edit& edit) {
    std::shared_ptr<CachedFile> file = Entry(name);
    std::lock_guard writer(file->write_mutex);
    Host& host = CurrentHost();
    DWORD resolve_error = ERROR_SUCCESS;
    const std::string unix_path = resolver_(name, resolve_error);
    if (unix_path.empty()) {
        return resolve_error;
    }

    // Write through a symbolic link into the file it names, keeping the link.
    std::string target = unix_path;
    struct stat link;
    if (::lstat(unix_path.c_str(), &link) == 0 && S_ISLNK(link.st_mode)) {
        if (char* real = ::realpath(unix_path.c_str(), nullptr)) {
            target = real;
            std::free(real);
        }
    }

    LockedFile locked;
    if (DWORD error = OpenLocked(host, target, state_->lock_timeout, locked)) {
        ZQ_TRACE(kProfile, "write %s: cannot lock (%u)", target.c_str(), error);
        return error;
    }
    auto fail = [&](DWORD error) {
        if (locked.created) {
            host.Unlink(target.c_str());
        }
        host.Lock(locked.fd, LOCK_UN);
        host.Close(locked.fd);
        ZQ_TRACE(kProfile, "write %s failed (%u)", target.c_str(), error);
        return error;
    };
    if ((locked.st.st_mode & S_IWUSR) == 0) {
        return fail(ERROR_ACCESS_DENIED);  // the read-only attribute
    }
    std::string bytes;
    if (locked.st.st_size >= ProfileText::kMaxBytes ||
        !ReadAll(host, locked.fd, locked.st.st_size, bytes)) {
        return fail(ERROR_READ_FAULT);
    }
    std::shared_ptr<const ProfileText> current;
    {
        std::lock_guard lock(file->mutex);
        if (file->text && file->text->bytes() == bytes) {
            current = file->text;
        }
    }
    if (!current) {
        current = std::make_shared<const ProfileText>(std::move(bytes));
    }

    std::optional<std::string> next = edit(*current);
    int result_fd = locked.fd;
    std::shared_ptr<const ProfileText> result = current;
    if (next) {
        if (next->size() >= ProfileText::kMaxBytes) {
            return fail(ERROR_NOT_ENOUGH_MEMORY);
        }
        int new_fd = -1;
        if (DWORD error = ReplaceFile(host, target, *next, locked.st, new_fd)) {
            return fail(error);
        }
        ZQ_TRACE(kProfile, "wrote %s (%zu bytes)", target.c_str(), next->size());
        result = std::make_shared<const ProfileText>(*current, std::move(*next));
        result_fd = new_fd;
        host.Lock(locked.fd, LOCK_UN);
        host.Close(locked.fd);
    } else {
        host.Lock(locked.fd, LOCK_UN);  // the descriptor stays, for the cache
    }

    struct stat st;
    if (host.Fstat(result_fd, &st) != 0) {
        host.Close(result_fd);
        std::lock_guard lock(file->mutex);
        file->text.reset();  // read again next time
        return ERROR_SUCCESS;
    }
    const FileIdentity identity = IdentityOf(st);
    std::lock_guard lock(file->mutex);
    file->unix_path = unix_path;
    file->Replace(result_fd, identity, std::move(result), IsRacy(identity, host.RealTimeNanos()),
                  host.MonotonicMillis());
    return ERROR_SUCCESS;
}

}  // namespace zq::platform::internal
