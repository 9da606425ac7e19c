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
    // A text for people; the class name unless a class says more.
    virtual CString toString(short format) const;

    // A new object of the same class and contents, owned by the caller; null when no memory is
    // left.
    virtual QoObject2* vClone() const = 0;

    // Takes the contents of `other` when it is of the same kind; this one takes nothing. Returns
    // this object.
    virtual const QoObject2& vCopyFrom(const QoObject2& other);

    // How this object sorts against `other` under `key`; noOrder for a key or an object of a kind
    // that it does not know.
    virtual QoSort::CompareResult vCompareTo(const QoObject2& other, short key) const;

  protected:
    QoObject2() = default;
    // The class library's root object is not copyable.
    // NOLINTNEXTLINE(bugprone-copy-constructor-init,readability-redundant-member-init)
    QoObject2(const QoObject2&) : CObject() {}
};
