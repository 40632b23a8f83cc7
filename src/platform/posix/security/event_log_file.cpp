#include "platform/posix/security/event_log_file.h"

#include <cstring>

#include "platform/posix/base/byte_source.h"

namespace zq::platform::internal {

namespace {

constexpr DWORD kRecordFixedSize = sizeof(EVENTLOGRECORD);  // 56
constexpr DWORD kEofMarkers[4] = {0x11111111, 0x22222222, 0x33333333, 0x44444444};

void PutU32(std::vector<BYTE>& out, size_t offset, DWORD value) {
    if (out.size() < offset + 4) {
        out.resize(offset + 4, 0);
    }
    std::memcpy(out.data() + offset, &value, 4);
}

void AppendU32(std::vector<BYTE>& out, DWORD value) {
    PutU32(out, out.size(), value);
}

void PadTo4(std::vector<BYTE>& out) {
    out.resize((out.size() + 3) / 4 * 4, 0);
}

std::string WideToAnsi(const std::vector<WCHAR>& wide) {
    if (wide.empty()) {
        return std::string();
    }
    const int count = static_cast<int>(wide.size());
    int size = WideCharToMultiByte(CP_ACP, 0, wide.data(), count, nullptr, 0, nullptr, nullptr);
    if (size <= 0) {
        return std::string();
    }
    std::string ansi(static_cast<size_t>(size), '\0');
    WideCharToMultiByte(CP_ACP, 0, wide.data(), count, ansi.data(), size, nullptr, nullptr);
    return ansi;
}

std::vector<WCHAR> AnsiToWide(const std::string& ansi) {
    if (ansi.empty()) {
        return {};
    }
    const int count = static_cast<int>(ansi.size());
    int size = MultiByteToWideChar(CP_ACP, 0, ansi.data(), count, nullptr, 0);
    if (size <= 0) {
        return {};
    }
    std::vector<WCHAR> wide(static_cast<size_t>(size));
    MultiByteToWideChar(CP_ACP, 0, ansi.data(), count, wide.data(), size);
    return wide;
}

// Appends `text` and its terminator in the chosen form.
void AppendText(std::vector<BYTE>& out, const std::string& text, RecordText form) {
    if (form == RecordText::kAnsi) {
        out.insert(out.end(), text.begin(), text.end());
        out.push_back(0);
        return;
    }
    std::vector<WCHAR> wide = AnsiToWide(text);
    wide.push_back(0);
    const BYTE* bytes = reinterpret_cast<const BYTE*>(wide.data());
    out.insert(out.end(), bytes, bytes + wide.size() * sizeof(WCHAR));
}

// Reads a NUL-terminated UTF-16 text at `offset` that must end before
// `limit`; `offset` moves past the terminator.
bool ReadWideText(const ByteView& view, size_t* offset, size_t limit, std::string* text) {
    std::vector<WCHAR> wide;
    for (;;) {
        uint16_t unit = 0;
        if (*offset + 2 > limit || !view.U16(*offset, &unit)) {
            return false;
        }
        *offset += 2;
        if (unit == 0) {
            break;
        }
        wide.push_back(unit);
    }
    *text = WideToAnsi(wide);
    return true;
}

// Parses one record of `length` bytes at the start of `view`.
bool ParseRecord(const ByteView& view, DWORD length, EventRecord* record) {
    uint32_t signature = 0, trailer = 0;
    uint16_t type = 0, num_strings = 0, category = 0;
    uint32_t string_offset = 0, sid_length = 0, sid_offset = 0, data_length = 0, data_offset = 0;
    if (!view.U32(4, &signature) || signature != kEventLogSignature ||
        !view.U32(length - 4, &trailer) || trailer != length || !view.U32(8, &record->number) ||
        !view.U32(12, &record->time_generated) || !view.U32(16, &record->time_written) ||
        !view.U32(20, &record->event_id) || !view.U16(24, &type) || !view.U16(26, &num_strings) ||
        !view.U16(28, &category) || !view.U32(36, &string_offset) || !view.U32(40, &sid_length) ||
        !view.U32(44, &sid_offset) || !view.U32(48, &data_length) || !view.U32(52, &data_offset)) {
        return false;
    }
    record->type = type;
    record->category = category;
    const size_t limit = length - 4;  // the trailing copy of the length
    size_t offset = kRecordFixedSize;
    if (!ReadWideText(view, &offset, limit, &record->source) ||
        !ReadWideText(view, &offset, limit, &record->computer)) {
        return false;
    }
    ByteView part;
    if (sid_length > 0) {
        if (sid_offset > limit || sid_length > limit - sid_offset ||
            !view.Slice(sid_offset, sid_length, &part)) {
            return false;
        }
        record->sid.assign(part.data(), part.data() + part.size());
    }
    if (data_length > 0) {
        if (data_offset > limit || data_length > limit - data_offset ||
            !view.Slice(data_offset, data_length, &part)) {
            return false;
        }
        record->data.assign(part.data(), part.data() + part.size());
    }
    offset = string_offset;
    for (uint16_t i = 0; i < num_strings; ++i) {
        std::string text;
        if (!ReadWideText(view, &offset, limit, &text)) {
            return false;
        }
        record->strings.push_back(std::move(text));
    }
    return true;
}

bool IsEofRecord(const ByteView& view, size_t offset) {
    uint32_t value = 0;
    if (!view.U32(offset, &value) || value != kEventLogEofSize) {
        return false;
    }
    for (int i = 0; i < 4; ++i) {
        if (!view.U32(offset + 4 + 4 * i, &value) || value != kEofMarkers[i]) {
            return false;
        }
    }
    return true;
}

}  // namespace

std::optional<EventLogContents> ParseEventLog(const BYTE* bytes, size_t size) {
    if (!bytes || size > kMaxEventLogSize) {
        return std::nullopt;
    }
    ByteView file(bytes, size);
    uint32_t header_size = 0, signature = 0, major = 0, minor = 0, start = 0, end = 0, next = 0,
             oldest = 0, max_size = 0, end_header_size = 0;
    if (!file.U32(0, &header_size) || header_size != kEventLogHeaderSize ||
        !file.U32(4, &signature) || signature != kEventLogSignature || !file.U32(8, &major) ||
        major != 1 || !file.U32(12, &minor) || !file.U32(16, &start) || !file.U32(20, &end) ||
        !file.U32(24, &next) || !file.U32(28, &oldest) || !file.U32(32, &max_size) ||
        !file.U32(44, &end_header_size) || end_header_size != kEventLogHeaderSize) {
        return std::nullopt;
    }
    if (start < kEventLogHeaderSize || end < kEventLogHeaderSize || start > size || end > size) {
        return std::nullopt;
    }
    // The live region, unwrapped into one run of bytes.
    std::vector<BYTE> region;
    if (start <= end) {
        region.assign(bytes + start, bytes + end);
    } else {
        region.assign(bytes + start, bytes + size);
        region.insert(region.end(), bytes + kEventLogHeaderSize, bytes + end);
    }
    EventLogContents contents;
    contents.next_number = next;
    contents.oldest_number = oldest;
    contents.max_size = max_size;
    contents.end_offset = end;
    ByteView view(region.data(), region.size());
    size_t offset = 0;
    while (offset < region.size()) {
        if (IsEofRecord(view, offset)) {
            break;
        }
        uint32_t length = 0;
        ByteView record_view;
        if (!view.U32(offset, &length) || length < kRecordFixedSize + 8 ||
            !view.Slice(offset, length, &record_view)) {
            return std::nullopt;
        }
        EventRecord record;
        if (!ParseRecord(record_view, length, &record)) {
            return std::nullopt;
        }
        contents.records.push_back(std::move(record));
        offset += length;
    }
    if (contents.records.empty()) {
        contents.oldest_number = 0;
    }
    return contents;
}

std::vector<BYTE> SerializeRecord(const EventRecord& record, RecordText text) {
    std::vector<BYTE> out(kRecordFixedSize, 0);
    PutU32(out, 4, kEventLogSignature);
    PutU32(out, 8, record.number);
    PutU32(out, 12, record.time_generated);
    PutU32(out, 16, record.time_written);
    PutU32(out, 20, record.event_id);
    const WORD type = record.type;
    const WORD num_strings = static_cast<WORD>(record.strings.size());
    const WORD category = record.category;
    std::memcpy(out.data() + 24, &type, 2);
    std::memcpy(out.data() + 26, &num_strings, 2);
    std::memcpy(out.data() + 28, &category, 2);
    AppendText(out, record.source, text);
    AppendText(out, record.computer, text);
    PadTo4(out);
    PutU32(out, 40, static_cast<DWORD>(record.sid.size()));
    PutU32(out, 44, static_cast<DWORD>(out.size()));
    out.insert(out.end(), record.sid.begin(), record.sid.end());
    PutU32(out, 36, static_cast<DWORD>(out.size()));
    for (const std::string& string : record.strings) {
        AppendText(out, string, text);
    }
    PutU32(out, 48, static_cast<DWORD>(record.data.size()));
    PutU32(out, 52, static_cast<DWORD>(out.size()));
    out.insert(out.end(), record.data.begin(), record.data.end());
    PadTo4(out);
    const DWORD length = static_cast<DWORD>(out.size() + 4);
    AppendU32(out, length);
    PutU32(out, 0, length);
    return out;
}

std::vector<BYTE> EventLogHeader(DWORD end_offset, DWORD next_number, DWORD oldest_number,
                                 DWORD max_size) {
    std::vector<BYTE> out;
    for (DWORD value : {kEventLogHeaderSize, kEventLogSignature, DWORD{1}, DWORD{1},
                        kEventLogHeaderSize, end_offset, next_number, oldest_number, max_size,
                        DWORD{0}, DWORD{0}, kEventLogHeaderSize}) {
        AppendU32(out, value);
    }
    return out;
}

std::vector<BYTE> EventLogEofRecord(DWORD end_offset, DWORD next_number, DWORD oldest_number) {
    std::vector<BYTE> out;
    AppendU32(out, kEventLogEofSize);
    for (DWORD marker : kEofMarkers) {
        AppendU32(out, marker);
    }
    for (DWORD value :
         {kEventLogHeaderSize, end_offset, next_number, oldest_number, kEventLogEofSize}) {
        AppendU32(out, value);
    }
    return out;
}

std::vector<BYTE> EmptyEventLog(DWORD next_number, DWORD max_size) {
    std::vector<BYTE> out = EventLogHeader(kEventLogHeaderSize, next_number, 0, max_size);
    std::vector<BYTE> eof = EventLogEofRecord(kEventLogHeaderSize, next_number, 0);
    out.insert(out.end(), eof.begin(), eof.end());
    return out;
}

}  // namespace zq::platform::internal
