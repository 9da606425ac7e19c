// Array templates.
#pragma once

#include "afxcoll.h"
#include "detail/AfxWriteFields.h"

#include <limits>

// Plain values, archived bytewise: a count, then the bytes of the elements.
template <class TYPE, class ARG_TYPE = const TYPE&>
class CArray : public AfxArray<TYPE, ARG_TYPE> {
  public:
    void Serialize(CArchive& ar) override {
        static_assert(std::is_trivially_copyable_v<TYPE>);
        if (ar.IsStoring()) {
            ar.WriteCount(static_cast<size_t>(this->GetSize()));
            ar.Write(this->GetData(), static_cast<int>(byteCount()));
            return;
        }
        const size_t count = ar.ReadCount();
        // Checked before memory is allocated: a short archive may announce any count.
        if (count > ar.BytesLeft() / sizeof(TYPE)) {
            AfxThrowArchiveException(CArchiveException::endOfFile, ar.m_strFileName);
        }
        this->SetSize(static_cast<INT_PTR>(count));
        ar.EnsureRead(this->GetData(), static_cast<UINT>(byteCount()));
    }

  private:
    size_t byteCount() const { return static_cast<size_t>(this->GetSize()) * sizeof(TYPE); }
};

// A typed interface to an array of pointers.
template <class BASE_CLASS, class TYPE>
class CTypedPtrArray : public BASE_CLASS {
  public:
    TYPE GetAt(INT_PTR index) const { return static_cast<TYPE>(BASE_CLASS::GetAt(index)); }
    TYPE ElementAt(INT_PTR index) const { return GetAt(index); }
    TYPE operator[](INT_PTR index) const { return GetAt(index); }
    void SetAt(INT_PTR index, TYPE element) { BASE_CLASS::SetAt(index, element); }
    void SetAtGrow(INT_PTR index, TYPE element) { BASE_CLASS::SetAtGrow(index, element); }
    INT_PTR Add(TYPE element) { return BASE_CLASS::Add(element); }
    void InsertAt(INT_PTR index, TYPE element, INT_PTR count = 1) {
        BASE_CLASS::InsertAt(index, element, count);
    }
};
