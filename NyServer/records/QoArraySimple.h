// QoArraySimple: a sorted array of plain values.
#pragma once

#include <afxtempl.h>

namespace NySe {

// Kept in ascending order by insertSorted. One array may be used by one thread at a time.
template <class TYPE>
class QoArraySimple : public CArray<TYPE, const TYPE&> {
  public:
    // Sets whether a value may occur more than once; by default it may not.
    void setAllowDuplicates(int allow) { m_allowDuplicates = allow; }

    // Inserts before the first element that is not less. Returns the index, or -1, with nothing
    // inserted, if the value is present and duplicates are not allowed.
    INT_PTR insertSorted(const TYPE& value) {
        INT_PTR low = 0;
        INT_PTR high = this->GetSize();
        while (low < high) {
            const INT_PTR middle = (low + high) / 2;
            if (this->GetAt(middle) < value) {
                low = middle + 1;
            } else {
                high = middle;
            }
        }
        const bool held = low < this->GetSize() && this->GetAt(low) == value;
        if (held && m_allowDuplicates == 0) return -1;
        this->InsertAt(low, value);
        return low;
    }

  private:
    int m_allowDuplicates = 0;
};

}  // namespace NySe
