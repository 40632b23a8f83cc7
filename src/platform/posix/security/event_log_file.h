// The event-log file format.
//
// A file starts with a 48-byte header (size, "LfLe" signature, version 1.1,
// offsets of the first record and of the end-of-file record, next and oldest
// record numbers, maximum size, flags, retention, size again). The records
// follow as EVENTLOGRECORD structures with UTF-16 texts. The live region
// runs from the start offset to the end offset; when the start lies behind
// the end, the region wraps from the end of the file to just after the
// header (files Windows wrote in a circle). An end-of-file record closes the
// region. Writers here never wrap.
//
// The parser takes its input as untrusted: every length and offset is
// checked against the bytes at hand, and nothing beyond kMaxEventLogSize is
// read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/win32.h"

namespace zq::platform::internal {

constexpr DWORD kEventLogSignature = 0x654C664C;  // "LfLe"
constexpr DWORD kEventLogHeaderSize = 0x30;
constexpr DWORD kEventLogEofSize = 0x28;
constexpr DWORD kDefaultEventLogMaxSize = 0x80000;
constexpr size_t kMaxEventLogSize = 64u << 20;

// One event, its texts in the ANSI code page.
struct EventRecord {
    DWORD number = 0;
    DWORD time_generated = 0;
    DWORD time_written = 0;
    DWORD event_id = 0;
    WORD type = 0;
    WORD category = 0;
    std::string source;
    std::string computer;
    std::vector<std::string> strings;
    std::vector<BYTE> sid;
    std::vector<BYTE> data;
};

struct EventLogContents {
    DWORD next_number = 1;    // number the next record will get
    DWORD oldest_number = 0;  // 0 when there is no record
    DWORD max_size = kDefaultEventLogMaxSize;
    DWORD end_offset = kEventLogHeaderSize;  // where the end-of-file record starts
    std::vector<EventRecord> records;        // oldest first
};

// The contents of a log file; nullopt when `bytes` is not an event log.
std::optional<EventLogContents> ParseEventLog(const BYTE* bytes, size_t size);

// Texts as stored in the file (UTF-16) or as ReadEventLogA hands them out.
enum class RecordText { kWide, kAnsi };

// The record in its framed layout, a multiple of 4 bytes.
std::vector<BYTE> SerializeRecord(const EventRecord& record, RecordText text);

// A whole log file that holds no record.
std::vector<BYTE> EmptyEventLog(DWORD next_number, DWORD max_size);

// The header of a linear log whose records occupy [header, end_offset).
std::vector<BYTE> EventLogHeader(DWORD end_offset, DWORD next_number, DWORD oldest_number,
                                 DWORD max_size);

// The end-of-file record of a linear log.
std::vector<BYTE> EventLogEofRecord(DWORD end_offset, DWORD next_number, DWORD oldest_number);

}  // namespace zq::platform::internal
