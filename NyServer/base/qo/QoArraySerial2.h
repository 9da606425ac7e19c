// QoArraySerial2: a table of records with an archive form.
#pragma once

#include <memory>

#include "NyServer/base/support/NyBaseApi.h"
#include "QoArray2.h"

// Archive form: a count, then each record in class-tagged object form.
class NYBASE_API QoArraySerial2 : public QoArray2<CObArray, QoObject2> {
    DECLARE_DYNAMIC(QoArraySerial2)
  public:
    // The flag word of a table that does not own its records.
    static constexpr unsigned long kDoNotDelete = 0x10000;

    QoArraySerial2() = default;
    explicit QoArraySerial2(unsigned long flags) { setDeleteObject((flags & kDoNotDelete) == 0); }

    // Loading replaces the contents. The loaded records are the table's; a table that does not own
    // its records leaves them to the caller. A record is read under the schema of its class or that
    // which the caller has set on the archive with VERSIONABLE_SCHEMA, whichever is older. A
    // reference to a record that this load has read gives a clone of it, as long as that is a
    // complete copy and the records take no more memory than a small multiple of the bytes.
    //
    // Throws CArchiveException badClass for null and for a record that is not of the element class,
    // badIndex for any other reference: what was read elsewhere has an owner already. Whatever else
    // goes wrong passes through; the table is empty then, what had been read is deleted, and nobody
    // may read on from the archive, which remembers it.
    void Serialize(CArchive& ar) override;

    // The class that loaded records must be of; QoObject2 unless a table says more. Of this library
    // alone.
    void setElementClass(const CRuntimeClass* elementClass) { m_elementClass = elementClass; }

  private:
    class BackReferences;

    void deleteLoaded();
    std::unique_ptr<QoObject2> readElement(CArchive& ar, BackReferences& backReferences) const;

    const CRuntimeClass* m_elementClass = nullptr;
};
