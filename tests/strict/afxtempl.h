// What is used of the class library's <afxtempl.h>; see afx.h.
#pragma once

#include "afxcoll.h"

template <class TYPE, class ARG_TYPE = const TYPE&>
class CArray : public CObject {
  public:
    CArray();
    INT_PTR GetSize() const;
    BOOL IsEmpty() const;
    void SetSize(INT_PTR nNewSize, INT_PTR nGrowBy = -1);
    void RemoveAll();
    const TYPE& GetAt(INT_PTR nIndex) const;
    TYPE& GetAt(INT_PTR nIndex);
    void SetAt(INT_PTR nIndex, ARG_TYPE newElement);
    const TYPE& ElementAt(INT_PTR nIndex) const;
    TYPE& ElementAt(INT_PTR nIndex);
    const TYPE* GetData() const;
    TYPE* GetData();
    INT_PTR Add(ARG_TYPE newElement);
    void Copy(const CArray& src);
    const TYPE& operator[](INT_PTR nIndex) const;
    TYPE& operator[](INT_PTR nIndex);
    void InsertAt(INT_PTR nIndex, ARG_TYPE newElement, INT_PTR nCount = 1);
    void RemoveAt(INT_PTR nIndex, INT_PTR nCount = 1);
    void Serialize(CArchive& ar) override;
};

template <class BASE_CLASS, class TYPE>
class CTypedPtrArray : public BASE_CLASS {
  public:
    TYPE GetAt(INT_PTR nIndex) const;
    TYPE& ElementAt(INT_PTR nIndex);
    void SetAt(INT_PTR nIndex, TYPE ptr);
    INT_PTR Add(TYPE newElement);
    void Copy(const CTypedPtrArray& src);
    void InsertAt(INT_PTR nIndex, TYPE newElement, INT_PTR nCount = 1);
    TYPE operator[](INT_PTR nIndex) const;
    TYPE& operator[](INT_PTR nIndex);
};
