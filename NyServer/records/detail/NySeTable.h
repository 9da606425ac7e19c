// What tables need beyond the documented operations of the record base.
#pragma once

#include <afx.h>

#include <unordered_set>

#include "QoArraySerial2.h"

namespace NySe {

// Whether the record base can restrict a table to records of one class. Such a base refuses all
// others on loading, makes a copy for each reference to a record of the same table, and leaves the
// table empty if loading fails.
template <class TABLE>
concept RestrictsElementClass = requires(TABLE& table, const CRuntimeClass* pClass) {
    table.setElementClass(pClass);
};

template <class TABLE>
void setElementClass(TABLE& table, const CRuntimeClass* pClass) {
    if constexpr (RestrictsElementClass<TABLE>) table.setElementClass(pClass);
}

// Empties a table, with or without deleting its records.
inline void empty(QoArraySerial2& table, bool deleteRecords) {
    const bool owning = table.getDeleteObject();
    table.setDeleteObject(deleteRecords);
    table.RemoveAll();
    table.setDeleteObject(owning);
}

// Checks what a record base has loaded. Throws CArchiveException badClass for null and for a class
// other than pClass: typed access relies on it.
inline void requireElements(const QoArraySerial2& table, const CRuntimeClass* pClass) {
    for (INT_PTR i = 0; i < table.GetSize(); ++i) {
        const CObject* const element = table.GetAt(i);
        if (element == nullptr || !element->IsKindOf(pClass)) {
            AfxThrowArchiveException(CArchiveException::badClass);
        }
    }
}

// Replaces a record that was loaded again by reference with a copy, so that each has one owner.
// Throws CArchiveException badIndex if there is no copy. REQUIRES: requireElements.
inline void separateElements(QoArraySerial2& table, bool areCopiesComplete) {
    std::unordered_set<const CObject*> seen;
    for (INT_PTR i = 0; i < table.GetSize(); ++i) {
        const QoObject2* const element = table.GetAt(i);
        if (seen.insert(element).second) continue;
        QoObject2* const copy = areCopiesComplete ? element->vClone() : nullptr;
        if (copy == nullptr) AfxThrowArchiveException(CArchiveException::badIndex);
        table.SetAt(i, copy);
    }
}

// Loads a table by `load`, under a base that does not restrict the class. If that or a check fails,
// the table is empty afterwards; the records are not deleted, since one may be in the table twice
// or have another owner. A reference to a record of another table is not detected.
template <class LOAD>
void loadTable(QoArraySerial2& table, const CRuntimeClass* pClass, bool areCopiesComplete,
               LOAD load) {
    try {
        load();
        requireElements(table, pClass);
        separateElements(table, areCopiesComplete);
    } catch (...) {
        empty(table, false);
        throw;
    }
}

// Writes a table of records of class RECORD, which write their fields() and nothing else, as
// QoArraySerial2 does; all at once where the archive can do that.
template <class RECORD, class ARCHIVE>
void storeTable(QoArraySerial2& table, ARCHIVE& ar) {
    const auto fieldsOf = [](const RECORD& record) { return record.fields(); };
    if constexpr (requires(const CObject* const* records) {
                      ar.template WriteFields<RECORD>(records, size_t{}, fieldsOf);
                  }) {
        const size_t count = static_cast<size_t>(table.GetSize());
        ar.template WriteFields<RECORD>(table.GetData(), count, fieldsOf);
    } else {
        table.QoArraySerial2::Serialize(ar);
    }
}

// Writes or reads the records of a table, which must be of class pClass, as QoArraySerial2 does.
// areCopiesComplete: a copy of such a record holds all that the record does.
inline void serializeTable(QoArraySerial2& table, CArchive& ar, const CRuntimeClass* pClass,
                           bool areCopiesComplete = true) {
    const auto serialize = [&] { table.QoArraySerial2::Serialize(ar); };
    if (RestrictsElementClass<QoArraySerial2> || ar.IsStoring()) {
        serialize();
    } else {
        loadTable(table, pClass, areCopiesComplete, serialize);
    }
}

}  // namespace NySe
