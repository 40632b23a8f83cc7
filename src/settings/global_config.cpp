#include "settings/global_config.h"

#include <cstring>
#include <memory>
#include <new>
#include <string>

#include "diagnostics/operating_system.h"

namespace {

constexpr DWORD kNameBufferSize = 263;  // names of up to 260 characters
constexpr DWORD kNameChars = 261;
constexpr DWORD kDataBufferSize = 8194;  // 8,192 bytes of data and room for terminators
constexpr DWORD kDataBytes = 8192;
constexpr DWORD kTextBufferSize = 1024;  // a number's text on Win32s

// Running out of items, or one vanishing meanwhile, ends an enumeration well.
DWORD EndOfEnumeration(LONG rc) {
    return rc == ERROR_NO_MORE_ITEMS || rc == ERROR_FILE_NOT_FOUND ? 0 : static_cast<DWORD>(rc);
}

// Closes hKey; the work's error wins over the close error.
DWORD Finish(HKEY hKey, DWORD work) {
    const LONG closed = RegCloseKey(hKey);
    return work != 0 ? work : static_cast<DWORD>(closed);
}

template <typename T>
std::unique_ptr<T[]> Allocate(size_t count) {
    return std::unique_ptr<T[]>(new (std::nothrow) T[count]());
}

// The default (at most dwSize - 1 characters and a terminator), or zeros.
void PutDefault(char* buffer, DWORD size, const char* fallback) {
    if (size == 0) {
        return;
    }
    if (fallback) {
        const size_t length = std::min<size_t>(std::strlen(fallback), size - 1);
        std::memcpy(buffer, fallback, length);
        buffer[length] = '\0';
    } else {
        std::memset(buffer, 0, size);
    }
}

// The state of one tree copy, one level deep.
struct CopyContext {
    DWORD source_mode;
    CString source_key;
    DWORD dest_mode;
    CString dest_key;
    CZqGlobalConfig* config;
    int flag;
};

}  // namespace

CZqGlobalConfig::CZqGlobalConfig() : m_dwOSType(CZqGlobalOperatingSystem::GetType()) {}

CZqGlobalConfig::~CZqGlobalConfig() = default;

HKEY CZqGlobalConfig::MapModeToKey(DWORD dwMode) const {
    if (IsWin32s()) {
        return HKEY_CLASSES_ROOT;
    }
    const bool windows95 = m_dwOSType == CZqGlobalOperatingSystem::kTypeWindows95;
    switch (dwMode) {
        case 1:
            return HKEY_LOCAL_MACHINE;
        case 2:
            return HKEY_CURRENT_USER;
        case 3:
            return HKEY_USERS;
        case 4:
            return HKEY_PERFORMANCE_DATA;
        case 5:
            return windows95 ? HKEY_CURRENT_CONFIG : HKEY_CLASSES_ROOT;
        case 6:
            return windows95 ? HKEY_DYN_DATA : HKEY_CLASSES_ROOT;
        default:
            // An unknown mode falls back to the classes root, with no error.
            return HKEY_CLASSES_ROOT;
    }
}

LONG CZqGlobalConfig::OpenKey(DWORD dwMode, const char* lpszKey, Purpose purpose,
                              HKEY* phKey) const {
    HKEY root = MapModeToKey(dwMode);
    if (IsWin32s()) {
        return purpose == Purpose::kCreate ? RegCreateKeyA(root, lpszKey, phKey)
                                           : RegOpenKeyA(root, lpszKey, phKey);
    }
    REGSAM access = KEY_READ;
    switch (purpose) {
        case Purpose::kRead:
            access = KEY_READ;
            break;
        case Purpose::kEnumerate:
            access = KEY_QUERY_VALUE | KEY_ENUMERATE_SUB_KEYS;
            break;
        case Purpose::kCreate: {
            DWORD disposition = 0;
            char no_class[] = "";
            return RegCreateKeyExA(root, lpszKey, 0, no_class, REG_OPTION_NON_VOLATILE,
                                   KEY_ALL_ACCESS, nullptr, phKey, &disposition);
        }
        case Purpose::kDeleteValue:
            access = KEY_SET_VALUE | KEY_CREATE_SUB_KEY | READ_CONTROL;
            break;
        case Purpose::kDeleteTree:
            access = READ_CONTROL | KEY_SET_VALUE | KEY_CREATE_SUB_KEY | KEY_ENUMERATE_SUB_KEYS;
            break;
    }
    return RegOpenKeyExA(root, lpszKey, 0, access, phKey);
}

