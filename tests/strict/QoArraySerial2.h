// The operations that the library needs of the record base; see QoSort.h.
#pragma once

#include "QoArray2.h"

class QoArraySerial2 : public QoArray2<CObArray, QoObject2> {
    DECLARE_DYNAMIC(QoArraySerial2)
  public:
    QoArraySerial2();
    explicit QoArraySerial2(unsigned long flags);
    ~QoArraySerial2() override;
    // Its copies are QoArray2's.
    QoArraySerial2(const QoArraySerial2& other) = default;
    QoArraySerial2& operator=(const QoArraySerial2& other) = default;
    void Serialize(CArchive& ar) override;
};
