// The operations that the library needs of the record base; see QoSort.h.
#pragma once

#include <afxtempl.h>

#include "QoObject2.h"

template <class BASE, class OBJECT>
class QoArray2 : public CTypedPtrArray<BASE, OBJECT*> {
  public:
    QoArray2();
    QoArray2(const QoArray2& other);
    ~QoArray2() override;
    QoArray2& operator=(const QoArray2& other);

    virtual QoSort::CompareResult vCompareTo(const QoArray2& other, short key) const;
    virtual const QoArray2& vCopyFrom(const QoArray2& other);
    virtual CString toString(short format, const CString& separator, int maxCount,
                             const CString& more) const;
    virtual INT_PTR GetSize() const;
    virtual void RemoveAll();
    virtual void onEndSearchIfSorted(const QoObject2& probe, bool afterEqual, INT_PTR& index,
                                     QoSort::CompareResult& result) const;

    OBJECT* GetAt(INT_PTR index) const;
    OBJECT*& ElementAt(INT_PTR index);
    void RemoveAt(INT_PTR index, INT_PTR count);
    void setSortCriteria(short key, bool sorted);
    INT_PTR add(OBJECT* element);
    INT_PTR append(OBJECT* element);
    void addFrom(const QoArray2& other);
    void addFrom(const QoArray2& other, bool sorted);
    OBJECT* find(const OBJECT* probe, short key) const;
    INT_PTR lookFor(const OBJECT* probe, short key) const;
    INT_PTR searchIfSorted(const OBJECT* probe, bool afterEqual) const;
    bool getDeleteObject() const;
    void setDeleteObject(bool deleteObject);
};
