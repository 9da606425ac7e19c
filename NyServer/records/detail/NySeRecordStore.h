// Writes records whose class is known to the compiler.
#pragma once

#include "QoArraySerial2.h"

namespace NySe {

// What QoArraySerial2::Serialize writes. Most of the records are of class RECORD, whose
// `template <class TARGET> void storeFields(TARGET&) const` writes what its Serialize writes.
// ARCHIVE is CArchive or what takes its place; one that cannot write many objects at once leaves
// all to the table.
template <class RECORD, class ARCHIVE>
void storeRecords(ARCHIVE& ar, const QoArraySerial2& records) {
    if constexpr (requires(const CObject* const* objects) {
                      ar.template WriteObjects<RECORD>(objects, size_t{});
                  }) {
        ar.template WriteObjects<RECORD>(records.GetData(), static_cast<size_t>(records.GetSize()));
    } else {
        // Storing changes nothing.
        const_cast<QoArraySerial2&>(records).QoArraySerial2::Serialize(ar);
    }
}

// Fields that are numbers, one after the other.
template <class ARCHIVE, class... VALUES>
void storeValues(ARCHIVE& ar, const VALUES&... values) {
    if constexpr (requires { ar.WriteValues(values...); }) {
        ar.WriteValues(values...);
    } else {
        (ar << ... << values);
    }
}

}  // namespace NySe
