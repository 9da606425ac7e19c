// The operations that all of the class library's arrays share. Internal: use CArray, CObArray or
// CStringArray.
#pragma once

#include "NyServer/base/mfc/CArchive.h"
#include "NyServer/base/support/detail/SmallBlocks.h"

#include <utility>
#include <vector>

// Indices and counts outside the array throw CInvalidArgException. One array may be used by one
// thread at a time. Elements are values; if they are pointers, the array does not own the objects.
template <class TYPE, class ARG_TYPE = const TYPE&>
class AfxArray : public CObject {
  public:
    INT_PTR GetSize() const { return static_cast<INT_PTR>(m_elements.size()); }
    INT_PTR GetCount() const { return GetSize(); }
    INT_PTR GetUpperBound() const { return GetSize() - 1; }
    BOOL IsEmpty() const { return m_elements.empty(); }

    // New elements are null or empty.
    void SetSize(INT_PTR size) {
        require(size >= 0);
        m_elements.resize(static_cast<size_t>(size));
    }
    void RemoveAll() { Elements().swap(m_elements); }

    const TYPE& GetAt(INT_PTR index) const { return m_elements[checked(index)]; }
    TYPE& ElementAt(INT_PTR index) { return m_elements[checked(index)]; }
    const TYPE& operator[](INT_PTR index) const { return GetAt(index); }
    TYPE& operator[](INT_PTR index) { return ElementAt(index); }
    void SetAt(INT_PTR index, ARG_TYPE element) { ElementAt(index) = element; }

    const TYPE* GetData() const { return m_elements.data(); }
    TYPE* GetData() { return m_elements.data(); }

    void Copy(const AfxArray& other) { m_elements = other.m_elements; }

    // Returns the index of the new last element.
    INT_PTR Add(ARG_TYPE element) {
        if (m_elements.capacity() == 0) m_elements.reserve(kFewElements);
        m_elements.push_back(element);
        return GetUpperBound();
    }
    // These two grow the array to reach `index`; the gap is filled with null or empty elements.
    void SetAtGrow(INT_PTR index, ARG_TYPE element) {
        if (index >= GetSize()) {
            InsertAt(index, element);
        } else {
            SetAt(index, element);
        }
    }
    void InsertAt(INT_PTR index, ARG_TYPE element, INT_PTR count = 1) {
        require(index >= 0 && count > 0);
        const TYPE kept = element;  // it may be one of the array's own, which growing moves
        if (index > GetSize()) SetSize(index);
        m_elements.insert(m_elements.begin() + index, static_cast<size_t>(count), kept);
    }
    void RemoveAt(INT_PTR index, INT_PTR count = 1) {
        require(index >= 0 && count >= 0 && index <= GetSize() && count <= GetSize() - index);
        m_elements.erase(m_elements.begin() + index, m_elements.begin() + index + count);
    }

  protected:
    using Elements = std::vector<TYPE, SmallBlockAllocator<TYPE>>;

    AfxArray() = default;

    static void require(bool condition) {
        if (!condition) AfxThrowInvalidArgException();
    }

  private:
    size_t checked(INT_PTR index) const {
        require(index >= 0 && index < GetSize());
        return static_cast<size_t>(index);
    }

    static constexpr size_t kFewElements = 4;  // most arrays hold no more and never grow

    Elements m_elements;
};

// Reads an array in archive form: a count, then each element. The contents are replaced. The array
// grows as elements are read, whatever count is announced.
template <class ARRAY, class TYPE>
void afxLoadElements(CArchive& ar, ARRAY& array, TYPE element) {
    array.RemoveAll();
    for (size_t left = ar.ReadCount(); left > 0; --left) {
        ar >> element;
        array.Add(element);
    }
}
