// CObject, the root of all classes with run-time class information, and CRuntimeClass, which
// describes a class.
#pragma once

#include <new>

#include "afxplatform.h"
#include "NyServer/base/support/detail/SmallBlocks.h"

class CArchive;
class CDumpContext;
class CObject;

#ifndef AFX_API
#define AFX_API
#endif
#ifndef AFX_DATA
#define AFX_DATA
#endif
#define AFXAPI

// Or-ed into a declared schema: any stored schema may be read, and Serialize calls GetObjectSchema
// to know which one it is. The flag is above the 16 bits that are stored.
#define VERSIONABLE_SCHEMA 0x80000000U

// One static description per class; it lives as long as its module. Reading it needs no lock, and
// classes may be looked up by any thread while modules are loaded and freed. A module is freed only
// when its classes are no longer used.
struct NYBASE_API CRuntimeClass {
    LPCSTR m_lpszClassName;  // ASCII
    int m_nObjectSize;       // bytes
    UINT m_wSchema;          // declared schema with its flag; 0xFFFF: not serialisable
    CObject*(PASCAL* m_pfnCreateObject)();        // null: not dynamically creatable
    CRuntimeClass*(PASCAL* m_pfnGetBaseClass)();  // null only for CObject
    CRuntimeClass* m_pNextClass;                  // next on its module's list, newest first

    // Returns a new object in its default state, owned by the caller; null if the class is not
    // dynamically creatable or when out of memory.
    CObject* CreateObject() const;

    // Returns TRUE if this class is `base` or derived from it.
    BOOL IsDerivedFrom(const CRuntimeClass* base) const;

    // Returns TRUE if objects of the class can be written to an archive and read back.
    BOOL IsSerializable() const { return m_wSchema != 0xFFFF; }

    // Returns the class with that name: the application's, else that of an extension module, else
    // the class library's; null if there is none.
    static CRuntimeClass* PASCAL FromName(LPCSTR className);
    static CRuntimeClass* PASCAL FromName(LPCWSTR className);
};

// Registers a class for look-up by name; called once per class, by its IMPLEMENT_SERIAL. REQUIRES:
// called while the class's module is being loaded.
NYBASE_API void AFXAPI AfxClassInit(CRuntimeClass* newClass);

struct AFX_CLASSINIT {
    explicit AFX_CLASSINIT(CRuntimeClass* newClass) { AfxClassInit(newClass); }
};

// Objects of one class tree may be used by one thread at a time; nothing here locks.
class NYBASE_API CObject {
  public:
    // Objects are many and small. One form of new hides all others, so all are declared here. The
    // last two forms of delete, called if a constructor throws, cannot free the block: its size is
    // unknown.
    static void* PASCAL operator new(size_t bytes) { return allocateSmallBlock(bytes); }
    static void* PASCAL operator new(size_t, void* place) { return place; }
    static void* PASCAL operator new(size_t bytes, LPCSTR, int) { return operator new(bytes); }
    static void* PASCAL operator new(size_t bytes, const std::nothrow_t&) noexcept;
    static void PASCAL operator delete(void* object, size_t bytes) {
        freeSmallBlock(object, bytes);
    }
    static void PASCAL operator delete(void*, void*) {}
    static void PASCAL operator delete(void*, LPCSTR, int) {}
    static void PASCAL operator delete(void*, const std::nothrow_t&) {}

    CObject(const CObject&) = delete;
    CObject& operator=(const CObject&) = delete;
    virtual CRuntimeClass* GetRuntimeClass() const;
    virtual ~CObject() = default;
    // Writes or reads the object's own fields; CObject has none.
    virtual void Serialize(CArchive& ar);
    virtual void AssertValid() const;
    virtual void Dump(CDumpContext& dc) const;

    BOOL IsSerializable() const { return GetRuntimeClass()->IsSerializable(); }
    BOOL IsKindOf(const CRuntimeClass* pClass) const {
        return GetRuntimeClass()->IsDerivedFrom(pClass);
    }

    static CRuntimeClass classCObject;
    static CRuntimeClass* PASCAL GetThisClass() { return &classCObject; }
    static CRuntimeClass* PASCAL _GetBaseClass() { return nullptr; }

  protected:
    CObject() = default;
};

// Implements DYNAMIC_DOWNCAST: returns `object` if it is of kind `wanted`, else null; null for
// null.
NYBASE_API CObject* AFXAPI AfxDynamicDownCast(CRuntimeClass* wanted, CObject* object);

#define RUNTIME_CLASS(class_name) (class_name::GetThisClass())

#define DYNAMIC_DOWNCAST(class_name, object) \
    (static_cast<class_name*>(AfxDynamicDownCast(RUNTIME_CLASS(class_name), object)))

#define DECLARE_DYNAMIC(class_name)                  \
  protected:                                         \
    static CRuntimeClass* PASCAL _GetBaseClass();    \
                                                     \
  public:                                            \
    static AFX_DATA CRuntimeClass class##class_name; \
    static CRuntimeClass* PASCAL GetThisClass();     \
    CRuntimeClass* GetRuntimeClass() const override;

#define DECLARE_DYNCREATE(class_name) \
    DECLARE_DYNAMIC(class_name)       \
    static CObject* PASCAL CreateObject();

#define DECLARE_SERIAL(class_name) \
    DECLARE_DYNCREATE(class_name)  \
    friend AFX_API CArchive& AFXAPI operator>>(CArchive& ar, class_name*& pOb);

#define AFX_IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, schema, create) \
    CRuntimeClass* PASCAL class_name::_GetBaseClass() {                         \
        return RUNTIME_CLASS(base_class_name);                                  \
    }                                                                           \
    CRuntimeClass class_name::class##class_name = {                             \
        #class_name, static_cast<int>(sizeof(class_name)), schema,              \
        create,      &class_name::_GetBaseClass,           nullptr};            \
    CRuntimeClass* PASCAL class_name::GetThisClass() {                          \
        return &class_name::class##class_name;                                  \
    }                                                                           \
    CRuntimeClass* class_name::GetRuntimeClass() const {                        \
        return class_name::GetThisClass();                                      \
    }

#define IMPLEMENT_DYNAMIC(class_name, base_class_name) \
    AFX_IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, 0xFFFF, nullptr)

#define IMPLEMENT_DYNCREATE(class_name, base_class_name) \
    CObject* PASCAL class_name::CreateObject() {         \
        return new class_name;                           \
    }                                                    \
    AFX_IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, 0xFFFF, &class_name::CreateObject)

#define IMPLEMENT_SERIAL(class_name, base_class_name, schema)                                  \
    CObject* PASCAL class_name::CreateObject() {                                               \
        return new class_name;                                                                 \
    }                                                                                          \
    AFX_IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, schema, &class_name::CreateObject) \
    static const AFX_CLASSINIT init_##class_name(RUNTIME_CLASS(class_name));                   \
    CArchive& AFXAPI operator>>(CArchive& ar, class_name*& pOb) {                              \
        pOb = static_cast<class_name*>(ar.ReadObject(RUNTIME_CLASS(class_name)));              \
        return ar;                                                                             \
    }