LONG CZqGlobalConfig::EnumKey(HKEY hKey, DWORD dwIndex, char* lpszName, DWORD cchName) const {
    if (IsWin32s()) {
        return RegEnumKeyA(hKey, dwIndex, lpszName, cchName);
    }
    DWORD size = cchName;
    return RegEnumKeyExA(hKey, dwIndex, lpszName, &size, nullptr, nullptr, nullptr, nullptr);
}

DWORD CZqGlobalConfig::GetValue(DWORD dwMode, const char* lpszKey, const char* lpszName,
                                DWORD& dwResult, DWORD dwDefault) {
    dwResult = dwDefault;
    HKEY key = nullptr;
    LONG rc = OpenKey(dwMode, lpszKey, Purpose::kRead, &key);
    if (rc != ERROR_SUCCESS) {
        return static_cast<DWORD>(rc);
    }
    DWORD work = 0;
    if (IsWin32s()) {
        char text[kTextBufferSize] = {};
        LONG size = sizeof text;
        work = static_cast<DWORD>(RegQueryValueA(key, lpszName, text, &size));
        if (work == 0) {
            text[sizeof text - 1] = '\0';
            dwResult = StringToDWord(text);
        }
    } else {
        DWORD type = 0;
        DWORD data = 0;
        DWORD size = sizeof data;
        work = static_cast<DWORD>(
            RegQueryValueExA(key, lpszName, nullptr, &type, reinterpret_cast<BYTE*>(&data), &size));
        if (work == 0) {
            if (type == REG_DWORD) {
                dwResult = data;
            } else {
                work = kWrongType;
            }
        }
    }
    return Finish(key, work);
}

DWORD CZqGlobalConfig::SetValue(DWORD dwMode, const char* lpszKey, const char* lpszName,
                                DWORD dwValue) {
    if (IsWin32s()) {
        return SetValue(dwMode, lpszKey, lpszName,
                        static_cast<const char*>(DWordToString(dwValue)));
    }
    HKEY key = nullptr;
    LONG rc = OpenKey(dwMode, lpszKey, Purpose::kCreate, &key);
    if (rc != ERROR_SUCCESS) {
        return static_cast<DWORD>(rc);
    }
    DWORD work = static_cast<DWORD>(RegSetValueExA(
        key, lpszName, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&dwValue), sizeof dwValue));
    return Finish(key, work);
}

DWORD CZqGlobalConfig::GetValue(DWORD dwMode, const char* lpszKey, const char* lpszName,
                                char* lpszBuffer, DWORD dwSize, const char* lpszDefault) {
    if (!lpszBuffer) {
        return ERROR_INVALID_PARAMETER;
    }
    PutDefault(lpszBuffer, dwSize, lpszDefault);
    HKEY key = nullptr;
    LONG rc = OpenKey(dwMode, lpszKey, Purpose::kRead, &key);
    if (rc != ERROR_SUCCESS) {
        return static_cast<DWORD>(rc);
    }
    DWORD work = 0;
    if (IsWin32s()) {
        LONG size = static_cast<LONG>(dwSize);
        work = static_cast<DWORD>(RegQueryValueA(key, lpszName, lpszBuffer, &size));
    } else {
        DWORD type = 0;
        DWORD size = dwSize;
        work = static_cast<DWORD>(RegQueryValueExA(key, lpszName, nullptr, &type,
                                                   reinterpret_cast<BYTE*>(lpszBuffer), &size));
        if (work == 0 && type != REG_SZ && type != REG_EXPAND_SZ) {
            PutDefault(lpszBuffer, dwSize, lpszDefault);
            work = kWrongType;
        }
    }
    return Finish(key, work);
}

DWORD CZqGlobalConfig::SetValue(DWORD dwMode, const char* lpszKey, const char* lpszName,
                                const char* lpszText) {
    if (!lpszText) {
        return ERROR_INVALID_PARAMETER;
    }
    HKEY key = nullptr;
    LONG rc = OpenKey(dwMode, lpszKey, Purpose::kCreate, &key);
    if (rc != ERROR_SUCCESS) {
        return static_cast<DWORD>(rc);
    }
    const DWORD length = static_cast<DWORD>(std::strlen(lpszText));
    DWORD work =
        IsWin32s()
            ? static_cast<DWORD>(RegSetValueA(key, lpszName, REG_SZ, lpszText, length))
            : static_cast<DWORD>(RegSetValueExA(
                  key, lpszName, 0, REG_SZ, reinterpret_cast<const BYTE*>(lpszText), length + 1));
    return Finish(key, work);
}

