// What tables need beside the record base's documented operations.
#pragma once

#include <afx.h>

#include <unordered_set>

#include "QoArraySerial2.h"

namespace NySe {

// Whether the record base can be told of which class a table's records are. Such a base refuses all
// others while it loads, and leaves nothing behind when loading fails.
template <class TABLE>
concept KnowsElementClass = requires(TABLE& table, const CRuntimeClass* pClass) {
    table.setElementClass(pClass);
};

template <class TABLE>
void setElementClass(TABLE& table, const CRuntimeClass* pClass) {
    if constexpr (KnowsElementClass<TABLE>) table.setElementClass(pClass);
}

// Empties a table after a failed load: nobody has been given the records, so they are deleted
// whether the table owns its records or not.
inline void deleteLoaded(QoArraySerial2& table) {
    const bool owning = table.getDeleteObject();
    table.setDeleteObject(true);
    table.RemoveAll();
    table.setDeleteObject(owning);
}

// A record that was loaded as another one's reference would have two owners: a clone takes its
// place, or null when no memory is left.
inline void separateElements(QoArraySerial2& table) {
    std::unordered_set<const QoObject2*> seen;
    for (INT_PTR i = 0; i < table.GetSize(); ++i) {
        const QoObject2* const element = table.GetAt(i);
        if (element != nullptr && !seen.insert(element).second) table.SetAt(i, element->vClone());
    }
}

// For what any record base may have loaded: typed access relies on the records' class. Throws
// CArchiveException badClass, with the table empty, for null and for any other class.
inline void requireElements(QoArraySerial2& table, const CRuntimeClass* pClass) {
    separateElements(table);
    for (INT_PTR i = 0; i < table.GetSize(); ++i) {
        const CObject* const element = table.GetAt(i);
        if (element != nullptr && element->IsKindOf(pClass)) continue;
        deleteLoaded(table);
        AfxThrowArchiveException(CArchiveException::badClass);
    }
}

// Writes or reads the records of a table, which must be of class pClass, as QoArraySerial2 does.
inline void serializeTable(QoArraySerial2& table, CArchive& ar, const CRuntimeClass* pClass) {
    table.QoArraySerial2::Serialize(ar);
    if (!KnowsElementClass<QoArraySerial2> && ar.IsLoading()) requireElements(table, pClass);
}

}  // namespace NySe
