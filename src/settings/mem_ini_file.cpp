#include "settings/mem_ini_file.h"

#include <memory>
#include <new>
#include <string_view>

#include "frame/global_file_functions.h"
#include "framework/files/cfile.h"
#include "settings/ini_value_text.h"

using zq::settings::FormatDecimal;
using zq::settings::kDecimalTextSize;
using zq::settings::TrimWhiteSpace;

namespace {

// Hash block size of the maps, as the stored layout of the objects has it.
constexpr int kMapBlockSize = 10;

CString MakeString(std::string_view text) {
    return CString(text.data(), static_cast<int>(text.size()));
}

}  // namespace

IMPLEMENT_DYNAMIC(CIniSection, CObject)

CIniSection::CIniSection() : m_mapValues(kMapBlockSize) {}

CIniSection::~CIniSection() = default;

CZqMemIniFile::CZqMemIniFile() : m_mapSections(kMapBlockSize) {}

CZqMemIniFile::~CZqMemIniFile() {
    CleanupAllMaps();
}

// ---- Memory -------------------------------------------------------------

CIniSection* CZqMemIniFile::FindSection(const char* lpszSection) const {
    CObject* record = nullptr;
    if (!m_mapSections.Lookup(lpszSection, record)) {
        return nullptr;
    }
    return static_cast<CIniSection*>(record);
}

void CZqMemIniFile::StoreSection(const char* lpszSection, CIniSection* pSection) {
    CObject*& slot = m_mapSections[lpszSection];
    if (slot != nullptr) {
        // A file listing one section name twice: the later record wins and
        // the name keeps its single place in the order.
        delete slot;
        slot = pSection;
        return;
    }
    slot = pSection;
    m_csaSectionOrder.Add(lpszSection);
}

void CZqMemIniFile::RemoveFirst(CStringArray& order, const char* lpszName) {
    for (int i = 0; i < order.GetSize(); ++i) {
        if (order[i].Compare(lpszName) == 0) {
            order.RemoveAt(i);
            return;
        }
    }
}

void CZqMemIniFile::CleanupAllMaps() {
    POSITION pos = m_mapSections.GetStartPosition();
    while (pos != nullptr) {
        CString name;
        CObject* record = nullptr;
        m_mapSections.GetNextAssoc(pos, name, record);
        delete record;
    }
    m_mapSections.RemoveAll();
    m_csaSectionOrder.RemoveAll();
}

CString CZqMemIniFile::SubstituteString(CMapStringToString* pVariables, const char* lpszText) {
    const std::string_view text = TrimWhiteSpace(lpszText != nullptr ? lpszText : "");
    if (pVariables != nullptr && text.size() >= 1 && text[0] == '%' &&
        (text.size() < 2 || text[1] != '%')) {
        std::string_view name = text.substr(1);
        name = name.substr(0, name.find('%'));
        CString value;
        // The value replaces the whole text, whatever followed the closing
        // '%'; it is not looked up again.
        if (pVariables->Lookup(MakeString(name), value)) {
            return value;
        }
    }
    return MakeString(text);
}

DWORD CZqMemIniFile::SetIniValue(const char* lpszSection, const char* lpszKey,
                                 const char* lpszValue) {
    if (lpszSection == nullptr) {
        return kStatusNoSectionGiven;
    }
    if (lpszKey == nullptr) {
        return kStatusNoKey;
    }
    if (lpszValue == nullptr) {
        return kStatusMissingPointer;
    }
    try {
        if (CIniSection* section = FindSection(lpszSection)) {
            section->m_mapValues[lpszKey] = lpszValue;
            // Appended also when the key is already there: a save then
            // writes it twice, and a delete removes only its first place.
            section->m_csaKeyOrder.Add(lpszKey);
            return kStatusSuccess;
        }
        std::unique_ptr<CIniSection> section(new (std::nothrow) CIniSection);
        if (section == nullptr) {
            return kStatusOutOfMemory;
        }
        section->m_csaKeyOrder.Add(lpszKey);
        section->m_mapValues[lpszKey] = lpszValue;
        StoreSection(lpszSection, section.get());
        section.release();
    } catch (const std::bad_alloc&) {
        return kStatusOutOfMemory;
    }
    return kStatusSuccess;
}

DWORD CZqMemIniFile::SetIniValue(const char* lpszSection, const char* lpszKey, int nValue) {
    char text[kDecimalTextSize];
    FormatDecimal(nValue, text, sizeof text);
    return SetIniValue(lpszSection, lpszKey, text);
}

DWORD CZqMemIniFile::SetIniValue(const char* lpszSection, const char* lpszKey, DWORD dwValue) {
    // Stored as a signed number, as the suite's files have it.
    return SetIniValue(lpszSection, lpszKey, static_cast<int>(dwValue));
}

