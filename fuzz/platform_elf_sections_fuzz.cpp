// ELF files: the section header table and the .rsrc section behind it.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/posix/module/image_resources.h"

using namespace zq::platform::internal;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    MemoryByteSource source(data, size);
    std::vector<uint8_t> section;
    if (ReadElfSection(source, ".rsrc", &section) == 0 && section.size() > size)
        __builtin_trap();
    ImageResources resources;
    ReadImageResources(source, nullptr, &resources);
    return 0;
}
