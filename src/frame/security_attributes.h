// The security attributes every file and folder creation of the library
// passes: a freshly initialised descriptor (revision 1, nothing else set)
// and a handle that is not inherited.
#pragma once

#include "platform/win32.h"

class CZqDefaultSecurityAttributes {
public:
    CZqDefaultSecurityAttributes() {
        InitializeSecurityDescriptor(&m_descriptor, SECURITY_DESCRIPTOR_REVISION);
        m_attributes.nLength = sizeof(SECURITY_ATTRIBUTES);
        m_attributes.lpSecurityDescriptor = &m_descriptor;
        m_attributes.bInheritHandle = FALSE;
    }
    CZqDefaultSecurityAttributes(const CZqDefaultSecurityAttributes&) = delete;
    CZqDefaultSecurityAttributes& operator=(const CZqDefaultSecurityAttributes&) = delete;

    LPSECURITY_ATTRIBUTES Get() { return &m_attributes; }

private:
    SECURITY_DESCRIPTOR m_descriptor;
    SECURITY_ATTRIBUTES m_attributes;
};
