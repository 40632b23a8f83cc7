// The root object class of the framework and its run-time class information.
//
// Every class that needs to be asked "what are you" at run time derives from
// CObject and names itself with DECLARE_DYNAMIC / IMPLEMENT_DYNAMIC (or the
// DYNCREATE pair, which also lets CRuntimeClass::CreateObject make one).
// RUNTIME_CLASS(Name) yields the class's descriptor; IsKindOf walks the
// chain of base descriptors. Descriptors are constant-initialised statics,
// so they are usable during the static construction of any module.
//
// The DECLARE macros mark GetRuntimeClass `override`, so a class using them
// marks its other overrides too.
//
// CObject cannot be copied, as in the classic framework: a class that wants
// copies writes its own copy operations.
#pragma once

#include "platform/win32.h"

class CObject;

// Describes one class: its name, its size, its base and, for dynamically
// creatable classes, how to make an instance.
struct CRuntimeClass {
    LPCSTR m_lpszClassName;
    int m_nObjectSize;
    UINT m_wSchema;  // 0xFFFF for classes that are not serialisable
    CObject*(PASCAL* m_pfnCreateObject)();
    CRuntimeClass* m_pBaseClass;
    CRuntimeClass* m_pNextClass;  // unused; kept for layout compatibility

    // A new instance made by the class's default constructor, or NULL when
    // the class is not dynamically creatable or construction failed (an
    // exception thrown by the constructor is caught and not rethrown).
    CObject* CreateObject();

    // TRUE when this class is pBaseClass or derives from it (NULL: FALSE).
    BOOL IsDerivedFrom(const CRuntimeClass* pBaseClass) const;
};

class CObject {
public:
    virtual CRuntimeClass* GetRuntimeClass() const;
    virtual ~CObject();

    // TRUE when the object's class is pClass or derives from it.
    BOOL IsKindOf(const CRuntimeClass* pClass) const;

    // Diagnostics hook; checks nothing here.
    virtual void AssertValid() const;

    static const CRuntimeClass classCObject;

protected:
    CObject();

public:
    CObject(const CObject&) = delete;
    CObject& operator=(const CObject&) = delete;
};

#define RUNTIME_CLASS(class_name) (const_cast<CRuntimeClass*>(&class_name::class##class_name))

#define DECLARE_DYNAMIC(class_name)               \
public:                                           \
    static const CRuntimeClass class##class_name; \
    CRuntimeClass* GetRuntimeClass() const override;

#define DECLARE_DYNCREATE(class_name) \
    DECLARE_DYNAMIC(class_name)       \
    static CObject* PASCAL CreateObject();

#define IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, wSchema, pfnNew) \
    const CRuntimeClass class_name::class##class_name = {                    \
        #class_name, static_cast<int>(sizeof(class_name)), wSchema,          \
        pfnNew,      RUNTIME_CLASS(base_class_name),       nullptr};         \
    CRuntimeClass* class_name::GetRuntimeClass() const {                     \
        return RUNTIME_CLASS(class_name);                                    \
    }

#define IMPLEMENT_DYNAMIC(class_name, base_class_name) \
    IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, 0xFFFF, nullptr)

#define IMPLEMENT_DYNCREATE(class_name, base_class_name) \
    CObject* PASCAL class_name::CreateObject() {         \
        return new class_name;                           \
    }                                                    \
    IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, 0xFFFF, class_name::CreateObject)
