// Resources of an executable file read from disk, without loading it:
// an ELF module's `.rsrc` section (the .res images our build embeds, found
// through the section headers) or a PE file's resource directory.
//
// Both readers treat the file as untrusted: every offset and size is
// checked against the file and against fixed caps, the PE directory walk
// has a fixed depth and an entry budget, and a malformed file gives an
// error, never a read outside the data.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/posix/base/byte_source.h"
#include "platform/posix/module/resource_directory.h"

namespace zq::platform::internal {

struct ImageResources {
    std::vector<uint8_t> bytes;          // the data the entries point into
    std::vector<ResourceEntry> entries;  // offsets into `bytes`
};

// Largest resource section or single resource we read (bigger files are refused).
constexpr uint64_t kMaxResourceBytes = 64u << 20;

// Reads the resources of an ELF or PE file. With `only_type`, a PE file's
// other resources are listed without their data being read (their size is
// kept; their offset is 0). Returns 0, or the Win32 error:
// ERROR_RESOURCE_DATA_NOT_FOUND when the file is neither format or has no
// resources, ERROR_BAD_FORMAT when its headers or directory are damaged.
DWORD ReadImageResources(const ByteSource& source, const ResourceName* only_type,
                         ImageResources* out);

// The bytes of the ELF section `name`; 0, ERROR_RESOURCE_DATA_NOT_FOUND
// (not ELF, or no such section) or ERROR_BAD_FORMAT.
DWORD ReadElfSection(const ByteSource& source, const char* name, std::vector<uint8_t>* out);

// The PE resource directory flattened into entries (data copied into
// `out->bytes`). Same results as ReadImageResources.
DWORD ReadPeResources(const ByteSource& source, const ResourceName* only_type, ImageResources* out);

}  // namespace zq::platform::internal