DWORD CZqGlobalConfig::GetAnyValueType(DWORD dwMode, const char* lpszKey, const char* lpszName,
                                       unsigned char* pBuffer, DWORD dwSize, DWORD& dwType,
                                       DWORD& dwLength) {
    if (!pBuffer) {
        return ERROR_INVALID_PARAMETER;
    }
    std::memset(pBuffer, 0, dwSize);
    dwType = 0;
    dwLength = 0;
    HKEY key = nullptr;
    LONG rc = OpenKey(dwMode, lpszKey, Purpose::kRead, &key);
    if (rc != ERROR_SUCCESS) {
        return static_cast<DWORD>(rc);
    }
    DWORD work = 0;
    if (IsWin32s()) {
        LONG size = static_cast<LONG>(dwSize);
        work = static_cast<DWORD>(
            RegQueryValueA(key, lpszName, reinterpret_cast<char*>(pBuffer), &size));
        if (work == 0) {
            dwType = REG_SZ;
            dwLength = static_cast<DWORD>(size);
        }
    } else {
        // The size is a copy: dwLength stays 0 on this path, as it always has.
        DWORD size = dwSize;
        work =
            static_cast<DWORD>(RegQueryValueExA(key, lpszName, nullptr, &dwType, pBuffer, &size));
    }
    return Finish(key, work);
}

DWORD CZqGlobalConfig::SetAnyValueType(DWORD dwMode, const char* lpszKey, const char* lpszName,
                                       unsigned char* pData, DWORD dwLength, DWORD dwType) {
    if (dwLength == 0) {
        return 0;
    }
    if (!pData) {
        return ERROR_INVALID_PARAMETER;
    }
    HKEY key = nullptr;
    LONG rc = OpenKey(dwMode, lpszKey, Purpose::kCreate, &key);
    if (rc != ERROR_SUCCESS) {
        return static_cast<DWORD>(rc);
    }
    DWORD work = 0;
    if (IsWin32s()) {
        // Only text exists there; a terminated copy keeps the read inside the data.
        std::string text(reinterpret_cast<const char*>(pData), dwLength);
        work = static_cast<DWORD>(RegSetValueA(key, lpszName, REG_SZ, text.c_str(), dwLength));
    } else {
        work = static_cast<DWORD>(RegSetValueExA(key, lpszName, 0, dwType, pData, dwLength));
    }
    return Finish(key, work);
}

DWORD CZqGlobalConfig::DeleteChildren(HKEY hKey) const {
    std::unique_ptr<char[]> name = Allocate<char>(kNameBufferSize);
    if (!name) {
        return kOutOfMemory;
    }
    // Always the first subkey: each pass removes it.
    for (;;) {
        LONG rc = EnumKey(hKey, 0, name.get(), kNameChars);
        if (rc != ERROR_SUCCESS) {
            return EndOfEnumeration(rc);
        }
        DWORD work = DeleteBelow(hKey, name.get());
        if (work == 0) {
            work = static_cast<DWORD>(RegDeleteKeyA(hKey, name.get()));
        }
        if (work != 0) {
            return work;
        }
    }
}

DWORD CZqGlobalConfig::DeleteBelow(HKEY hParent, const char* lpszName) const {
    if (!lpszName || !*lpszName) {
        return DeleteChildren(hParent);
    }
    HKEY key = nullptr;
    LONG rc = IsWin32s() ? RegOpenKeyA(hParent, lpszName, &key)
                         : RegOpenKeyExA(hParent, lpszName, 0,
                                         READ_CONTROL | KEY_SET_VALUE | KEY_CREATE_SUB_KEY |
                                             KEY_ENUMERATE_SUB_KEYS,
                                         &key);
    if (rc != ERROR_SUCCESS) {
        return static_cast<DWORD>(rc);
    }
    return Finish(key, DeleteChildren(key));
}

DWORD CZqGlobalConfig::DeleteEntry(DWORD dwMode, const char* lpszKey, const char* lpszName) {
    HKEY key = nullptr;
    LONG rc = OpenKey(dwMode, lpszKey, IsWin32s() ? Purpose::kRead : Purpose::kDeleteValue, &key);
    if (rc != ERROR_SUCCESS) {
        return static_cast<DWORD>(rc);
    }
    DWORD work = 0;
    if (IsWin32s()) {
        const char* name = lpszName ? lpszName : "";
        work = DeleteBelow(key, name);
        if (work == 0) {
            work = static_cast<DWORD>(RegDeleteKeyA(key, name));
        }
    } else {
        work = static_cast<DWORD>(RegDeleteValueA(key, lpszName));
    }
    return Finish(key, work);
}

