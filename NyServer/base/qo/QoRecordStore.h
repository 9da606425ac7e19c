// Writes records whose class is known to the compiler.
#pragma once

#include <afxcoll.h>

// A count, and each record in class-tagged object form, as QoArraySerial2 writes it. Most of the
// records are of class RECORD, whose `template <class TARGET> void storeFields(TARGET&) const`
// writes what its Serialize writes. ARCHIVE is CArchive or what takes its place; one that cannot
// write many objects at once is asked to write one at a time.
template <class RECORD, class ARCHIVE>
void qoStoreRecords(ARCHIVE& ar, const CObArray& records) {
    const CObject* const* const objects = records.GetData();
    const auto count = static_cast<size_t>(records.GetSize());
    if constexpr (requires { ar.template WriteObjects<RECORD>(objects, count); }) {
        ar.template WriteObjects<RECORD>(objects, count);
    } else {
        ar.WriteCount(count);
        for (size_t i = 0; i < count; ++i) ar.WriteObject(objects[i]);
    }
}

// Fields that are numbers, one after the other.
template <class ARCHIVE, class... VALUES>
void qoStoreValues(ARCHIVE& ar, const VALUES&... values) {
    if constexpr (requires { ar.WriteValues(values...); }) {
        ar.WriteValues(values...);
    } else {
        (ar << ... << values);
    }
}
