// .res images as modules embed them: the reader and the lookup over what it read.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/posix/module/resource_directory.h"

using namespace zq::platform::internal;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::vector<ResourceEntry> entries;
    ParseResImage(ByteView(data, size), 0, &entries);
    for (const ResourceEntry& entry : entries) {
        if (entry.offset > size || entry.size > size - entry.offset)
            __builtin_trap();  // entries stay inside
    }
    LookupFailure failure;
    SelectResource(entries, ResourceName::Id(16), ResourceName::Id(1), 0, &failure);
    SelectResourceIn(entries, ResourceName::Id(6), ResourceName::Id(1), 0x0407, false, &failure);
    return 0;
}