DWORD CZqGlobalConfig::DeleteSection(DWORD dwMode, const char* lpszKey, const char* lpszSubKey) {
    HKEY key = nullptr;
    LONG rc = OpenKey(dwMode, lpszKey, IsWin32s() ? Purpose::kRead : Purpose::kDeleteTree, &key);
    if (rc != ERROR_SUCCESS) {
        return static_cast<DWORD>(rc);
    }
    // Without a subkey name the key itself is emptied and removed.
    const char* name = lpszSubKey ? lpszSubKey : "";
    DWORD work = DeleteBelow(key, name);
    if (work == 0) {
        work = static_cast<DWORD>(RegDeleteKeyA(key, name));
    }
    return Finish(key, work);
}

DWORD CZqGlobalConfig::EnumEntries(DWORD dwMode, const char* lpszKey,
                                   GBLENUMENTRIESPROC pfnCallback, void* pContext) {
    if (!pfnCallback) {
        return ERROR_INVALID_PARAMETER;
    }
    std::unique_ptr<char[]> name = Allocate<char>(kNameBufferSize);
    if (!name) {
        return kOutOfMemory;
    }
    HKEY key = nullptr;
    LONG rc = OpenKey(dwMode, lpszKey, Purpose::kEnumerate, &key);
    if (rc != ERROR_SUCCESS) {
        return static_cast<DWORD>(rc);
    }
    DWORD work = 0;
    for (DWORD index = 0;; ++index) {
        rc = EnumKey(key, index, name.get(), kNameChars);
        if (rc != ERROR_SUCCESS) {
            work = EndOfEnumeration(rc);
            break;
        }
        work = pfnCallback(pContext, name.get());
        if (work != 0) {
            break;
        }
    }
    return Finish(key, work);
}

DWORD CZqGlobalConfig::EnumValues(DWORD dwMode, const char* lpszKey, GBLENUMVALUESPROC pfnCallback,
                                  void* pContext) {
    if (!pfnCallback) {
        return ERROR_INVALID_PARAMETER;
    }
    std::unique_ptr<char[]> name = Allocate<char>(kNameBufferSize);
    std::unique_ptr<BYTE[]> data = Allocate<BYTE>(kDataBufferSize);
    if (!name || !data) {
        return kOutOfMemory;
    }
    HKEY key = nullptr;
    LONG rc = OpenKey(dwMode, lpszKey, Purpose::kEnumerate, &key);
    if (rc != ERROR_SUCCESS) {
        return static_cast<DWORD>(rc);
    }
    DWORD work = 0;
    for (DWORD index = 0;; ++index) {
        std::memset(name.get(), 0, kNameBufferSize);
        std::memset(data.get(), 0, kDataBufferSize);
        if (IsWin32s()) {
            rc = RegEnumKeyA(key, index, name.get(), kNameChars);
            if (rc == ERROR_SUCCESS) {
                LONG size = kDataBytes;
                rc = RegQueryValueA(key, name.get(), reinterpret_cast<char*>(data.get()), &size);
            }
            if (rc != ERROR_SUCCESS) {
                work = EndOfEnumeration(rc);
                break;
            }
            work = pfnCallback(pContext, name.get(), data.get(), REG_SZ);
        } else {
            DWORD name_size = kNameChars;
            DWORD data_size = kDataBytes;
            DWORD type = 0;
            rc = RegEnumValueA(key, index, name.get(), &name_size, nullptr, &type, data.get(),
                               &data_size);
            if (rc != ERROR_SUCCESS) {
                work = EndOfEnumeration(rc);
                break;
            }
            switch (type) {
                case REG_SZ:
                case REG_EXPAND_SZ:
                case REG_BINARY:
                case REG_MULTI_SZ:
                    work = pfnCallback(pContext, name.get(), data.get(), type);
                    break;
                case REG_DWORD: {
                    // Only the first byte, sign-extended, travels in place of the
                    // pointer: kept, since tree copies depend on it.
                    const DWORD low =
                        static_cast<DWORD>(static_cast<LONG>(static_cast<signed char>(data[0])));
                    work = pfnCallback(pContext, name.get(),
                                       reinterpret_cast<void*>(static_cast<DWORD_PTR>(low)),
                                       REG_DWORD);
                    break;
                }
                default:
                    break;  // big-endian numbers, links, REG_NONE and the rest
            }
        }
        if (work != 0) {
            break;
        }
    }
    return Finish(key, work);
}

