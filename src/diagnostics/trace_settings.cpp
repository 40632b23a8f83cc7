#include "diagnostics/trace_settings.h"

#include "diagnostics/trace.h"
#include "diagnostics/version_resource.h"
#include "frame/global_file_name_functions.h"
#include "settings/global_config.h"

namespace {

// The value read when nothing is stored; never written.
constexpr DWORD kMissing = 0xFFFFFFFF;

}  // namespace

CZqTraceSettings::CZqTraceSettings()
    : m_dwLevel(1), m_bTracing(FALSE), m_bDisableTAPIAutoDetect(FALSE) {}

CZqTraceSettings::~CZqTraceSettings() = default;

BOOL CZqTraceSettings::Read() {
    CZqVersionResource version;
    if (!version.ExtractVersionInfo()) {
        return FALSE;
    }
    CZqGlobalConfig config;
    DWORD value = 0;
    if (config.GetValue(kAccessMode, version.GetCurrentUserKey(), kTraceValueName, value,
                        kMissing) == 0) {
        if (value != 0) {
            m_dwLevel = value;
            m_bTracing = TRUE;
        } else {
            m_bTracing = FALSE;
        }
    }
    if (config.GetValue(kAccessMode, kDevicesKey, kDisableAutoDetectValueName, value, kMissing) ==
        0) {
        m_bDisableTAPIAutoDetect = static_cast<BOOL>(value);
    }
    return TRUE;
}

DWORD CZqTraceSettings::GetStoredLevel() const {
    if (!m_bTracing) {
        return 0;
    }
    return m_dwLevel <= 1 ? 1 : m_dwLevel;
}

BOOL CZqTraceSettings::Write() {
    CZqVersionResource version;
    if (!version.ExtractVersionInfo()) {
        return FALSE;
    }
    m_dwLevel = GetStoredLevel();
    CZqGlobalConfig config;
    config.SetValue(kAccessMode, version.GetCurrentUserKey(), kTraceValueName, m_dwLevel);
    config.SetValue(kAccessMode, kDevicesKey, kDisableAutoDetectValueName,
                    static_cast<DWORD>(m_bDisableTAPIAutoDetect));
    return TRUE;
}

void CZqTraceSettings::ListTraceFiles(CStringArray& entries) {
    entries.RemoveAll();
    const CString folder = CZqTrace::GetTraceFolder();
    CString pattern;
    CZqGlobalFileNameFunctions::MakePath(folder, "*.TRC", pattern);
    WIN32_FIND_DATAA found;
    HANDLE find = FindFirstFileA(pattern, &found);
    if (find == INVALID_HANDLE_VALUE) {
        return;
    }
    do {
        CString path;
        CZqGlobalFileNameFunctions::MakePath(folder, found.cFileName, path);
        path.MakeLower();
        FILETIME local = {};
        SYSTEMTIME time = {};
        FileTimeToLocalFileTime(&found.ftLastWriteTime, &local);
        FileTimeToSystemTime(&local, &time);
        CString entry;
        entry.Format("%s (%02d/%02d/%02d %02d:%02d)", static_cast<const char*>(path), time.wMonth,
                     time.wDay, time.wYear % 100, time.wHour, time.wMinute);
        entries.Add(entry);
    } while (FindNextFileA(find, &found));
    FindClose(find);
}

CString CZqTraceSettings::PathOfListEntry(const CString& csEntry) {
    CString path = csEntry;
    const int bracket = path.Find('(');
    if (bracket >= 0) {
        path = path.Left(bracket);
    }
    path.TrimLeft(' ');
    path.TrimRight(' ');
    return path;
}
