// Flat resource lists: the .res image reader and the language choice.
#include "platform/posix/module/resource_directory.h"

#include <cstdlib>

#include "platform/posix/module/resource_text.h"

namespace zq::platform::internal {

bool ResourceName::Matches(const ResourceName& other) const {
    if (IsName() != other.IsName())
        return false;
    return IsName() ? EqualsIgnoringCase(name, other.name) : id == other.id;
}

namespace {

// Rank of a language for a request; lower is better, kUnwanted never chosen.
constexpr int kUnwanted = 100;
int LanguageRank(uint16_t have, uint16_t want, bool any_language) {
    if (want != 0) {
        if (have == want)
            return 0;
        if (have == PRIMARYLANGID(want))
            return 1;  // same language, neutral sublanguage
        if (PRIMARYLANGID(have) == PRIMARYLANGID(want))
            return 2;
    }
    switch (have) {
        case 0x0000:
            return 3;  // neutral
        case 0x0400:
            return 4;  // neutral, user default
        case 0x0800:
            return 5;  // neutral, system default
        default:
            break;
    }
    if (!any_language)
        return kUnwanted;
    return have == 0x0409 ? 6 : 7;  // US English, the language resources are written in, then any
}

// Reads a type or name field of a .res header at `offset` within the
// header's view; advances `offset` past it.
bool ReadResName(ByteView header, size_t* offset, ResourceName* out) {
    uint16_t first = 0;
    if (!header.U16(*offset, &first))
        return false;
    if (first == 0xFFFF) {
        if (!header.U16(*offset + 2, &out->id))
            return false;
        out->name.clear();
        *offset += 4;
        return true;
    }
    std::u16string text;
    size_t at = *offset;
    for (;;) {
        uint16_t unit = 0;
        if (!header.U16(at, &unit))
            return false;
        at += 2;
        if (unit == 0)
            break;
        text.push_back(static_cast<char16_t>(unit));
    }
    if (text.empty())
        return false;  // an empty name is neither a name nor an id
    out->id = 0;
    out->name = std::move(text);
    *offset = at;
    return true;
}

}  // namespace

long SelectResource(const std::vector<ResourceEntry>& entries, const ResourceName& type,
                    const ResourceName& name, uint16_t language, LookupFailure* failure) {
    return SelectResourceIn(entries, type, name, language, true, failure);
}

long SelectResourceIn(const std::vector<ResourceEntry>& entries, const ResourceName& type,
                      const ResourceName& name, uint16_t language, bool any_language,
                      LookupFailure* failure) {
    if (entries.empty()) {
        *failure = LookupFailure::kNoResources;
        return -1;
    }
    bool type_seen = false;
    bool name_seen = false;
    long best = -1;
    int best_rank = kUnwanted;
    for (size_t i = 0; i < entries.size(); ++i) {
        const ResourceEntry& entry = entries[i];
        if (!entry.type.Matches(type))
            continue;
        type_seen = true;
        if (!entry.name.Matches(name))
            continue;
        name_seen = true;
        int rank = LanguageRank(entry.language, language, any_language);
        if (rank < best_rank) {
            best_rank = rank;
            best = static_cast<long>(i);
        }
    }
    if (best < 0) {
        *failure = !type_seen   ? LookupFailure::kNoType
                   : !name_seen ? LookupFailure::kNoName
                                : LookupFailure::kNoLanguage;
    }
    return best;
}

bool ResourceNameFromArgument(LPCSTR argument, ResourceName* out) {
    if (IS_INTRESOURCE(argument)) {
        *out = ResourceName::Id(LOWORD(reinterpret_cast<ULONG_PTR>(argument)));
        return true;
    }
    if (argument[0] == '#') {
        // "#123" names the integer resource 123.
        char* end = nullptr;
        unsigned long value = std::strtoul(argument + 1, &end, 10);
        if (end != argument + 1 && *end == '\0' && value <= 0xFFFF) {
            *out = ResourceName::Id(static_cast<uint16_t>(value));
            return true;
        }
    }
    if (argument[0] == '\0')
        return false;
    out->id = 0;
    out->name = Utf16FromAnsi(argument);
    return true;
}

bool ParseResImage(ByteView bytes, size_t base_offset, std::vector<ResourceEntry>* out) {
    constexpr size_t kMinimumHeader = 32;  // sizes, two ordinals, the fixed tail
    size_t at = 0;
    while (bytes.size() - at >= 8) {
        uint32_t data_size = 0, header_size = 0;
        bytes.U32(at, &data_size);
        bytes.U32(at + 4, &header_size);
        ByteView header;
        if (header_size < kMinimumHeader || !bytes.Slice(at, header_size, &header))
            return false;
        size_t data_offset = at + header_size;
        if (!bytes.Has(data_offset, data_size))
            return false;

        ResourceEntry entry;
        size_t field = 8;
        if (!ReadResName(header, &field, &entry.type) ||
            !ReadResName(header, &field, &entry.name)) {
            return false;
        }
        field = AlignFour(field);
        // DataVersion (4), MemoryFlags (2), LanguageId (2), Version (4), Characteristics (4).
        if (!header.Has(field, 16))
            return false;
        header.U16(field + 6, &entry.language);
        entry.offset = base_offset + data_offset;
        entry.size = data_size;
        if (entry.type.IsName() || entry.type.id != 0)
            out->push_back(std::move(entry));

        size_t next = AlignFour(data_offset + data_size);
        if (next <= at)
            return false;  // cannot happen with the checks above; guards the loop
        at = next;
        if (at >= bytes.size())
            break;
    }
    return true;
}

}  // namespace zq::platform::internal
