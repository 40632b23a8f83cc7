#include "diagnostics/trace.h"

#include <cstring>
#include <new>

#include "diagnostics/version_resource.h"
#include "frame/global_file_name_functions.h"

namespace {

constexpr char kAsterisks[] = "****************************************\r\n";
constexpr char kTraceExtension[] = ".TRC";
constexpr char kDatePicture[] = "MM/dd/yy";
constexpr char kTimePicture[] = "hh:mm:ss tt";
constexpr int kDateTimeBufferSize = 64;

// OpenFile styles: read-write, others may read; with OF_CREATE the file is
// created or emptied.
constexpr UINT kOpenExisting = OF_READWRITE | OF_SHARE_DENY_WRITE;
constexpr UINT kCreate = OF_READWRITE | OF_SHARE_DENY_WRITE | OF_CREATE;

constexpr DWORD kMillisPerHour = 3600000;
constexpr DWORD kMillisPerMinute = 60000;
constexpr DWORD kMillisPerSecond = 1000;

constexpr int kDumpBytesPerLine = 16;
constexpr char kHexDigits[] = "0123456789ABCDEF";

bool IsAsciiLetterOrDigit(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
}

// Saves the time-stamp switch, turns it off, and puts it back.
class TimeStampsOff {
public:
    explicit TimeStampsOff(BOOL& bSwitch) : switch_(bSwitch), saved_(bSwitch) { switch_ = FALSE; }
    ~TimeStampsOff() { switch_ = saved_; }
    TimeStampsOff(const TimeStampsOff&) = delete;
    TimeStampsOff& operator=(const TimeStampsOff&) = delete;

private:
    BOOL& switch_;
    BOOL saved_;
};

}  // namespace

CZqTrace::Session::~Session() {
    // Reached only when the last copy lets go of an open trace without
    // closing it (assignment over an open object): the buffered text is
    // written and the file closed, without a footer.
    if (pBuffer && dwFill && hFile != HFILE_ERROR) {
        _lwrite(hFile, pBuffer, dwFill);
    }
    if (hFile != HFILE_ERROR) {
        _lclose(hFile);
    }
    delete[] pBuffer;
}

CZqTrace::CZqTrace() = default;

CZqTrace::~CZqTrace() {
    Close();
}

BOOL CZqTrace::IsOpen() const {
    return m_pSession && m_pSession->pBuffer;
}

CString CZqTrace::MakeFileTitle(const CString& csName) {
    CString title = "Zq";
    const int length = csName.GetLength();
    const char* name = csName;
    for (int i = 0; i < length && name[i] != '.'; ++i) {
        if (IsAsciiLetterOrDigit(name[i])) {
            title += name[i];
        }
    }
    title += kTraceExtension;
    return title;
}

CString CZqTrace::GetTraceFolder() {
    char module[MAX_PATH + 1] = {};
    GetModuleFileNameA(nullptr, module, MAX_PATH);
    CString folder;
    CZqGlobalFileNameFunctions::ExtractPathFromPath(module, folder);
    return folder;
}

void CZqTrace::SetTickSource(TICKSOURCE pfnSource, void* pContext) {
    m_pfnTickSource = pfnSource;
    m_pTickContext = pContext;
}

DWORD CZqTrace::Ticks() const {
    return m_pfnTickSource ? m_pfnTickSource(m_pTickContext) : GetTickCount();
}

void CZqTrace::GetDateAndTime(CString& csDate, CString& csTime) {
    char date[kDateTimeBufferSize] = {};
    char time[kDateTimeBufferSize] = {};
    GetDateFormatA(LOCALE_USER_DEFAULT, 0, nullptr, kDatePicture, date, kDateTimeBufferSize);
    GetTimeFormatA(LOCALE_USER_DEFAULT, 0, nullptr, kTimePicture, time, kDateTimeBufferSize);
    csDate = date;
    csTime = time;
}

