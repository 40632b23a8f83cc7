#include "framework/windows/cmd_target.h"

#include "framework/windows/menu.h"

IMPLEMENT_DYNAMIC(CCmdTarget, CObject)

BOOL CCmdTarget::OnCmdMsg(UINT /*nID*/, int /*nCode*/, void* /*pExtra*/,
                          AFX_CMDHANDLERINFO* /*pHandlerInfo*/) {
    return FALSE;
}

CCmdUI::CCmdUI()
    : m_nID(0),
      m_nIndex(0),
      m_pMenu(nullptr),
      m_pOther(nullptr),
      m_bEnableChanged(FALSE),
      m_bEnabled(TRUE),
      m_nCheck(0) {}

void CCmdUI::Enable(BOOL bOn) {
    if (m_pMenu != nullptr) {
        m_pMenu->EnableMenuItem(m_nIndex, MF_BYPOSITION | (bOn ? MF_ENABLED : MF_GRAYED));
    }
    m_bEnabled = bOn ? TRUE : FALSE;
    m_bEnableChanged = TRUE;
}

void CCmdUI::SetCheck(int nCheck) {
    if (m_pMenu != nullptr) {
        m_pMenu->CheckMenuItem(m_nIndex, MF_BYPOSITION | (nCheck ? MF_CHECKED : MF_UNCHECKED));
    }
    m_nCheck = nCheck;
}
