#include "QoObject2.h"

IMPLEMENT_DYNAMIC(QoObject2, CObject)

CString QoObject2::toString(short) const {
    return CString(GetRuntimeClass()->m_lpszClassName);
}

const QoObject2& QoObject2::vCopyFrom(const QoObject2&) {
    return *this;
}

QoSort::CompareResult QoObject2::vCompareTo(const QoObject2& other, short) const {
    return this == &other ? QoSort::equal : QoSort::noOrder;
}