DWORD CZqGlobalConfig::DoesEntryExist(DWORD dwMode, const char* lpszKey, const char* lpszName,
                                      BOOL& bExists) {
    bExists = FALSE;
    const char* wanted = lpszName ? lpszName : "";
    std::unique_ptr<char[]> name = Allocate<char>(kNameBufferSize);
    std::unique_ptr<BYTE[]> data = Allocate<BYTE>(kDataBufferSize);
    if (!name || !data) {
        return kOutOfMemory;
    }
    HKEY key = nullptr;
    LONG rc = OpenKey(dwMode, lpszKey, Purpose::kEnumerate, &key);
    if (rc != ERROR_SUCCESS) {
        return static_cast<DWORD>(rc);
    }
    DWORD work = 0;
    for (DWORD index = 0;; ++index) {
        if (IsWin32s()) {
            rc = EnumKey(key, index, name.get(), kNameChars);
        } else {
            DWORD name_size = kNameChars;
            DWORD data_size = kDataBytes;
            rc = RegEnumValueA(key, index, name.get(), &name_size, nullptr, nullptr, data.get(),
                               &data_size);
        }
        if (rc != ERROR_SUCCESS) {
            work = EndOfEnumeration(rc);
            break;
        }
        if (lstrcmpiA(name.get(), wanted) == 0) {
            bExists = TRUE;
            break;
        }
    }
    return Finish(key, work);
}

DWORD CZqGlobalConfig::DoesSubkeyExist(DWORD dwMode, const char* lpszKey, const char* lpszSubKey,
                                       BOOL& bExists) {
    if (IsWin32s()) {
        // Subkeys and values are the same thing there.
        return DoesEntryExist(dwMode, lpszKey, lpszSubKey, bExists);
    }
    bExists = FALSE;
    const char* wanted = lpszSubKey ? lpszSubKey : "";
    std::unique_ptr<char[]> name = Allocate<char>(kDataBytes);
    if (!name) {
        return kOutOfMemory;
    }
    HKEY key = nullptr;
    LONG rc = OpenKey(dwMode, lpszKey, Purpose::kEnumerate, &key);
    if (rc != ERROR_SUCCESS) {
        return static_cast<DWORD>(rc);
    }
    DWORD work = 0;
    for (DWORD index = 0;; ++index) {
        rc = EnumKey(key, index, name.get(), kDataBytes);
        if (rc != ERROR_SUCCESS) {
            work = EndOfEnumeration(rc);
            break;
        }
        if (lstrcmpiA(name.get(), wanted) == 0) {
            bExists = TRUE;
            break;
        }
    }
    return Finish(key, work);
}

DWORD CZqGlobalConfig::FindFirstSubKey(DWORD dwMode, const char* lpszKey, CString& csName,
                                       BOOL& bFound) {
    bFound = FALSE;
    std::unique_ptr<char[]> name = Allocate<char>(kNameBufferSize);
    if (!name) {
        return kOutOfMemory;
    }
    HKEY key = nullptr;
    LONG rc = OpenKey(dwMode, lpszKey, Purpose::kEnumerate, &key);
    if (rc != ERROR_SUCCESS) {
        return static_cast<DWORD>(rc);
    }
    rc = EnumKey(key, 0, name.get(), kNameChars);
    if (rc == ERROR_SUCCESS) {
        csName = name.get();
        bFound = TRUE;
    }
    return Finish(key, EndOfEnumeration(rc));
}

DWORD CZqGlobalConfig::GetValueSize(DWORD dwMode, const char* lpszKey, const char* lpszName,
                                    DWORD& dwSize) {
    dwSize = 0;
    if (IsWin32s()) {
        return 0;
    }
    HKEY key = nullptr;
    LONG rc = OpenKey(dwMode, lpszKey, Purpose::kRead, &key);
    if (rc != ERROR_SUCCESS) {
        return static_cast<DWORD>(rc);
    }
    DWORD work =
        static_cast<DWORD>(RegQueryValueExA(key, lpszName, nullptr, nullptr, nullptr, &dwSize));
    return Finish(key, work);
}

