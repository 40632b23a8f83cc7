#include "toolsmenu/tlm_menu.h"

#include <memory>
#include <new>

#include "framework/windows/cmd_target.h"
#include "framework/windows/menu.h"
#include "framework/windows/wnd.h"

IMPLEMENT_DYNCREATE(CTlmMenu, CObject)

CTlmMenu::CTlmMenu() = default;

CTlmMenu::~CTlmMenu() {
    FreeAllMemory();
}

void CTlmMenu::FreeAllMemory() {
    for (int i = 0; i < m_arItems.GetSize(); ++i) {
        delete m_arItems.GetAt(i);
    }
    m_arItems.RemoveAll();
}

DWORD CTlmMenu::LoadFile(LPCSTR lpszPath) {
    if (lpszPath == nullptr) {
        return TLM_ERROR_NO_PATH;
    }
    FreeAllMemory();
    std::unique_ptr<CTlmFile> file(new (std::nothrow) CTlmFile);
    if (file == nullptr) {
        return TLM_ERROR_NO_MEMORY;
    }
    if (lpszPath[0] == '\0') {
        return TLM_ERROR_NO_PATH;
    }
    return file->LoadFileData(lpszPath, TLMFILE_VERSION, TLMFILE_HEADER_SIZE, m_arItems,
                              TLMFILE_FILTER_SHOWN);
}

DWORD CTlmMenu::RefreshMenu(UINT nAnchorID) {
    CWnd* main = AfxGetMainWnd();
    CMenu* menu = main != nullptr ? main->GetMenu() : nullptr;
    if (menu == nullptr) {
        return TLM_ERROR_NO_MENU;
    }
    CMenu* host = nullptr;
    int anchor = -1;
    for (int top = static_cast<int>(menu->GetMenuItemCount()) - 1; top >= 0 && host == nullptr;
         --top) {
        CMenu* sub = menu->GetSubMenu(top);
        if (sub == nullptr) {
            continue;
        }
        int count = static_cast<int>(sub->GetMenuItemCount());
        for (int i = 0; i < count; ++i) {
            if (sub->GetMenuItemID(i) == nAnchorID) {
                host = sub;
                anchor = i;
                break;
            }
        }
    }
    if (host == nullptr) {
        return TLM_ERROR_NO_ANCHOR;
    }
    while (static_cast<int>(host->GetMenuItemCount()) > anchor + 1) {
        if (!host->DeleteMenu(static_cast<UINT>(anchor + 1), MF_BYPOSITION)) {
            break;
        }
    }
    if (m_arItems.GetSize() > 0) {
        host->AppendMenu(MF_SEPARATOR);
        for (int i = 0; i < m_arItems.GetSize(); ++i) {
            auto* item = static_cast<CTlmItem*>(m_arItems.GetAt(i));
            host->AppendMenu(MF_STRING, item->GetCommand(), item->GetDataMenuText());
        }
    }
    return TLM_OK;
}

CTlmItem* CTlmMenu::FindItem(UINT nID) const {
    for (int i = 0; i < m_arItems.GetSize(); ++i) {
        auto* item = static_cast<CTlmItem*>(m_arItems.GetAt(i));
        if (item != nullptr && item->GetCommand() == nID) {
            return item;
        }
    }
    return nullptr;
}

BOOL CTlmMenu::DoCommandMessage(UINT nID, int nCode, void* pExtra, CWnd* pParent) {
    if (nCode != static_cast<int>(CN_COMMAND) && nCode != static_cast<int>(CN_UPDATE_COMMAND_UI)) {
        return FALSE;
    }
    CTlmItem* item = FindItem(nID);
    if (item == nullptr) {
        return FALSE;
    }
    if (nCode == static_cast<int>(CN_UPDATE_COMMAND_UI)) {
        if (pExtra != nullptr) {
            static_cast<CCmdUI*>(pExtra)->Enable(TRUE);
        }
        return TRUE;
    }
    item->ActivateItem(pParent);
    return TRUE;
}

BOOL CTlmMenu::GetMessageString(UINT nID, CString& rMessage) const {
    rMessage.Empty();
    CTlmItem* item = FindItem(nID);
    if (item == nullptr) {
        return FALSE;
    }
    rMessage = item->GetDataDescription();
    return TRUE;
}
