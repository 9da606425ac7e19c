// What is used of the class library's <afxcoll.h>; see afx.h.
#pragma once

#include "afx.h"

class CObArray : public CObject {
    DECLARE_SERIAL(CObArray)
  public:
    CObArray();
    INT_PTR GetSize() const;
    void RemoveAll();
    CObject* GetAt(INT_PTR nIndex) const;
    const CObject** GetData() const;
    void SetAt(INT_PTR nIndex, CObject* newElement);
    INT_PTR Add(CObject* newElement);
    CObject* operator[](INT_PTR nIndex) const;
    CObject*& operator[](INT_PTR nIndex);
    void InsertAt(INT_PTR nIndex, CObject* newElement, INT_PTR nCount = 1);
    void RemoveAt(INT_PTR nIndex, INT_PTR nCount = 1);
    void Serialize(CArchive& ar) override;
};

class CStringArray : public CObject {
    DECLARE_SERIAL(CStringArray)
  public:
    CStringArray();
    INT_PTR GetSize() const;
    void RemoveAll();
    const CString& GetAt(INT_PTR nIndex) const;
    void SetAt(INT_PTR nIndex, LPCTSTR newElement);
    INT_PTR Add(LPCTSTR newElement);
    const CString& operator[](INT_PTR nIndex) const;
    CString& operator[](INT_PTR nIndex);
    void Serialize(CArchive& ar) override;
};