DWORD CZqMemIniFile::GetIniValue(const char* lpszSection, const char* lpszKey, CString& csValue) {
    if (lpszSection == nullptr) {
        return kStatusNoSectionGiven;
    }
    if (lpszKey == nullptr) {
        return kStatusNoKey;
    }
    const CIniSection* section = FindSection(lpszSection);
    if (section == nullptr) {
        return kStatusNoSuchSection;
    }
    return section->m_mapValues.Lookup(lpszKey, csValue) ? kStatusSuccess : kStatusDefaultUsed;
}

DWORD CZqMemIniFile::DeleteIniSection(const char* lpszSection) {
    if (lpszSection == nullptr) {
        return kStatusNoSectionGiven;
    }
    CIniSection* section = FindSection(lpszSection);
    if (section == nullptr) {
        return kStatusNoSuchSection;
    }
    delete section;
    m_mapSections.RemoveKey(lpszSection);
    RemoveFirst(m_csaSectionOrder, lpszSection);
    return kStatusSuccess;
}

DWORD CZqMemIniFile::DeleteIniKey(const char* lpszSection, const char* lpszKey) {
    if (lpszSection == nullptr) {
        return kStatusNoSectionGiven;
    }
    if (lpszKey == nullptr) {
        return kStatusNoKey;
    }
    CIniSection* section = FindSection(lpszSection);
    if (section == nullptr) {
        return kStatusNoSuchSection;
    }
    section->m_mapValues.RemoveKey(lpszKey);
    RemoveFirst(section->m_csaKeyOrder, lpszKey);
    return kStatusSuccess;
}

// ---- File ---------------------------------------------------------------

DWORD CZqMemIniFile::LoadIniFile(const char* lpszFileName, CMapStringToString* pVariables) {
    if (lpszFileName == nullptr) {
        return kStatusNoFileNameGiven;
    }
    DWORD dwExists = 0;
    CZqGlobalFileFunctions::Exists(lpszFileName, dwExists);
    if (dwExists != 0) {
        // A name that does not fit keeps the previous one, as a missing
        // file does.
        SetFileName(lpszFileName);
    }
    CleanupAllMaps();

    CStringArray sections;
    const DWORD status = EnumerateSections(&sections);
    if (status != kStatusSuccess) {
        return status;
    }
    char value[kValueBufferSize];
    for (int s = 0; s < sections.GetSize(); ++s) {
        const CString& name = sections[s];
        CStringArray keys;
        if (SetSection(name) != kStatusSuccess || EnumerateKeys(&keys) != kStatusSuccess) {
            continue;
        }
        try {
            std::unique_ptr<CIniSection> section(new (std::nothrow) CIniSection);
            if (section == nullptr) {
                continue;
            }
            for (int k = 0; k < keys.GetSize(); ++k) {
                // Only status 0 loads the key: an empty value reads as
                // missing (7), an overlong name fails (7), and so on.
                if (DoString(keys[k], TRUE, "", value, kMaxValue) != kStatusSuccess) {
                    continue;
                }
                CString key = keys[k];
                CString text = value;
                if (pVariables != nullptr) {
                    key = SubstituteString(pVariables, key);
                    text = SubstituteString(pVariables, text);
                }
                section->m_csaKeyOrder.Add(key);
                section->m_mapValues[key] = text;
            }
            StoreSection(name, section.get());
            section.release();
        } catch (const std::bad_alloc&) {
            // Out of memory: the section is skipped, like one without a
            // record.
        }
    }
    return status;
}

DWORD CZqMemIniFile::SaveIniFile(int bCreate) {
    char fileName[kMaxFileName + 1];
    GetFileName(fileName, sizeof fileName);
    DWORD dwExists = 0;
    CZqGlobalFileFunctions::Exists(fileName, dwExists);
    if (dwExists == 0) {
        if (bCreate == 0) {
            return kStatusNoFileName;
        }
        // No truncation: a file that the existence test counts as absent
        // (one without any of its attribute bits) keeps its contents.
        CFile file;
        if (!file.Open(fileName, CFile::modeCreate | CFile::modeNoTruncate | CFile::modeWrite)) {
            return kStatusNoFileName;
        }
        try {
            file.Close();
        } catch (CFileException* e) {
            e->Delete();  // the empty file is there; nothing was to be written
        }
    }

    for (int s = 0; s < m_csaSectionOrder.GetSize(); ++s) {
        const CString name = m_csaSectionOrder[s];
        const CIniSection* section = FindSection(name);
        if (section == nullptr || SetSection(name) != kStatusSuccess) {
            continue;
        }
        for (int k = 0; k < section->m_csaKeyOrder.GetSize(); ++k) {
            const CString& key = section->m_csaKeyOrder[k];
            CString value;
            // A place in the order without a value is a deleted key.
            if (section->m_mapValues.Lookup(key, value)) {
                // Ignored: a value too long for one entry or a refused
                // write leaves the file's entry as it was.
                DoString(key, FALSE, value, nullptr, kMaxValue);
            }
        }
    }
    return kStatusSuccess;
}
