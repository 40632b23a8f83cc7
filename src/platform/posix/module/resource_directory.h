// The resources of one module or file, as a flat list, and the lookup that
// FindResourceExA performs on it.
//
// Types and names are either a 16-bit id or a UTF-16 name; names compare
// without regard to case (resource compilers store them upper-cased, but
// other producers may not). Entries refer to their data by offset into the
// byte span the list was built from, so a list stays valid exactly as long
// as those bytes.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/posix/base/byte_source.h"
#include "platform/win32.h"

namespace zq::platform::internal {

struct ResourceName {
    uint16_t id = 0;
    std::u16string name;  // non-empty: a named type or resource

    static ResourceName Id(uint16_t value) { return ResourceName{value, {}}; }
    bool IsName() const { return !name.empty(); }
    bool Matches(const ResourceName& other) const;
};

struct ResourceEntry {
    ResourceName type;
    ResourceName name;
    uint16_t language = 0;
    size_t offset = 0;  // of the data, in the list's byte span
    uint32_t size = 0;
};

// Why a lookup found nothing: the Win32 error to report.
enum class LookupFailure : DWORD {
    kNoResources = ERROR_RESOURCE_DATA_NOT_FOUND,
    kNoType = ERROR_RESOURCE_TYPE_NOT_FOUND,
    kNoName = ERROR_RESOURCE_NAME_NOT_FOUND,
    kNoLanguage = ERROR_RESOURCE_LANG_NOT_FOUND,
};

// Finds the entry of `type` and `name` in the language that Windows would
// pick. With `language` 0 (neutral): neutral, then the neutral defaults,
// then US English, then the first language present. With a specific
// language: that language, then its primary language (neutral sublanguage,
// then any sublanguage), then the same chain as for neutral. Returns the
// index into `entries`, or -1 with `*failure` set.
long SelectResource(const std::vector<ResourceEntry>& entries, const ResourceName& type,
                    const ResourceName& name, uint16_t language, LookupFailure* failure);
// The same, but with `any_language` false a specific language request falls
// back only to its primary language and the neutral ones (FindResourceExA);
// kNoLanguage when none of those is there.
long SelectResourceIn(const std::vector<ResourceEntry>& entries, const ResourceName& type,
                      const ResourceName& name, uint16_t language, bool any_language,
                      LookupFailure* failure);

// Turns the A-form resource name argument (an integer resource, "#123", or
// a name in the ANSI code page) into a ResourceName; false for an empty name.
bool ResourceNameFromArgument(LPCSTR argument, ResourceName* out);

// Appends the entries of a .res file image (a sequence of resource headers
// and data, as resource compilers write it; several images may follow one
// another) to `out`, with offsets relative to `base_offset` + position in
// `bytes`. Entries of type 0 (the leading empty entry) are skipped. Returns
// false, leaving `out` with what was read before, when a header lies about
// its sizes or runs past the end.
bool ParseResImage(ByteView bytes, size_t base_offset, std::vector<ResourceEntry>* out);

}  // namespace zq::platform::internal
