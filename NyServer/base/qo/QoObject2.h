// QoObject2: the base of every record.
#pragma once

#include <afx.h>

#include "NyServer/base/support/NyBaseApi.h"
#include "QoSort.h"

// An object that can be copied, cloned and compared without its class being known. One object may
// be used by one thread at a time.
class NYBASE_API QoObject2 : public CObject {
    DECLARE_DYNAMIC(QoObject2)
  public:
    // Returns a readable text; by default the class name.
    virtual CString toString(short format) const;

    // Returns a copy of the same class, owned by the caller; null when out of memory.
    virtual QoObject2* vClone() const = 0;

    // Copies the contents of `other` if it is of the same kind; the base class copies nothing.
    // Returns this object.
    virtual const QoObject2& vCopyFrom(const QoObject2& other);

    // Compares with `other` under `key`. Returns noOrder for an unknown key or kind of object.
    virtual QoSort::CompareResult vCompareTo(const QoObject2& other, short key) const;

  protected:
    QoObject2() = default;
    // The class library's root object is not copyable.
    // NOLINTNEXTLINE(bugprone-copy-constructor-init,readability-redundant-member-init)
    QoObject2(const QoObject2&) : CObject() {}
};
