// QoArray2: an array of pointers to records, which it owns, sorts and searches.
#pragma once

#include <afxtempl.h>

#include <memory>
#include <new>
#include <vector>

#include "QoObject2.h"

// An owning array deletes the elements that it removes and those it holds when it is destroyed; its
// elements must be allocated by new and have no other owner. A copy held by an owning array is a
// clone, so that no element ever has two owners; an array that does not own its elements shares
// them. SetAt and SetSize are the class library's: the elements that they remove are not deleted.
// Sorting and searching need elements that are not null. One array may be used by one thread at a
// time.
template <class BASE, class OBJECT>
class QoArray2 : public CTypedPtrArray<BASE, OBJECT*> {
    using Base = CTypedPtrArray<BASE, OBJECT*>;

  public:
    QoArray2() = default;
    QoArray2(const QoArray2& other) : QoArray2() {
        m_deleteObject = other.m_deleteObject;
        *this = other;
    }
    ~QoArray2() override { QoArray2::RemoveAll(); }

    // Copies the sort criteria and the elements of `other`, which may share elements with this
    // array; the ownership flag is unchanged. Throws std::bad_alloc, with nothing changed, when an
    // element cannot be cloned.
    QoArray2& operator=(const QoArray2& other) {
        if (this == &other) return *this;
        Taken elements = takeFrom(other);
        RemoveAll();
        m_sortKey = other.m_sortKey;
        m_sorted = other.m_sorted;
        addTaken(elements, false);
        return *this;
    }

    // Compares under `key`: the first pair of elements that differ decides; if none does, the
    // shorter array is first.
    virtual QoSort::CompareResult vCompareTo(const QoArray2& other, short key) const {
        if (this == &other) return QoSort::equal;
        for (INT_PTR i = 0; i < GetSize() && i < other.GetSize(); ++i) {
            const QoSort::CompareResult result = this->GetAt(i)->vCompareTo(*other.GetAt(i), key);
            if (result != QoSort::equal) return result;
        }
        if (GetSize() == other.GetSize()) return QoSort::equal;
        return GetSize() < other.GetSize() ? QoSort::before : QoSort::after;
    }

    virtual const QoArray2& vCopyFrom(const QoArray2& other) { return *this = other; }

    // Returns the texts of at most `maxCount` elements (below 0: of all) with `separator` between
    // them, followed by `more` if some are omitted.
    virtual CString toString(short format, const CString& separator, int maxCount,
                             const CString& more) const {
        CString text;
        for (INT_PTR i = 0; i < GetSize(); ++i) {
            if (i == maxCount) return text + more;
            if (i > 0) text += separator;
            text += this->GetAt(i)->toString(format);
        }
        return text;
    }

    virtual INT_PTR GetSize() const { return Base::GetSize(); }

    virtual void RemoveAll() {
        if (m_deleteObject) deleteElements(0, GetSize());
        Base::RemoveAll();
    }

    // Called at the end of every search under the sort criteria, with the index found and how
    // `probe` compares with the element there (noOrder beyond the last); a derived array may change
    // both.
    virtual void onEndSearchIfSorted(const QoObject2&, bool, INT_PTR&,
                                     QoSort::CompareResult&) const {}

    // Deletes the removed elements when this array owns them.
    void RemoveAt(INT_PTR index, INT_PTR count = 1) {
        const bool inside = index >= 0 && count >= 0 && index <= GetSize();
        if (!inside || count > GetSize() - index) AfxThrowInvalidArgException();
        if (m_deleteObject) deleteElements(index, count);
        Base::RemoveAt(index, count);
    }

    void setSortCriteria(short key, bool sorted) {
        m_sortKey = key;
        m_sorted = sorted;
    }

    // Inserts in sorted order, after equal elements; at the end if there are no sort criteria.
    // Returns the index.
    INT_PTR add(OBJECT* element) {
        if (!m_sorted) return append(element);
        const INT_PTR index = searchIfSorted(element, true);
        this->InsertAt(index, element);
        return index;
    }

    // Inserts at the end, whatever the order. Returns the index.
    INT_PTR append(OBJECT* element) { return this->Add(element); }

    // Appends every element of `other`, which may be this array: clones when this array owns its
    // elements, the same pointers when it does not. Throws std::bad_alloc, with nothing added, when
    // an element cannot be cloned.
    void addFrom(const QoArray2& other) { addFrom(other, false); }
    // The same; sorted: each in sorted order.
    void addFrom(const QoArray2& other, bool sorted) {
        Taken elements = takeFrom(other);
        addTaken(elements, sorted);
    }

    // Returns the first element in index order that compares equal to `probe` under `key`, or null.
    // The array need not be sorted.
    OBJECT* find(const OBJECT* probe, short key) const {
        const INT_PTR index = lookFor(probe, key);
        return index >= 0 ? this->GetAt(index) : nullptr;
    }

    // Returns the index of that element, or -1.
    INT_PTR lookFor(const OBJECT* probe, short key) const {
        for (INT_PTR i = 0; i < GetSize(); ++i) {
            if (this->GetAt(i)->vCompareTo(*probe, key) == QoSort::equal) return i;
        }
        return -1;
    }

    // REQUIRES: the elements are in the order of the sort criteria. Returns the index where `probe`
    // belongs: before equal elements, or after them.
    INT_PTR searchIfSorted(const OBJECT* probe, bool afterEqual) const {
        INT_PTR low = 0;
        INT_PTR high = GetSize();
        while (low < high) {
            const INT_PTR middle = low + (high - low) / 2;
            const QoSort::CompareResult result = this->GetAt(middle)->vCompareTo(*probe, m_sortKey);
            if (result == QoSort::before || (afterEqual && result == QoSort::equal)) {
                low = middle + 1;
            } else {
                high = middle;
            }
        }
        QoSort::CompareResult result =
            low < GetSize() ? probe->vCompareTo(*this->GetAt(low), m_sortKey) : QoSort::noOrder;
        onEndSearchIfSorted(*probe, afterEqual, low, result);
        return low;
    }

    // Returns whether this array owns its elements.
    bool getDeleteObject() const { return m_deleteObject; }
    void setDeleteObject(bool deleteObject) { m_deleteObject = deleteObject; }

  private:
    struct DeleteIfOwned {
        bool owned;
        void operator()(OBJECT* element) const {
            if (owned) delete element;
        }
    };
    // Elements to be added to this array.
    using Taken = std::vector<std::unique_ptr<OBJECT, DeleteIfOwned>>;

    static OBJECT* cloneOf(const OBJECT* element) {
        if (element == nullptr) return nullptr;
        OBJECT* clone = element->vClone();
        if (clone == nullptr) throw std::bad_alloc();
        return clone;
    }

    Taken takeFrom(const QoArray2& other) const {
        Taken taken;
        taken.reserve(static_cast<size_t>(other.GetSize()));
        for (INT_PTR i = 0; i < other.GetSize(); ++i) {
            OBJECT* element = m_deleteObject ? cloneOf(other.GetAt(i)) : other.GetAt(i);
            taken.emplace_back(element, DeleteIfOwned{m_deleteObject});
        }
        return taken;
    }

    void addTaken(Taken& elements, bool sorted) {
        for (auto& element : elements) {
            if (sorted) {
                add(element.get());
            } else {
                append(element.get());
            }
            static_cast<void>(element.release());
        }
    }

    void deleteElements(INT_PTR index, INT_PTR count) {
        for (INT_PTR i = index; i < index + count; ++i) delete this->GetAt(i);
    }

    short m_sortKey = 0;
    bool m_sorted = false;
    bool m_deleteObject = true;
};
