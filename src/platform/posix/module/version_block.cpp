// Walking version blocks without trusting their lengths.
#include "platform/posix/module/version_block.h"

#include "platform/posix/module/resource_text.h"

namespace zq::platform::internal {

bool IsWideVersionBlock(ByteView block) {
    return block.size() >= 6 && block.data()[4] < ' ';
}

bool ReadVersionNode(ByteView block, size_t offset, size_t limit, bool wide, VersionNode* out) {
    uint16_t length = 0, value_length = 0;
    if (limit > block.size() || !block.U16(offset, &length) ||
        !block.U16(offset + 2, &value_length)) {
        return false;
    }
    const size_t header = wide ? 6 : 4;
    if (length < header + (wide ? 2 : 1) || offset > limit || length > limit - offset)
        return false;
    const size_t end = offset + length;

    out->offset = offset;
    out->length = length;
    out->value_length = value_length;
    out->key.clear();
    size_t at = offset + header;
    if (wide) {
        uint16_t type = 0;
        block.U16(offset + 4, &type);
        out->text = type == 1;
        for (;;) {
            uint16_t unit = 0;
            if (at + 2 > end || !block.U16(at, &unit))
                return false;
            at += 2;
            if (unit == 0)
                break;
            out->key.push_back(static_cast<char16_t>(unit));
        }
    } else {
        out->text = false;
        std::string key;
        for (;;) {
            if (at >= end)
                return false;
            char c = static_cast<char>(block.data()[at++]);
            if (c == '\0')
                break;
            key.push_back(c);
        }
        out->key = Utf16FromAnsi(key);
    }
    out->value_offset = AlignFour(at);
    if (out->value_offset > end)
        out->value_offset = end;
    size_t value_bytes = out->text ? static_cast<size_t>(value_length) * 2 : value_length;
    out->value_bytes =
        value_bytes < end - out->value_offset ? value_bytes : end - out->value_offset;
    out->children_offset = AlignFour(out->value_offset + out->value_bytes);
    return true;
}

bool ReadVersionRoot(ByteView block, VersionNode* root) {
    return ReadVersionNode(block, 0, block.size(), IsWideVersionBlock(block), root);
}

bool FindVersionNode(ByteView block, std::string_view path, VersionNode* out) {
    const bool wide = IsWideVersionBlock(block);
    VersionNode node;
    if (!ReadVersionRoot(block, &node))
        return false;
    // The root's length bounds the walk even when the view is longer.
    ByteView bounded;
    block.Slice(0, node.length, &bounded);
    size_t at = 0;
    while (at < path.size()) {
        size_t slash = path.find('\\', at);
        if (slash == std::string_view::npos)
            slash = path.size();
        if (slash == at) {
            ++at;
            continue;
        }
        const std::u16string component = Utf16FromAnsi(path.substr(at, slash - at));
        bool found = false;
        VersionNode match;
        bool intact = ForEachVersionChild(bounded, node, wide, [&](const VersionNode& child) {
            if (EqualsIgnoringCase(child.key, component)) {
                match = child;
                found = true;
                return false;
            }
            return true;
        });
        if (!found)
            return false;
        (void)intact;  // a damaged tail after the match does not matter
        node = match;
        at = slash;
    }
    *out = node;
    return true;
}

}  // namespace zq::platform::internal