BOOL CZqTrace::Open(const CString& csName, BOOL bAppend) {
    Close();

    CString title = MakeFileTitle(csName);
    auto session = std::make_shared<Session>();
    session->pBuffer = new (std::nothrow) char[kBufferSize];
    if (!session->pBuffer) {
        return FALSE;
    }
    session->dwFill = 0;
    CZqGlobalFileNameFunctions::MakePath(GetTraceFolder(), title, m_csFilePath);

    OFSTRUCT of = {};
    HFILE file = HFILE_ERROR;
    if (!bAppend) {
        file = OpenFile(m_csFilePath, &of, kCreate);
    } else {
        file = OpenFile(m_csFilePath, &of, kOpenExisting);
        if (file == HFILE_ERROR) {
            file = OpenFile(m_csFilePath, &of, kCreate);
        } else {
            // Roll-over at one megabyte; an end that cannot be found (-1)
            // counts as beyond it, so nothing is written over the start.
            const DWORD end = static_cast<DWORD>(_llseek(file, 0, FILE_END));
            if (end >= kRollOverSize) {
                _lclose(file);
                file = OpenFile(m_csFilePath, &of, kCreate);
            }
        }
    }
    if (file == HFILE_ERROR) {
        return FALSE;  // the session frees the buffer
    }
    session->hFile = file;
    m_pSession = std::move(session);
    m_csFileTitle = title;
    m_dwStartTick = Ticks();

    ZqTraceHeaderFacts facts = GatherHeaderFacts();
    TimeStampsOff plain(m_bTimeStamp);
    Output(kAsterisks);
    WriteHeader(facts);
    return TRUE;
}

ZqTraceHeaderFacts CZqTrace::GatherHeaderFacts() {
    ZqTraceHeaderFacts facts;
    GetDateAndTime(facts.csDate, facts.csTime);
    CZqVersionResource version;
    facts.bVersionBlock = version.ExtractVersionInfo();
    if (facts.bVersionBlock) {
        version.GetFileVersionMajorMinor(facts.dwFileVersionMS, facts.dwFileVersionLS);
        facts.bDebug = version.IsModuleDebug();
        facts.bPreRelease = version.IsModulePrerelease();
        facts.bPatched = version.IsModulePatched();
        MEMORYSTATUS memory = {};
        memory.dwLength = sizeof memory;
        GlobalMemoryStatus(&memory);
        // A 32-bit system reports at most 4 GB.
        facts.dwTotalPhys =
            memory.dwTotalPhys > 0xFFFFFFFFu ? 0xFFFFFFFFu : static_cast<DWORD>(memory.dwTotalPhys);
        facts.bDiskFree = _getdiskfree(static_cast<unsigned>(_getdrive()), &facts.DiskFree) == 0;
        facts.dwVersion = GetVersion();
    }
    return facts;
}

void CZqTrace::WriteHeader(const ZqTraceHeaderFacts& facts) {
    Output("%s - Started %s %s\r\n", static_cast<const char*>(m_csFileTitle),
           static_cast<const char*>(facts.csDate), static_cast<const char*>(facts.csTime));
    // Memory, disk and system are stated only together with the version,
    // as the header always grouped them.
    if (facts.bVersionBlock) {
        Output("\r\n");
        Output("Version: %d.%d.%d.%d", HIWORD(facts.dwFileVersionMS), LOWORD(facts.dwFileVersionMS),
               HIWORD(facts.dwFileVersionLS), LOWORD(facts.dwFileVersionLS));
        CString flags;
        for (auto [set, name] :
             {std::pair{facts.bDebug, "Debug"}, std::pair{facts.bPreRelease, "PreRelease"},
              std::pair{facts.bPatched, "Patched"}}) {
            if (set) {
                if (!flags.IsEmpty()) {
                    flags += ", ";
                }
                flags += name;
            }
        }
        if (!flags.IsEmpty()) {
            Output(" (%s)\r\n", static_cast<const char*>(flags));
        } else {
            Output("\r\n");
        }
        // One megabyte more than the machine has: kept as the header always
        // showed it (64 MB reads 65MB).
        Output("Physical Memory: %ldMB\r\n", (facts.dwTotalPhys >> 20) + 1);
        if (facts.bDiskFree) {
            // 32-bit product: wraps above 4 GB, as the header always did.
            const DWORD bytes = static_cast<DWORD>(facts.DiskFree.avail_clusters) *
                                facts.DiskFree.sectors_per_cluster *
                                facts.DiskFree.bytes_per_sector;
            Output("Free Disk Space: %ldKB\r\n", bytes >> 10);
        }
        Output("Operating System: ");
        const DWORD major = LOBYTE(LOWORD(facts.dwVersion));
        const DWORD minor = HIBYTE(LOWORD(facts.dwVersion));
        const DWORD build = HIWORD(facts.dwVersion);
        if (!(facts.dwVersion & 0x80000000u)) {
            Output("Windows NT v%ld.%ld Build %ld\r\n", major, minor, build);
        } else if (major >= 4) {
            Output("Windows 95 v%ld.%ld\r\n", major, minor);
        } else {
            Output("Windows v%ld.%ld Build %ld\r\n", major, minor, build & 0x7FFFu);
        }
    }
    Output(kAsterisks);
}

