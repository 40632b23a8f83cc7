// CFile: unbuffered binary file access over the platform's file handles.
//
// Open reports failure as FALSE (and, when given a CFileException, fills
// it in); it never throws. The constructor that takes a name throws a
// CFileException* when the file cannot be opened. Read, Write, Seek,
// GetPosition, GetLength, SetLength, Flush, Close, Rename and Remove throw a
// CFileException* (heap object; the catcher calls Delete()) when the
// platform fails, with the platform error in m_lOsError. Abort and the
// destructor never throw.
//
// Positions and lengths are 32-bit, as in the classic interface.
// A CFile object is not shared between threads without outside locking.
#pragma once

#include "framework/core/cstring.h"
#include "framework/core/ctime.h"
#include "framework/core/exceptions.h"
#include "framework/core/object.h"
#include "platform/win32.h"

struct CFileStatus {
    CTime m_ctime;     // creation
    CTime m_mtime;     // last write
    CTime m_atime;     // last access
    LONG m_size;       // bytes (low 32 bits)
    BYTE m_attribute;  // CFile::Attribute bits
    BYTE m_padding;
    TCHAR m_szFullName[MAX_PATH];
};

class CFile : public CObject {
    DECLARE_DYNAMIC(CFile)
public:
    enum OpenFlags : UINT {
        modeRead = 0x0000,
        modeWrite = 0x0001,
        modeReadWrite = 0x0002,
        shareCompat = 0x0000,
        shareExclusive = 0x0010,
        shareDenyWrite = 0x0020,
        shareDenyRead = 0x0030,
        shareDenyNone = 0x0040,
        modeNoInherit = 0x0080,
        modeCreate = 0x1000,
        modeNoTruncate = 0x2000,
        typeText = 0x4000,    // for derived classes; CFile ignores it
        typeBinary = 0x8000,  // for derived classes; CFile ignores it
    };
    enum Attribute {
        normal = 0x00,
        readOnly = 0x01,
        hidden = 0x02,
        system = 0x04,
        volume = 0x08,
        directory = 0x10,
        archive = 0x20,
    };
    enum SeekPosition { begin = 0x0, current = 0x1, end = 0x2 };

    static const HANDLE hFileNull;

    CFile();
    // Wraps a handle opened elsewhere; the object does not close it.
    explicit CFile(HANDLE hFile);
    // Opens the file or throws a CFileException*.
    CFile(LPCTSTR lpszFileName, UINT nOpenFlags);
    ~CFile() override;

    // Opens the file with the access (modeRead/Write/ReadWrite), sharing
    // (share...) and creation (modeCreate, with modeNoTruncate: keep an
    // existing file) flags. FALSE on failure, with *pError (when given) set
    // to the cause, the platform error and the name; never throws. An open
    // file of this object is closed first. The file path becomes the full
    // path of the name.
    virtual BOOL Open(LPCTSTR lpszFileName, UINT nOpenFlags, CFileException* pError = nullptr);

    // Bytes read (0 at the end of the file).
    virtual UINT Read(void* lpBuf, UINT nCount);
    // Writes everything; a short write throws with the cause diskFull.
    virtual void Write(const void* lpBuf, UINT nCount);
    // Moves the position (nFrom: begin, current, end); the new position.
    virtual LONG Seek(LONG lOff, UINT nFrom);
    void SeekToBegin();
    DWORD SeekToEnd();
    virtual DWORD GetPosition() const;
    virtual DWORD GetLength() const;
    // Cuts or extends the file; the position is left at the new end.
    virtual void SetLength(DWORD dwNewLen);
    virtual void Flush();
    virtual void Close();
    virtual void Abort();

    virtual CString GetFileName() const;   // the name after the last \, / or :
    virtual CString GetFileTitle() const;  // the file name as shown: the same
    virtual CString GetFilePath() const;   // the full path
    virtual void SetFilePath(LPCTSTR lpszNewName);

    // TRUE with the times, size, attributes and path of the open file.
    BOOL GetStatus(CFileStatus& rStatus) const;
    // TRUE with the status of the named file (no handle needed).
    static BOOL PASCAL GetStatus(LPCTSTR lpszFileName, CFileStatus& rStatus);

    static void PASCAL Rename(LPCTSTR lpszOldName, LPCTSTR lpszNewName);
    static void PASCAL Remove(LPCTSTR lpszFileName);

    HANDLE m_hFile;
    BOOL m_bCloseOnDelete;
    CString m_strFileName;
};
