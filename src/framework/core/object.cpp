#include "framework/core/object.h"

#include <new>

#include "framework/core/exceptions.h"

const CRuntimeClass CObject::classCObject = {
    "CObject", static_cast<int>(sizeof(CObject)), 0xFFFF, nullptr, nullptr, nullptr};

CObject::CObject() = default;
CObject::~CObject() = default;

CRuntimeClass* CObject::GetRuntimeClass() const {
    return RUNTIME_CLASS(CObject);
}

void CObject::AssertValid() const {}

BOOL CObject::IsKindOf(const CRuntimeClass* pClass) const {
    return GetRuntimeClass()->IsDerivedFrom(pClass);
}

CObject* CRuntimeClass::CreateObject() {
    if (m_pfnCreateObject == nullptr) {
        return nullptr;
    }
    // A constructor that throws leaves no object, as the classic framework
    // reports it: NULL, never an exception.
    try {
        return m_pfnCreateObject();
    } catch (CException* e) {
        e->Delete();
        return nullptr;
    } catch (...) {
        return nullptr;
    }
}

BOOL CRuntimeClass::IsDerivedFrom(const CRuntimeClass* pBaseClass) const {
    if (pBaseClass == nullptr) {
        return FALSE;
    }
    for (const CRuntimeClass* c = this; c != nullptr; c = c->m_pBaseClass) {
        if (c == pBaseClass) {
            return TRUE;
        }
    }
    return FALSE;
}
