// CZqRegMailBoxes: the suite's numbered mailboxes, kept in the registry,
// and the folders that hold their messages.
//
// Below the running program's Mirkels root key (local-machine root, mode 1
// of CZqGlobalConfig) the key "MailBoxes" holds the DWORD "UserDefault" (the
// machine's default mailbox) and one subkey per mailbox, named by its
// number as eight zero-padded digits ("00000042"), with the string "Name".
// A mailbox's folders lie beside the executable:
//   <executable's folder>\MAILBOX\<number as eight digits><suffix>
// with the suffix of MAILBOXFOLDER.
//
// The list keeps the order of the registry enumeration or of Add; numbers
// are meant to be unique but Add does not check. Failures show only as
// FALSE or NULL; registry write errors and folder creation errors are not
// reported. Without a readable version block of the running program
// nothing is read or written. An object belongs to one thread at a time.
#pragma once

#include "framework/core/arrays.h"
#include "framework/core/cstring.h"
#include "framework/core/object.h"
#include "platform/win32.h"

struct tagREGMAILBOXSTRUCT {
    DWORD m_dwNumber = 0;
    CString m_csName;  // at most 255 characters when read from the registry
};

// Which folder of a mailbox GetMailBoxPath names.
enum MAILBOXFOLDER {
    MBF_INBOX = 0,    // "\INBOX"
    MBF_OUTBOX = 1,   // "\OUTBOX"
    MBF_SETUP = 2,    // "\BOXSETUP"
    MBF_PROMPTS = 3,  // "\BOXSETUP\PROMPTS"
    MBF_MAILBOX = 4,  // the mailbox's own folder (so is any value above 5)
    MBF_ARCHIVE = 5,  // "\ARCHIVE"
};

class CZqRegMailBoxes : public CObject {
    DECLARE_DYNAMIC(CZqRegMailBoxes)

public:
    static const char* m_lpszBaseKey;        // "MailBoxes"
    static constexpr DWORD kAccessMode = 1;  // local machine
    static constexpr DWORD kNameSize = 256;  // names of up to 255 characters
    // The name of a mailbox whose "Name" is missing or empty.
    static constexpr const char* kBadBoxName = "BadBox";

    // An empty list.
    CZqRegMailBoxes();
    // Deletes every record.
    ~CZqRegMailBoxes() override;
    CZqRegMailBoxes(const CZqRegMailBoxes&) = delete;
    CZqRegMailBoxes& operator=(const CZqRegMailBoxes&) = delete;

    // Replaces the list with the registry's mailboxes. A subkey's number is
    // its name read as atol does (a name that is no number gives mailbox
    // 0). FALSE, with the list empty, without a version block or when
    // memory runs out.
    BOOL Load();
    // Deletes the whole mailboxes key ("UserDefault" included), then writes
    // one subkey per record. "UserDefault" is not written back: a caller
    // that keeps a default calls SetUserDefault after Write (kept in this
    // order on purpose). FALSE without a version block (the key is
    // deleted all the same when its place is known).
    BOOL Write();

    // Appends a record without checking the number; NULL when memory runs
    // out.
    tagREGMAILBOXSTRUCT* Add(DWORD dwNumber, const CString& csName);
    // Delete the first record with that number (that record); FALSE when
    // there is none.
    BOOL Remove(DWORD dwNumber);
    BOOL Remove(tagREGMAILBOXSTRUCT* pRecord);
    void RemoveAll();

    // The first record, NULL for an empty list.
    tagREGMAILBOXSTRUCT* GetDefault();
    // The first record with that number, or NULL.
    tagREGMAILBOXSTRUCT* GetByNumber(DWORD dwNumber);

    // The stored "UserDefault", even when no such mailbox is listed; without
    // one (or without a version block) the first record's number, or 0 for
    // an empty list.
    DWORD GetUserDefault();
    void SetUserDefault(DWORD dwNumber);

    // Both Load first when the list is empty. Names compare without regard
    // to case; with still no mailboxes every name is unique and no number
    // exists. A NULL name counts as the empty name.
    BOOL IsNameUnique(const char* lpszName);
    BOOL DoesNumberExist(DWORD dwNumber);

    // Names in csPath the folder of mailbox dwNumber (or, when the registry
    // has no such mailbox, of its first one) and makes the folder when it
    // is missing; only the last folder is made, its parents are there from
    // the mailbox's installation. FALSE, with csPath untouched, when the
    // registry has no mailboxes at all.
    static BOOL GetMailBoxPath(DWORD dwNumber, CString& csPath, MAILBOXFOLDER folder);

    // Additions beyond the exported interface, for tools and tests.
    int GetSize() const { return m_MailBoxes.GetSize(); }
    // Record nIndex, or NULL outside 0..GetSize()-1.
    tagREGMAILBOXSTRUCT* GetAt(int nIndex) const;
    // The suffix of a folder ("\INBOX" ...; "" for the mailbox itself).
    static const char* GetFolderSuffix(MAILBOXFOLDER folder);

protected:
    // Deletes the mailboxes key with everything in it.
    void ClearRegistry();
    // Appends keyName to the CStringArray at pContext; always 0.
    static DWORD WINAPI EnumKeysCallback(void* pContext, const char* lpszKeyName);

    CPtrArray m_MailBoxes;  // of tagREGMAILBOXSTRUCT, owned

private:
    // The mailboxes key of the running program; FALSE without a version
    // block.
    static BOOL GetMailBoxesKey(CString& csKey);
};
