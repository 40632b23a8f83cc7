// GetFileVersionInfoSizeA, GetFileVersionInfoA and VerQueryValueA.
#include <cstring>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "platform/posix/base/debug_channel.h"
#include "platform/posix/base/win32_errno.h"
#include "platform/posix/file/dos_path.h"
#include "platform/posix/module/image_resources.h"
#include "platform/posix/module/resource_text.h"
#include "platform/posix/module/version_block.h"
#include "platform/win32.h"

using namespace zq::platform::internal;

namespace {

constexpr char kSignature[4] = {'F', 'E', '2', 'X'};

// The version block of a file, cut to the length its root states.
DWORD ReadVersionBlock(LPCSTR filename, std::vector<uint8_t>* block) {
    if (!filename || !*filename)
        return ERROR_INVALID_PARAMETER;
    const UnixPath unix_path = DosToUnix(filename);
    if (!unix_path)
        return unix_path.error;
    FileByteSource source;
    if (int error = source.Open(unix_path.path))
        return Win32ErrorFromErrno(error, unix_path.path);

    const ResourceName version_type = ResourceName::Id(16);
    ImageResources resources;
    if (DWORD rc = ReadImageResources(source, &version_type, &resources))
        return rc;
    LookupFailure failure = LookupFailure::kNoResources;
    long index = SelectResource(resources.entries, version_type, ResourceName::Id(1), 0, &failure);
    if (index < 0) {
        // A block under another name still counts, as long as it is the only kind there.
        for (size_t i = 0; i < resources.entries.size() && index < 0; ++i) {
            if (resources.entries[i].type.Matches(version_type))
                index = static_cast<long>(i);
        }
    }
    if (index < 0)
        return ERROR_RESOURCE_TYPE_NOT_FOUND;
    const ResourceEntry& entry = resources.entries[static_cast<size_t>(index)];
    ByteView data(resources.bytes.data(), resources.bytes.size());
    ByteView bytes;
    VersionNode root;
    if (!data.Slice(entry.offset, entry.size, &bytes) || !ReadVersionRoot(bytes, &root)) {
        return ERROR_INVALID_DATA;
    }
    block->assign(bytes.data(), bytes.data() + root.length);
    return 0;
}

// Text handed out for blocks that lack the room GetFileVersionInfoA leaves:
// kept for the life of the process so the pointers stay valid.
const char* InternText(const std::string& text) {
    static std::mutex* mutex = new std::mutex;
    static auto* pool = new std::set<std::string>;
    std::lock_guard<std::mutex> lock(*mutex);
    return pool->insert(text).first->c_str();
}

}  // namespace

extern "C" {

DWORD WINAPI GetFileVersionInfoSizeA(LPCSTR lptstrFilename, LPDWORD lpdwHandle) {
    if (lpdwHandle)
        *lpdwHandle = 0;
    std::vector<uint8_t> block;
    if (DWORD rc = ReadVersionBlock(lptstrFilename, &block)) {
        ZQ_TRACE(kVersion, "GetFileVersionInfoSizeA(%s): error %u",
                 lptstrFilename ? lptstrFilename : "(null)", rc);
        SetLastError(rc);
        return 0;
    }
    ByteView view(block.data(), block.size());
    // UTF-16 blocks get room for the signature and the ANSI copies of their texts.
    return IsWideVersionBlock(view) ? static_cast<DWORD>(block.size() * 2 + sizeof(kSignature))
                                    : static_cast<DWORD>(block.size());
}

BOOL WINAPI GetFileVersionInfoA(LPCSTR lptstrFilename, DWORD /*dwHandle*/, DWORD dwLen,
                                LPVOID lpData) {
    if (!lpData) {
        SetLastError(ERROR_INVALID_DATA);
        return FALSE;
    }
    std::vector<uint8_t> block;
    if (DWORD rc = ReadVersionBlock(lptstrFilename, &block)) {
        SetLastError(rc);
        return FALSE;
    }
    auto* out = static_cast<uint8_t*>(lpData);
    const size_t copied = block.size() < dwLen ? block.size() : dwLen;
    std::memcpy(out, block.data(), copied);
    if (IsWideVersionBlock(ByteView(block.data(), block.size())) &&
        dwLen >= block.size() + sizeof(kSignature)) {
        std::memcpy(out + block.size(), kSignature, sizeof(kSignature));
    }
    return TRUE;
}

BOOL WINAPI VerQueryValueA(LPCVOID pBlock, LPCSTR lpSubBlock, LPVOID* lplpBuffer, PUINT puLen) {
    if (!pBlock || !lplpBuffer) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    auto* base = static_cast<const uint8_t*>(pBlock);
    // The block's own length bounds every read; the caller's buffer is at least that long.
    const uint16_t length = static_cast<uint16_t>(base[0] | (base[1] << 8));
    ByteView block(base, length);
    VersionNode node;
    if (!FindVersionNode(block, lpSubBlock ? lpSubBlock : "", &node)) {
        if (puLen)
            *puLen = 0;
        SetLastError(ERROR_RESOURCE_TYPE_NOT_FOUND);
        return FALSE;
    }
    if (!IsWideVersionBlock(block) || !node.text) {
        *lplpBuffer = const_cast<uint8_t*>(base + node.value_offset);
        if (puLen)
            *puLen =
                static_cast<UINT>(node.value_bytes);  // a length past the node is cut to the node
        return TRUE;
    }

    // A text of a UTF-16 block: hand out an ANSI copy. GetFileVersionInfoA
    // leaves room for it behind the block and the "FE2X" signature, at the
    // same offset as the original, as Windows does.
    const size_t characters =
        node.value_length < node.value_bytes / 2 ? node.value_length : node.value_bytes / 2;
    std::u16string text;
    for (size_t i = 0; i < characters; ++i) {
        uint16_t unit = 0;
        block.U16(node.value_offset + i * 2, &unit);
        text.push_back(static_cast<char16_t>(unit));
    }
    std::string ansi = AnsiFromUtf16(text);
    const bool has_room = std::memcmp(base + length, kSignature, sizeof(kSignature)) == 0;
    auto* area = const_cast<uint8_t*>(base) + length + sizeof(kSignature);
    if (has_room) {
        const size_t capacity = length - node.value_offset;
        if (ansi.size() > capacity)
            ansi.resize(capacity);
        std::memcpy(area + node.value_offset, ansi.data(), ansi.size());
        if (ansi.size() < capacity && (ansi.empty() || ansi.back() != '\0') && characters > 0) {
            area[node.value_offset + ansi.size()] = '\0';  // a value stored without its terminator
        }
        *lplpBuffer = area + node.value_offset;
    } else {
        *lplpBuffer = const_cast<char*>(InternText(ansi));
    }
    if (puLen)
        *puLen = static_cast<UINT>(ansi.size());
    // A block, not a value: converting nothing fails in Windows and says so.
    if (characters == 0)
        SetLastError(ERROR_INVALID_PARAMETER);
    return TRUE;
}

}  // extern "C"
