// What is publicly documented of the class library's <afxcoll.h>; see afx.h.
#pragma once

#include "afx.h"

class CObArray : public CObject {
    DECLARE_SERIAL(CObArray)
  public:
    CObArray();
    INT_PTR GetSize() const;
    INT_PTR GetCount() const;
    BOOL IsEmpty() const;
    INT_PTR GetUpperBound() const;
    void SetSize(INT_PTR nNewSize, INT_PTR nGrowBy = -1);
    void FreeExtra();
    void RemoveAll();
    CObject* GetAt(INT_PTR nIndex) const;
    void SetAt(INT_PTR nIndex, CObject* newElement);
    CObject*& ElementAt(INT_PTR nIndex);
    const CObject** GetData() const;
    CObject** GetData();
    void SetAtGrow(INT_PTR nIndex, CObject* newElement);
    INT_PTR Add(CObject* newElement);
    INT_PTR Append(const CObArray& src);
    void Copy(const CObArray& src);
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
    INT_PTR GetCount() const;
    BOOL IsEmpty() const;
    void SetSize(INT_PTR nNewSize, INT_PTR nGrowBy = -1);
    void RemoveAll();
    const CString& GetAt(INT_PTR nIndex) const;
    void SetAt(INT_PTR nIndex, LPCTSTR newElement);
    INT_PTR Add(LPCTSTR newElement);
    const CString& operator[](INT_PTR nIndex) const;
    CString& operator[](INT_PTR nIndex);
    void Serialize(CArchive& ar) override;
};
