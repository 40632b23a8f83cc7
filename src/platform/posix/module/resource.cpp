// FindResourceA, LoadResource, LoadStringA and their companions.
#include <cstring>
#include <string>

#include "platform/posix/module/loaded_modules.h"
#include "platform/posix/module/resource_table.h"
#include "platform/posix/module/resource_text.h"
#include "platform/win32.h"

using namespace zq::platform::internal;

namespace {

HMODULE Resolve(HMODULE module) {
    return module ? module : ExecutableModule();
}

HRSRC Find(HMODULE module, LPCSTR type, LPCSTR name, WORD language, bool any_language) {
    ResourceName type_key, name_key;
    if (!type || !name || !ResourceNameFromArgument(type, &type_key)) {
        SetLastError(ERROR_RESOURCE_TYPE_NOT_FOUND);
        return nullptr;
    }
    if (!ResourceNameFromArgument(name, &name_key)) {
        SetLastError(ERROR_RESOURCE_NAME_NOT_FOUND);
        return nullptr;
    }
    FoundResource found;
    DWORD error = 0;
    if (!FindModuleResource(Resolve(module), type_key, name_key, language, any_language, &found,
                            &error)) {
        SetLastError(error);
        return nullptr;
    }
    return reinterpret_cast<HRSRC>(const_cast<ResourceEntry*>(found.entry));
}

}  // namespace

extern "C" {

HRSRC WINAPI FindResourceA(HMODULE hModule, LPCSTR lpName, LPCSTR lpType) {
    return Find(hModule, lpType, lpName, 0, true);
}

HRSRC WINAPI FindResourceExA(HMODULE hModule, LPCSTR lpType, LPCSTR lpName, WORD wLanguage) {
    return Find(hModule, lpType, lpName, wLanguage, wLanguage == 0);
}

HGLOBAL WINAPI LoadResource(HMODULE /*hModule*/, HRSRC hResInfo) {
    FoundResource found;
    if (!ResolveResourceHandle(hResInfo, &found)) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    return const_cast<uint8_t*>(found.data);
}

LPVOID WINAPI LockResource(HGLOBAL hResData) {
    return hResData;
}

DWORD WINAPI SizeofResource(HMODULE /*hModule*/, HRSRC hResInfo) {
    FoundResource found;
    if (!ResolveResourceHandle(hResInfo, &found)) {
        SetLastError(ERROR_INVALID_HANDLE);
        return 0;
    }
    return found.size;
}

BOOL WINAPI FreeResource(HGLOBAL /*hResData*/) {
    return FALSE;
}

int WINAPI LoadStringA(HINSTANCE hInstance, UINT uID, LPSTR lpBuffer, int cchBufferMax) {
    if (!lpBuffer || cchBufferMax <= 0)
        return 0;
    lpBuffer[0] = '\0';
    // Strings live in blocks of sixteen: block uID / 16 + 1, entry uID % 16.
    const WORD block = static_cast<WORD>((LOWORD(uID) >> 4) + 1);
    FoundResource found;
    DWORD error = 0;
    if (!FindModuleResource(Resolve(hInstance), ResourceName::Id(6), ResourceName::Id(block), 0,
                            true, &found, &error)) {
        SetLastError(error);
        return 0;
    }
    ByteView data(found.data, found.size);
    size_t at = 0;
    for (UINT skip = uID & 0x0F; skip > 0; --skip) {
        uint16_t length = 0;
        if (!data.U16(at, &length))
            return 0;
        at += 2 + static_cast<size_t>(length) * 2;
    }
    uint16_t length = 0;
    if (!data.U16(at, &length) || !data.Has(at + 2, static_cast<size_t>(length) * 2))
        return 0;
    std::u16string text;
    text.reserve(length);
    for (uint16_t i = 0; i < length; ++i) {
        uint16_t unit = 0;
        data.U16(at + 2 + i * 2u, &unit);
        text.push_back(static_cast<char16_t>(unit));
    }
    const std::string ansi = AnsiFromUtf16(text);
    const size_t copied = ansi.size() < static_cast<size_t>(cchBufferMax) - 1
                              ? ansi.size()
                              : static_cast<size_t>(cchBufferMax) - 1;
    std::memcpy(lpBuffer, ansi.data(), copied);
    lpBuffer[copied] = '\0';
    return static_cast<int>(copied);
}

BOOL WINAPI ZqRegisterModuleResources(const void* begin, const void* end) {
    auto* first = static_cast<const uint8_t*>(begin);
    auto* last = static_cast<const uint8_t*>(end);
    if (!first || last < first)
        return FALSE;
    return RegisterResources(first, static_cast<size_t>(last - first)) ? TRUE : FALSE;
}

void WINAPI ZqUnregisterModuleResources(const void* begin) {
    if (begin)
        UnregisterResources(static_cast<const uint8_t*>(begin));
}

}  // extern "C"
