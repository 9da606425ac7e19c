#include "tests/base_qo/Counted.h"

#include <string>

IMPLEMENT_SERIAL(Counted, QoObject2, VERSIONABLE_SCHEMA | 7)
IMPLEMENT_SERIAL(SubCounted, Counted, VERSIONABLE_SCHEMA | 8)
IMPLEMENT_SERIAL(Stranger, QoObject2, VERSIONABLE_SCHEMA | 7)
IMPLEMENT_SERIAL(CountedTable, QoArraySerial2, VERSIONABLE_SCHEMA | 7)

int Counted::alive = 0;
int Counted::deleted = 0;
int Counted::clonesLeft = -1;
int Stranger::alive = 0;

void Counted::Serialize(CArchive& ar) {
    if (ar.IsStoring()) {
        ar << m_number << m_group;
    } else {
        m_schema = ar.GetObjectSchema();
        ar >> m_number >> m_group;
    }
}

CString Counted::toString(short format) const {
    const std::string text = std::to_string(m_number) + (format != 0 ? "!" : "");
    return CString(text.c_str());
}

QoObject2* Counted::vClone() const {
    if (clonesLeft == 0) return nullptr;
    if (clonesLeft > 0) --clonesLeft;
    return new Counted(*this);
}

QoSort::CompareResult Counted::vCompareTo(const QoObject2& other, short key) const {
    if (!other.IsKindOf(RUNTIME_CLASS(Counted))) return QoObject2::vCompareTo(other, key);
    const Counted& counted = static_cast<const Counted&>(other);
    if (key != 1 && key != 2) return QoSort::noOrder;
    const int mine = key == 1 ? m_number : m_group;
    const int theirs = key == 1 ? counted.m_number : counted.m_group;
    if (mine == theirs) return QoSort::equal;
    return mine < theirs ? QoSort::before : QoSort::after;
}
