#include "tests/base/TestRecords.h"

IMPLEMENT_SERIAL(Foo, CObject, VERSIONABLE_SCHEMA | 2015)
IMPLEMENT_SERIAL(SubFoo, Foo, VERSIONABLE_SCHEMA | 3)
IMPLEMENT_SERIAL(Fixed, CObject, 7)
IMPLEMENT_SERIAL(Link, CObject, VERSIONABLE_SCHEMA | 9)
IMPLEMENT_SERIAL(Chain, CObject, 1)
IMPLEMENT_SERIAL(OwningArray, CObArray, 0)
IMPLEMENT_DYNAMIC(DynamicOnly, CObject)
IMPLEMENT_DYNCREATE(CreatableOnly, CObject)
IMPLEMENT_SERIAL(Name63xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx, CObject, 1)
IMPLEMENT_SERIAL(Name64xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx, CObject, 1)

namespace {

CObject* PASCAL makeNothing() {
    return nullptr;
}

}  // namespace

AFX_IMPLEMENT_RUNTIMECLASS(Unmakeable, CObject, 1, &makeNothing)
static const AFX_CLASSINIT init_Unmakeable(RUNTIME_CLASS(Unmakeable));

int Foo::alive = 0;
int Chain::alive = 0;

void Foo::Serialize(CArchive& ar) {
    if (ar.IsStoring()) {
        ar << m_value;
    } else {
        m_schema = ar.GetObjectSchema();
        ar >> m_value;
    }
}

void SubFoo::Serialize(CArchive& ar) {
    Foo::Serialize(ar);
    if (ar.IsStoring()) {
        ar << m_extra;
    } else {
        ar >> m_extra;
    }
}

void Fixed::Serialize(CArchive& ar) {
    if (ar.IsStoring()) {
        ar << m_value;
    } else {
        ar >> m_value;
    }
}

void Link::Serialize(CArchive& ar) {
    if (ar.IsStoring()) {
        ar << m_other;
    } else {
        ar >> m_other;
        m_schemaAfter = ar.GetObjectSchema();
    }
}

Chain::~Chain() {
    --alive;
    delete m_next;
}

void Chain::Serialize(CArchive& ar) {
    if (ar.IsStoring()) {
        ar << m_next;
    } else {
        ar >> m_next;
    }
}

OwningArray::~OwningArray() {
    for (INT_PTR i = 0; i < GetSize(); ++i) delete GetAt(i);
}
