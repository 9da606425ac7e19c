// Records and a table that show who owns what.
#pragma once

#include <vector>

#include "QoArraySerial2.h"

// Key 1: number; key 2: group. Counts its living objects and the deleted ones. 8 bytes in an
// archive: number, group.
class Counted : public QoObject2 {
    DECLARE_SERIAL(Counted)
  public:
    explicit Counted(int number = 0, int group = 0) : m_number(number), m_group(group) { ++alive; }
    Counted(const Counted& other) : Counted(other.m_number, other.m_group) {}
    Counted& operator=(const Counted&) = delete;
    ~Counted() override {
        --alive;
        ++deleted;
    }

    void Serialize(CArchive& ar) override;
    CString toString(short format) const override;
    QoObject2* vClone() const override;
    QoSort::CompareResult vCompareTo(const QoObject2& other, short key) const override;

    int m_number;
    int m_group;
    UINT m_schema = 0;  // what the archive gave while it was read

    static int alive;
    static int deleted;
    static int clonesLeft;  // vClone gives null when none is left; below 0: never
};

// A kind of Counted, for tables that accept the base.
class SubCounted : public Counted {
    DECLARE_SERIAL(SubCounted)
};

// A record that no table of Counted may hold. Nothing in an archive.
class Stranger : public QoObject2 {
    DECLARE_SERIAL(Stranger)
  public:
    Stranger() { ++alive; }
    Stranger(const Stranger&) = delete;
    Stranger& operator=(const Stranger&) = delete;
    ~Stranger() override { --alive; }
    QoObject2* vClone() const override { return new Stranger; }

    static int alive;
};

class CountedTable : public QoArraySerial2 {
    DECLARE_SERIAL(CountedTable)
  public:
    explicit CountedTable(unsigned long flags = 0) : QoArraySerial2(flags) {
        setSortCriteria(1, true);
        setElementClass(RUNTIME_CLASS(Counted));
    }
    // Records of these numbers in this order.
    explicit CountedTable(const std::vector<int>& numbers) : CountedTable() {
        for (const int number : numbers) append(new Counted(number));
    }
    Counted* at(INT_PTR index) const { return static_cast<Counted*>(GetAt(index)); }
};
