#include "framework/core/ctime.h"

#include <ctime>

namespace {
// 100-ns intervals from 1601-01-01 to 1970-01-01.
constexpr uint64_t kUnixEpochAsFileTime = 116444736000000000ULL;
constexpr uint64_t kIntervalsPerSecond = 10000000ULL;
}  // namespace

CTime::CTime(const FILETIME& fileTime) {
    uint64_t t = (static_cast<uint64_t>(fileTime.dwHighDateTime) << 32) | fileTime.dwLowDateTime;
    if (t == 0) {
        return;
    }
    time_ = (static_cast<int64_t>(t) - static_cast<int64_t>(kUnixEpochAsFileTime)) /
            static_cast<int64_t>(kIntervalsPerSecond);
}

CTime CTime::GetCurrentTime() {
    return CTime(static_cast<int64_t>(std::time(nullptr)));
}
