// The tree of a version block (VS_VERSIONINFO): nodes of a length, a value
// length, a type (text or binary), a key, a value and child nodes, each
// aligned to four bytes. Blocks written by 32-bit resource compilers have
// UTF-16 keys and a type field ("wide"); old 16-bit blocks have ANSI keys
// and no type. The walker never reads outside the root's stated length nor
// outside the view, and stops on a child whose length is zero or too large.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/posix/base/byte_source.h"

namespace zq::platform::internal {

struct VersionNode {
    size_t offset = 0;           // of the node in the block
    size_t length = 0;           // wLength, known to fit in the block
    uint16_t value_length = 0;   // wValueLength as stored (characters for text, else bytes)
    bool text = false;           // wType 1 (wide blocks only)
    size_t value_offset = 0;     // of the value, aligned
    size_t value_bytes = 0;      // bytes of the value inside the node (clamped)
    size_t children_offset = 0;  // of the first child, aligned
    std::u16string key;          // the key (ANSI keys decoded)
};

// True for a block with UTF-16 keys; false for a 16-bit block (its key
// starts at byte 4, where a wide block has its type field, 0 or 1).
bool IsWideVersionBlock(ByteView block);

// Reads the root node; false when the block is too short or its length
// is impossible. The root's length becomes the bound for everything else.
bool ReadVersionRoot(ByteView block, VersionNode* root);

// Follows `path` ("\StringFileInfo\040904E4\CompanyName"; components
// split at '\', empty ones skipped, keys compared without regard to case)
// from the root. An empty path or "\" is the root. False when a
// component has no matching child.
bool FindVersionNode(ByteView block, std::string_view path, VersionNode* out);

// Calls `visit(child)` for each child of `parent` in order, until it
// returns false. Returns false when a child is malformed.
template <typename Visitor>
bool ForEachVersionChild(ByteView block, const VersionNode& parent, bool wide, Visitor&& visit);

// Reads the node at `offset` whose parent ends at `limit`.
bool ReadVersionNode(ByteView block, size_t offset, size_t limit, bool wide, VersionNode* out);

template <typename Visitor>
bool ForEachVersionChild(ByteView block, const VersionNode& parent, bool wide, Visitor&& visit) {
    const size_t end = parent.offset + parent.length;
    size_t at = parent.children_offset;
    while (at < end) {
        VersionNode child;
        if (!ReadVersionNode(block, at, end, wide, &child))
            return false;
        if (!visit(child))
            return true;
        at = AlignFour(child.offset + child.length);
    }
    return true;
}

}  // namespace zq::platform::internal
