#include "NyServer/detail/ExceptionBoundary.h"

#include "AfxClassChain.h"

CRuntimeClass CObject::classCObject = {
    "CObject", static_cast<int>(sizeof(CObject)), 0xFFFF, nullptr, nullptr, nullptr};

void* PASCAL CObject::operator new(size_t bytes, const std::nothrow_t&) noexcept {
    return NySe::zeroIfOutOfMemory([&] { return operator new(bytes); });
}

CRuntimeClass* CObject::GetRuntimeClass() const {
    return &classCObject;
}
void CObject::Serialize(CArchive&) {}
void CObject::AssertValid() const {}
void CObject::Dump(CDumpContext&) const {}

CObject* CRuntimeClass::CreateObject() const {
    if (m_pfnCreateObject == nullptr) return nullptr;
    return NySe::zeroIfOutOfMemory([this] { return m_pfnCreateObject(); });
}

BOOL CRuntimeClass::IsDerivedFrom(const CRuntimeClass* base) const {
    for (const CRuntimeClass* current = this; current != nullptr;) {
        if (current == base) return TRUE;
        current = current->m_pfnGetBaseClass != nullptr ? current->m_pfnGetBaseClass() : nullptr;
    }
    return FALSE;
}

CRuntimeClass* PASCAL CRuntimeClass::FromName(LPCSTR className) {
    if (className == nullptr) return nullptr;
    const auto lock = AfxClassChain::lock();
    return AfxClassChain::find(className);
}

CRuntimeClass* PASCAL CRuntimeClass::FromName(LPCWSTR className) {
    if (className == nullptr) return nullptr;
    std::string ascii;
    for (; *className != 0; ++className) {
        if (*className > 0x7F) return nullptr;
        ascii += static_cast<char>(*className);
    }
    return FromName(ascii.c_str());
}

void AFXAPI AfxClassInit(CRuntimeClass* newClass) {
    const auto lock = AfxClassChain::lock();
    AfxClassChain::registerClass(newClass);
}

CObject* AFXAPI AfxDynamicDownCast(CRuntimeClass* wanted, CObject* object) {
    return object != nullptr && object->IsKindOf(wanted) ? object : nullptr;
}
