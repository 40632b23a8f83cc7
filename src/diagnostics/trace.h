// CZqTrace: the plain-text trace file an application of the suite writes
// while the user has tracing switched on.
//
// A trace is opened under a short name and lives beside the executable as
// "Zq" + the name's letters and digits + ".TRC" (the name "Tel Line 2"
// gives ZqTelLine2.TRC; only what stands before the name's first '.'
// counts). Opening writes a header (date and time, the executable's file
// version and flags, memory, free disk space, operating system), closing a
// footer. Text collects in an 8,192-byte buffer and reaches the file only
// when a piece would not fit, on Flush, on Close, or after every write at
// level 10 or more. An appending open starts the file afresh once it has
// reached one megabyte. Lines end in "\r\n", supplied by the callers.
//
// Nothing is reported: output to a closed or paused trace is dropped, and
// writes, seeks and closes of the file are not checked. An object belongs
// to one thread at a time.
//
// Copies refer to the same open trace (its buffer, fill and file): what any
// of them writes lands in the one buffer, and when one of them closes the
// trace (destruction included) the others find it closed. The switches (time stamps, paused,
// level) belong to each object.
//
// Time stamps count milliseconds from Open with GetTickCount unless
// SetTickSource supplies another clock (tests use that to stand still or
// jump a day ahead).
#pragma once

#include <cstdarg>
#include <memory>
#include <utility>

#include "framework/core/cstring.h"
#include "platform/win32.h"

// What the header states about the program and the machine, gathered by
// Open at the moment the trace starts.
struct ZqTraceHeaderFacts {
    CString csDate;  // "MM/dd/yy"
    CString csTime;  // "hh:mm:ss tt"
    // The executable's version block could be read; without it the header
    // holds only the "Started" line between its two rows of asterisks.
    BOOL bVersionBlock = FALSE;
    DWORD dwFileVersionMS = 0;
    DWORD dwFileVersionLS = 0;
    BOOL bDebug = FALSE;
    BOOL bPreRelease = FALSE;
    BOOL bPatched = FALSE;
    DWORD dwTotalPhys = 0;      // bytes of physical memory
    BOOL bDiskFree = FALSE;     // the free-space query succeeded
    _diskfree_t DiskFree = {};  // of the current drive
    DWORD dwVersion = 0;        // GetVersion()
};

class CZqTrace {
public:
    static constexpr DWORD kBufferSize = 8192;
    // An appending open at or beyond this size empties the file first.
    static constexpr DWORD kRollOverSize = 0x100000;
    // From this level on every write is flushed at once.
    static constexpr WORD kFlushEveryWriteLevel = 10;
    // Formatted text of one Output call is cut to this many characters.
    static constexpr int kMaxPieceLength = 511;

    // Milliseconds of some clock; only differences count.
    typedef DWORD (*TICKSOURCE)(void* pContext);

    // Closed, time stamps off, not paused, level 1.
    CZqTrace();
    CZqTrace(const CZqTrace& other) = default;
    CZqTrace& operator=(const CZqTrace& other) = default;
    // Calls Close.
    virtual ~CZqTrace();

    // Closes any open trace (with its footer), then opens the trace file of
    // csName beside the executable and writes the header. Without bAppend
    // the file is created or emptied; with it, an existing file is appended
    // to unless it holds 1,048,576 bytes or more (or its end cannot be
    // found), in which case it is emptied too. FALSE, with the object
    // closed, when the buffer cannot be allocated or the file cannot be
    // opened or created (OpenFile's limit: 127 characters of full path).
    // The path member takes the new path either way, the title only on
    // success.
    BOOL Open(const CString& csName, BOOL bAppend);

    // Writes the footer (not while paused), flushes, closes the file and
    // clears the paused flag; nothing when no trace is open. The title and
    // path stay as they are.
    void Close();

    // Formats one piece with the Windows printf subset (wvsprintfA: 'l' is
    // 32 bits, no floating point) and appends it, after the elapsed-time
    // prefix when time stamps are on. Text beyond kMaxPieceLength
    // characters is cut.
    void Output(const char* lpszFormat, ...);

    // Appends "Block Print: <n> Bytes", the bytes as a dump of 16 per line
    // (0x20..0x7F as the character and two blanks, others as two hex digits
    // and a blank) and "End Block Print". Only the first and last line
    // carry a time stamp. NULL data dumps as a block of 0 bytes.
    void OutputBlock(void* pData, DWORD dwLength);

    // Writes the buffered bytes to the file; a failed write drops them.
    void Flush();

    void Pause() { m_bPaused = TRUE; }
    void Resume() { m_bPaused = FALSE; }
    void EnableTimeStamp(BOOL bEnable) { m_bTimeStamp = bEnable; }
    void SetLevel(WORD wLevel) { m_wLevel = wLevel; }
    WORD GetLevel() { return m_wLevel; }

    // The file's full path while a trace is open, otherwise "".
    CString GetFileName();

    // Additions beyond the exported interface, for tools and tests.
    BOOL IsOpen() const;
    BOOL IsPaused() const { return m_bPaused; }
    BOOL IsTimeStampEnabled() const { return m_bTimeStamp; }
    // The file name without folder, kept after Close (empty before the
    // first Open).
    const CString& GetFileTitle() const { return m_csFileTitle; }
    // "Zq" + the letters and digits of csName before its first '.' +
    // ".TRC", case kept.
    static CString MakeFileTitle(const CString& csName);
    // The folder of the running executable, where trace files live, without
    // a trailing backslash (except for a drive's root).
    static CString GetTraceFolder();
    // Replaces the clock of the time stamps (NULL: GetTickCount). Takes
    // effect at the next Open; copies share the clock.
    void SetTickSource(TICKSOURCE pfnSource, void* pContext);

protected:
    // "(hh:mm:ss.mmm) " for the time since Open; hours do not wrap at 24.
    CString FormatRelativeTime();

    // The header lines after the first row of asterisks, for `facts`.
    void WriteHeader(const ZqTraceHeaderFacts& facts);
    // Asks the system for what the header states.
    static ZqTraceHeaderFacts GatherHeaderFacts();

private:
    // What copies share: the open trace.
    struct Session {
        char* pBuffer = nullptr;  // kBufferSize bytes; present while open
        DWORD dwFill = 0;
        HFILE hFile = HFILE_ERROR;
        ~Session();
    };

    DWORD Ticks() const;
    // Writes the elapsed-time prefix into `text` (at least 32 bytes) and
    // returns its length.
    int FormatStamp(char* text) const;
    void OutputV(const char* lpszFormat, va_list args);
    // Appends, flushing first when the piece would not fit.
    void Append(const char* pData, DWORD dwLength);
    static void GetDateAndTime(CString& csDate, CString& csTime);

    BOOL m_bTimeStamp = FALSE;
    BOOL m_bPaused = FALSE;
    std::shared_ptr<Session> m_pSession;
    DWORD m_dwStartTick = 0;
    CString m_csFileTitle;
    CString m_csFilePath;
    WORD m_wLevel = 1;
    TICKSOURCE m_pfnTickSource = nullptr;
    void* m_pTickContext = nullptr;
};
