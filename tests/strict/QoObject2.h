// The operations that the library needs of the record base; see QoSort.h.
#pragma once

#include <afx.h>

#include "QoSort.h"

class QoObject2 : public CObject {
    DECLARE_DYNAMIC(QoObject2)
  public:
    QoObject2();
    ~QoObject2() override;
    virtual CString toString(short format) const;
    virtual QoObject2* vClone() const = 0;
    virtual const QoObject2& vCopyFrom(const QoObject2& other);
    virtual QoSort::CompareResult vCompareTo(const QoObject2& other, short key) const;
};
