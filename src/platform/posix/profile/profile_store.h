// The profile files of the process: a cache of parsed files, and the one
// path by which a file is changed on disk.
//
// Cache. A file, once read, stays parsed in memory together with an open
// descriptor on it. Every read checks the descriptor with fstat: a change of
// size, modification or status-change time (nanoseconds), or a link count
// of zero (the file was replaced by a rename or deleted) makes the next read
// load the file again; the path itself is checked by stat about once a
// second, in case the whole folder was replaced. A file modified less than
// kRacyWindow before it was read may still change within the same tick of
// the file system's clock without any visible difference in its times; its
// bytes are compared on each read until that window has passed. At most
// kMaxCachedFiles files are kept; the least recently used goes first.
//
// Writes. Modify takes an advisory lock on the file (flock on the file
// itself, re-checked after locking so that a lock on a file that was just
// replaced is not trusted), reads the file again under the lock, applies the
// edit and writes the result to a temporary file in the same folder
// (".<name>.zq-tmp", same permission bits), which is renamed over the
// file. Two processes writing different keys of one file therefore lose
// nothing, and a crash of a writer leaves either the old or the new file,
// never a part of one. Writes are not synced (a sync costs several
// milliseconds, more than the write); Flush syncs a file and its folder,
// after which the file also survives a power failure. A lock held by
// another writer is waited for up to the lock timeout (3 s), after which
// the write fails with ERROR_SHARING_VIOLATION. File operations that tests
// may want to break go through the Host seam.
//
// Thread-safe. Reads of one file from several threads share one parsed copy.
#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/posix/profile/profile_text.h"
#include "platform/win32.h"

namespace zq::platform::internal {

class ProfileStore {
public:
    static constexpr size_t kMaxCachedFiles = 32;
    static constexpr int64_t kRacyWindowNanos = 100'000'000;          // 100 ms
    static constexpr int64_t kCoarseRacyWindowNanos = 2'000'000'000;  // whole-second clocks
    static constexpr uint64_t kPathCheckMillis = 1000;
    static constexpr uint32_t kDefaultLockTimeoutMillis = 3000;

    // Turns a file name as callers give it into a Unix path; returns an
    // empty path and sets `error` when the name cannot name a file.
    using Resolver = std::string (*)(const std::string& name, DWORD& error);

    struct Snapshot {
        std::shared_ptr<const ProfileText> text;  // never null; empty when the file is missing
        bool exists = false;                      // a readable regular file was found
    };

    // Receives the current text; returns the new bytes, or nothing to keep
    // the file as it is.
    using Edit = std::function<std::optional<std::string>(const ProfileText&)>;

    // The store of the process, resolving names with ProfileFilePath.
    static ProfileStore& Instance();

    explicit ProfileStore(Resolver resolver);
    ~ProfileStore();
    ProfileStore(const ProfileStore&) = delete;
    ProfileStore& operator=(const ProfileStore&) = delete;

    // The content of the file called `name`. Resolving the name costs file
    // system lookups, so it is done when the file is first read, while it
    // is missing, and at the periodic check of the path. A missing,
    // unreadable or non-regular file, or one of ProfileText::kMaxBytes or
    // more, reads as an empty file with exists == false.
    Snapshot Read(const std::string& name);

    // Applies `edit` to the file called `name` under its lock and returns
    // ERROR_SUCCESS or a Win32 error code. A missing file is created (left
    // empty when the edit changes nothing, as Windows does for deletions);
    // its folder must exist. On failure the file is as it was before (a
    // file that this call created is removed again). Fails with
    // ERROR_ACCESS_DENIED for a read-only file (no owner write permission)
    // or a folder, ERROR_PATH_NOT_FOUND when the folder is missing,
    // ERROR_SHARING_VIOLATION when the lock stays held, ERROR_DISK_FULL when
    // the disk is full, or the error of the name's resolution. The DOS
    // attributes kept beside the file (hidden, system, archive) move to the
    // new file.
    DWORD Modify(const std::string& name, const Edit& edit);

    // Syncs the file called `name` and its folder to the disk. Returns
    // ERROR_SUCCESS (also for a missing file) or the Win32 error of the
    // name's resolution, the open or the sync.
    DWORD Flush(const std::string& name);
    // Forgets every cached file (closing its descriptor).
    void Clear();

    // How long Modify waits for a lock held elsewhere.
    void SetLockTimeoutForTesting(uint32_t millis);

private:
    struct CachedFile;
    struct FileIdentity {
        dev_t dev = 0;
        ino_t ino = 0;
        off_t size = -1;
        int64_t mtime = 0;  // nanoseconds
        int64_t ctime = 0;
        bool operator==(const FileIdentity&) const = default;
    };

    std::shared_ptr<CachedFile> Entry(const std::string& name);
    void Refresh(CachedFile& file, const std::string& name);
    void Load(CachedFile& file, const std::string& name);
    static FileIdentity IdentityOf(const struct stat& st);
    static bool IsRacy(const FileIdentity& identity, int64_t now);

    struct State;
    Resolver resolver_;
    std::unique_ptr<State> state_;
};

}  // namespace zq::platform::internal
