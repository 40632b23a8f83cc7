// PE files: headers, section table and the resource directory walk.
#include <cstddef>
#include <cstdint>

#include "platform/posix/module/image_resources.h"

using namespace zq::platform::internal;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    MemoryByteSource source(data, size);
    ImageResources all, versions;
    ReadPeResources(source, nullptr, &all);
    const ResourceName version = ResourceName::Id(16);
    if (ReadPeResources(source, &version, &versions) == 0) {
        for (const ResourceEntry& entry : versions.entries) {
            if (!entry.type.Matches(version))
                continue;
            if (entry.offset > versions.bytes.size() ||
                entry.size > versions.bytes.size() - entry.offset) {
                __builtin_trap();
            }
        }
    }
    return 0;
}