DWORD CZqGlobalConfig::CreateKey(DWORD dwMode, const char* lpszKey) {
    if (!lpszKey || !*lpszKey) {
        return 0;
    }
    HKEY key = nullptr;
    LONG rc = RegCreateKeyA(MapModeToKey(dwMode), lpszKey, &key);
    if (rc != ERROR_SUCCESS) {
        return static_cast<DWORD>(rc);
    }
    return Finish(key, 0);
}

DWORD WINAPI CZqGlobalConfig::GblEnumCopyRegTreeEntriesProc(void* pContext,
                                                            const char* lpszSubKey) {
    const auto* parent = static_cast<const CopyContext*>(pContext);
    std::unique_ptr<CopyContext> child(new (std::nothrow) CopyContext(*parent));
    if (!child) {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
    child->source_key += "\\";
    child->source_key += lpszSubKey;
    child->dest_key += "\\";
    child->dest_key += lpszSubKey;
    CZqGlobalConfig& config = *child->config;
    DWORD rc = config.CreateKey(child->dest_mode, child->dest_key);
    if (rc == 0) {
        rc = config.EnumEntries(child->source_mode, child->source_key,
                                GblEnumCopyRegTreeEntriesProc, child.get());
    }
    if (rc == 0) {
        rc = config.EnumValues(child->source_mode, child->source_key, GblEnumCopyRegTreeValuesProc,
                               child.get());
    }
    return rc;
}

DWORD WINAPI CZqGlobalConfig::GblEnumCopyRegTreeValuesProc(void* pContext,
                                                           const char* lpszValueName, void* pData,
                                                           DWORD dwType) {
    auto* context = static_cast<CopyContext*>(pContext);
    CZqGlobalConfig& config = *context->config;
    switch (dwType) {
        case REG_SZ:
            return config.SetValue(context->dest_mode, context->dest_key, lpszValueName,
                                   static_cast<const char*>(pData));
        case REG_DWORD:
            // The number EnumValues passed: its low byte, sign-extended.
            return config.SetValue(context->dest_mode, context->dest_key, lpszValueName,
                                   static_cast<DWORD>(reinterpret_cast<DWORD_PTR>(pData)));
        default:
            return 0;
    }
}

DWORD CZqGlobalConfig::CopyRegTree(DWORD dwDestMode, const char* lpszDestKey, DWORD dwSourceMode,
                                   const char* lpszSourceKey, int nFlag) {
    std::unique_ptr<CopyContext> context(new (std::nothrow) CopyContext{
        dwSourceMode, CString(lpszSourceKey), dwDestMode, CString(lpszDestKey), this, 0});
    if (!context) {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
    DWORD rc =
        EnumEntries(dwSourceMode, lpszSourceKey, GblEnumCopyRegTreeEntriesProc, context.get());
    if (rc == 0) {
        rc = EnumValues(dwSourceMode, lpszSourceKey, GblEnumCopyRegTreeValuesProc, context.get());
    }
    context->flag = nFlag;  // kept with the copy; it changes nothing
    return rc;
}

DWORD CZqGlobalConfig::MoveRegTree(DWORD dwDestMode, const char* lpszDestKey, DWORD dwSourceMode,
                                   const char* lpszSourceKey, int nFlag) {
    DWORD rc = CopyRegTree(dwDestMode, lpszDestKey, dwSourceMode, lpszSourceKey, nFlag);
    if (rc == 0) {
        rc = DeleteSection(dwSourceMode, lpszSourceKey, nullptr);
    }
    return rc;
}

CString CZqGlobalConfig::DWordToString(DWORD dwValue) {
    return CString(std::to_string(dwValue).c_str());
}

DWORD CZqGlobalConfig::StringToDWord(const char* lpszText) {
    // strtoul of a 32-bit C library, whatever the width of long here.
    if (!lpszText) {
        return 0;
    }
    const char* p = lpszText;
    while (*p == ' ' || (*p >= '\t' && *p <= '\r')) {
        ++p;
    }
    bool negative = false;
    if (*p == '+' || *p == '-') {
        negative = *p == '-';
        ++p;
    }
    uint64_t value = 0;
    bool overflow = false;
    for (; *p >= '0' && *p <= '9'; ++p) {
        value = value * 10 + static_cast<uint64_t>(*p - '0');
        if (value > 0xFFFFFFFFu) {
            overflow = true;
            value = 0xFFFFFFFFu;
        }
    }
    if (overflow) {
        return 0xFFFFFFFFu;
    }
    const DWORD result = static_cast<DWORD>(value);
    return negative ? 0u - result : result;
}
