// CTime: a moment as seconds since 1970-01-01 00:00 UTC, as far as the
// framework's file status needs one. Calendar fields are not offered here.
#pragma once

#include <cstdint>

#include "platform/win32.h"

class CTime {
public:
    CTime() = default;
    explicit CTime(int64_t time) : time_(time) {}
    // A file time (100-ns intervals since 1601); 0 stays 0 ("no time").
    explicit CTime(const FILETIME& fileTime);

    static CTime GetCurrentTime();
    int64_t GetTime() const { return time_; }

    friend bool operator==(const CTime& a, const CTime& b) { return a.time_ == b.time_; }
    friend bool operator!=(const CTime& a, const CTime& b) { return a.time_ != b.time_; }
    friend bool operator<(const CTime& a, const CTime& b) { return a.time_ < b.time_; }
    friend bool operator>(const CTime& a, const CTime& b) { return a.time_ > b.time_; }
    friend bool operator<=(const CTime& a, const CTime& b) { return a.time_ <= b.time_; }
    friend bool operator>=(const CTime& a, const CTime& b) { return a.time_ >= b.time_; }

private:
    int64_t time_ = 0;
};
