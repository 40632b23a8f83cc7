// IsBadCodePtr: whether an address lies in executable memory of the process.
//
// The executable ranges come from /proc/self/maps. They change only when a
// module is loaded or unloaded, so they are kept in a snapshot that is read
// again only when an address is not found in it; each thread also remembers
// the range of its last hit, so the common case (the same callback again and
// again) takes no lock.
#include <cstdint>
#include <cstdio>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/win32.h"

namespace zq::platform::internal {
namespace {

struct Range {
    uintptr_t begin;
    uintptr_t end;  // exclusive
};

std::vector<Range> ReadExecutableRanges() {
    std::vector<Range> ranges;
    FILE* maps = std::fopen("/proc/self/maps", "re");
    if (maps == nullptr) {
        return ranges;
    }
    char line[512];
    while (std::fgets(line, sizeof line, maps) != nullptr) {
        unsigned long long begin = 0;
        unsigned long long end = 0;
        char perms[8] = {};
        if (std::sscanf(line, "%llx-%llx %7s", &begin, &end, perms) == 3 && perms[2] == 'x') {
            ranges.push_back({static_cast<uintptr_t>(begin), static_cast<uintptr_t>(end)});
        }
    }
    std::fclose(maps);
    return ranges;
}

class ExecutableRanges {
public:
    // The range holding `address`, re-reading the map once on a miss.
    bool Find(uintptr_t address, Range* found) {
        std::lock_guard<std::mutex> lock(mutex_);
        if (FindIn(address, found)) {
            return true;
        }
        ranges_ = ReadExecutableRanges();
        return FindIn(address, found);
    }

private:
    bool FindIn(uintptr_t address, Range* found) const {
        for (const Range& r : ranges_) {
            if (address >= r.begin && address < r.end) {
                *found = r;
                return true;
            }
        }
        return false;
    }

    std::mutex mutex_;
    std::vector<Range> ranges_;
};

ExecutableRanges& Ranges() {
    static ExecutableRanges* ranges = new ExecutableRanges;  // used during exit too
    return *ranges;
}

thread_local Range t_last_hit{0, 0};

}  // namespace

bool IsExecutableAddress(uintptr_t address) {
    if (address >= t_last_hit.begin && address < t_last_hit.end) {
        return true;
    }
    Range found{};
    if (!Ranges().Find(address, &found)) {
        return false;
    }
    t_last_hit = found;
    return true;
}

}  // namespace zq::platform::internal

extern "C" BOOL WINAPI IsBadCodePtr(FARPROC lpfn) {
    // A module unloaded after a thread's last hit leaves that thread a stale
    // range; the check is a guard against wrong pointers, not a proof.
    return zq::platform::internal::IsExecutableAddress(reinterpret_cast<uintptr_t>(lpfn)) ? FALSE
                                                                                          : TRUE;
}
