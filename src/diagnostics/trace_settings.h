// CZqTraceSettings: the stored switches the trace options dialog edits,
// and the list of trace files it shows.
//
// "FaxTrace" (DWORD, under the running program's current-user key) turns
// tracing on: 0 is off, 1 or more is on with that number as the level.
// "DisableTAPIAutoDetect" (DWORD, under "Software\Zq,Inc.\Devices") is a
// switch of the telephony part kept on the same page. Both live below the
// local-machine root (mode 1 of CZqGlobalConfig). Without a readable
// version block of the running program nothing is read or written.
//
// An object belongs to one thread at a time.
#pragma once

#include "framework/core/arrays.h"
#include "framework/core/cstring.h"
#include "platform/win32.h"

class CZqTraceSettings {
public:
    static constexpr DWORD kAccessMode = 1;  // local machine
    static constexpr const char* kTraceValueName = "FaxTrace";
    static constexpr const char* kDevicesKey = "Software\\Zq,Inc.\\Devices";
    static constexpr const char* kDisableAutoDetectValueName = "DisableTAPIAutoDetect";

    // Level 1, tracing off, automatic detection not disabled.
    CZqTraceSettings();
    virtual ~CZqTraceSettings();

    // Reads both values. A stored non-zero "FaxTrace" turns tracing on with
    // that level; a stored 0 leaves level 1 with tracing off; a missing or
    // unreadable value leaves both members as they are, and so for
    // "DisableTAPIAutoDetect". FALSE (members untouched) when the version
    // block cannot be read.
    BOOL Read();

    // Writes "FaxTrace" = GetStoredLevel() and "DisableTAPIAutoDetect" =
    // m_bDisableTAPIAutoDetect; m_dwLevel takes the stored level first.
    // FALSE (nothing written, members untouched) when the version block
    // cannot be read; registry errors are not reported.
    BOOL Write();

    // What "FaxTrace" should hold: 0 when tracing is off, 1 for a level of
    // 0 or 1, else the level.
    DWORD GetStoredLevel() const;

    // Empties `entries`, then adds every "*.TRC" file of the folder the trace
    // files go to (the executable's), in the order the folder listing gives
    // them, as "<full path in lower case> (MM/dd/yy hh:mm)" of the file's
    // last write in local time (24-hour clock).
    static void ListTraceFiles(CStringArray& entries);
    // The file path of a list entry: the text before its first '(' with
    // blanks trimmed at both ends.
    static CString PathOfListEntry(const CString& csEntry);

    DWORD m_dwLevel;
    BOOL m_bTracing;
    BOOL m_bDisableTAPIAutoDetect;
};
