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

    // Loading replaces the contents. The table owns the loaded records, or the caller if the table
    // does not own its records. A record is read under the schema of its class or the one that the
    // caller has set on the archive with VERSIONABLE_SCHEMA, whichever is older. A reference to a
    // record of this load is read as a clone of it, if clones are complete copies and the records
    // take no more memory than a small multiple of the bytes.
    //
    // Throws CArchiveException badClass for null and for a record that is not of the element class,
    // badIndex for any other reference: a record that was read elsewhere already has an owner.
    // Other exceptions pass. After an exception the table is empty and the records read are
    // deleted; the archive, which still refers to them, must not be read further.
    void Serialize(CArchive& ar) override;

    // Sets the class of which loaded records must be; QoObject2 by default. Only this
    // implementation has it.
    void setElementClass(const CRuntimeClass* elementClass) { m_elementClass = elementClass; }

  private:
    class BackReferences;

    void deleteLoaded();
    std::unique_ptr<QoObject2> readElement(CArchive& ar, BackReferences& backReferences) const;

    const CRuntimeClass* m_elementClass = nullptr;
};