void CZqTrace::Close() {
    if (!IsOpen()) {
        return;
    }
    CString date, time;
    GetDateAndTime(date, time);
    {
        TimeStampsOff plain(m_bTimeStamp);
        Output(kAsterisks);
        Output("%s - Stopped %s %s\r\n", static_cast<const char*>(m_csFileTitle),
               static_cast<const char*>(date), static_cast<const char*>(time));
        Output(kAsterisks);
    }
    Flush();
    Session& session = *m_pSession;
    _lclose(session.hFile);
    session.hFile = HFILE_ERROR;
    delete[] session.pBuffer;
    session.pBuffer = nullptr;
    session.dwFill = 0;
    m_pSession.reset();
    m_bPaused = FALSE;
}

void CZqTrace::Output(const char* lpszFormat, ...) {
    if (!IsOpen() || m_bPaused) {
        return;
    }
    va_list args;
    va_start(args, lpszFormat);
    OutputV(lpszFormat, args);
    va_end(args);
}

void CZqTrace::OutputV(const char* lpszFormat, va_list args) {
    if (m_bTimeStamp) {
        char prefix[32];
        const int length = FormatStamp(prefix);
        Append(prefix, static_cast<DWORD>(length));
    }
    // wvsprintfA writes at most 1,023 characters and a terminator.
    char text[1024];
    int length = lpszFormat ? wvsprintfA(text, lpszFormat, args) : 0;
    if (length > kMaxPieceLength) {
        length = kMaxPieceLength;
    }
    if (length > 0) {
        Append(text, static_cast<DWORD>(length));
    }
    if (m_wLevel >= kFlushEveryWriteLevel) {
        Flush();
    }
}

void CZqTrace::Append(const char* pData, DWORD dwLength) {
    Session& session = *m_pSession;
    // A piece that brings the fill to exactly kBufferSize still goes in.
    if (session.dwFill + dwLength > kBufferSize) {
        Flush();
    }
    if (dwLength > kBufferSize) {
        dwLength = kBufferSize;  // pieces are far smaller; never overrun
    }
    std::memcpy(session.pBuffer + session.dwFill, pData, dwLength);
    session.dwFill += dwLength;
}

void CZqTrace::OutputBlock(void* pData, DWORD dwLength) {
    if (!IsOpen() || m_bPaused) {
        return;
    }
    if (!pData) {
        dwLength = 0;
    }
    Output("Block Print: %lu Bytes\r\n", dwLength);
    {
        TimeStampsOff plain(m_bTimeStamp);
        const auto* bytes = static_cast<const unsigned char*>(pData);
        for (DWORD i = 0; i < dwLength; ++i) {
            const unsigned char byte = bytes[i];
            char piece[3];
            // 0x7F counts as printable: the dump always showed it as itself.
            if (byte >= 0x20 && byte <= 0x7F) {
                piece[0] = static_cast<char>(byte);
                piece[1] = ' ';
                piece[2] = ' ';
            } else {
                piece[0] = kHexDigits[byte >> 4];
                piece[1] = kHexDigits[byte & 0xF];
                piece[2] = ' ';
            }
            Append(piece, sizeof piece);
            if ((i + 1) % kDumpBytesPerLine == 0) {
                Append("\r\n", 2);
            }
        }
        if (dwLength % kDumpBytesPerLine != 0) {
            Append("\r\n", 2);
        }
    }
    Output("End Block Print\r\n");
    if (m_wLevel >= kFlushEveryWriteLevel) {
        Flush();
    }
}

void CZqTrace::Flush() {
    if (!m_pSession || !m_pSession->pBuffer || m_pSession->dwFill == 0) {
        return;
    }
    Session& session = *m_pSession;
    _lwrite(session.hFile, session.pBuffer, session.dwFill);
    session.dwFill = 0;
}

CString CZqTrace::GetFileName() {
    return IsOpen() ? m_csFilePath : CString();
}

int CZqTrace::FormatStamp(char* text) const {
    const DWORD elapsed = Ticks() - m_dwStartTick;
    const DWORD hours = elapsed / kMillisPerHour;
    const DWORD rest = elapsed - hours * kMillisPerHour;
    const DWORD minutes = rest / kMillisPerMinute;
    const DWORD seconds = (rest % kMillisPerMinute) / kMillisPerSecond;
    const DWORD millis = (rest % kMillisPerMinute) % kMillisPerSecond;
    return wsprintfA(text, "(%02lu:%02lu:%02lu.%03lu) ", hours, minutes, seconds, millis);
}

CString CZqTrace::FormatRelativeTime() {
    char text[32];
    FormatStamp(text);
    return CString(text);
}
