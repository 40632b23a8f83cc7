// Version blocks: the tree walk, and VerQueryValueA on a buffer laid out as
// GetFileVersionInfoA leaves it (block, "FE2X", room for the ANSI texts).
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "platform/posix/module/version_block.h"
#include "platform/win32.h"

using namespace zq::platform::internal;

namespace {
const char* const kPaths[] = {"\\",
                              "\\VarFileInfo\\Translation",
                              "\\StringFileInfo\\040904E4\\CompanyName",
                              "\\StringFileInfo\\040904e4\\productversion\\",
                              "\\StringFileInfo\\040904E4",
                              "StringFileInfo\\\\040904B0\\Comments",
                              "\\VarFileInfo\\Nope\\Deeper"};
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    for (const char* path : kPaths) {
        VersionNode node;
        if (FindVersionNode(ByteView(data, size), path, &node) &&
            (node.offset + node.length > size || node.value_offset + node.value_bytes > size)) {
            __builtin_trap();
        }
    }
    if (size < 2)
        return 0;
    // The block's own length decides how much VerQueryValueA may touch.
    const size_t length = data[0] | (data[1] << 8);
    std::vector<uint8_t> buffer(length * 2 + 4 > size ? length * 2 + 4 : size, 0);
    std::memcpy(buffer.data(), data, size);
    // The signature goes behind the block, never over its length field.
    if (length >= 2 && length + 4 <= buffer.size())
        std::memcpy(buffer.data() + length, "FE2X", 4);
    for (const char* path : kPaths) {
        void* value = nullptr;
        UINT value_length = 0;
        if (VerQueryValueA(buffer.data(), path, &value, &value_length) && value) {
            auto* bytes = static_cast<uint8_t*>(value);
            if (bytes < buffer.data() || bytes + value_length > buffer.data() + buffer.size()) {
                // Texts without room behind the block come from elsewhere; binary values never do.
                if (bytes >= buffer.data() && bytes < buffer.data() + buffer.size())
                    __builtin_trap();
            }
        }
    }
    return 0;
}
