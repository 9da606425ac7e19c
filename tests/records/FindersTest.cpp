// What the finders of every table find: the first record that compares equal, as lookFor finds it.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "NyServer/records/NySeConnectionArray.h"
#include "NyServer/records/NySeLockArray.h"
#include "NyServer/records/NySeUserPtrArray.h"

namespace {

// A table, its records, and the key under which a probe with a text finds what the finder does.
template <class TABLE, class RECORD, auto SET_TEXT, short KEY>
struct Kind {
    using Table = TABLE;
    using Record = RECORD;
    static void name(Record& record, const CString& text) { (record.*SET_TEXT)(text); }
    static constexpr short kKey = KEY;
};
using Locks = Kind<NySeLockArray, NySeLock, &NySeLock::setStrLockName, 1>;
using Users = Kind<NySeUserPtrArray, NySeUser, &NySeUser::setStrUserName, 1>;
using Connections = Kind<NySeConnectionArray, NySeConnection, &NySeConnection::setStrConnection, 2>;

INT_PTR findIn(const NySeLockArray& table, const CString& text) {
    return table.lookForLockName(text);
}
INT_PTR findIn(const NySeUserPtrArray& table, const CString& text) {
    const NySeUser* const found = table.findByUserName(text);
    for (INT_PTR i = 0; found != nullptr; ++i) {
        if (table.QoArraySerial2::GetAt(i) == found) return i;
    }
    return -1;
}
INT_PTR findIn(const NySeConnectionArray& table, const CString& text) {
    const INT_PTR index = table.lookForConnection(text);
    EXPECT_EQ(index < 0 ? nullptr : table.GetAt(index), table.findByConnection(text));
    return index;
}

// Compares as `m_answer` says.
template <class Record>
class StubbornRecord : public Record {
  public:
    explicit StubbornRecord(QoSort::CompareResult answer) : m_answer(answer) {}
    QoSort::CompareResult vCompareTo(const QoObject2&, short) const override { return m_answer; }

  private:
    const QoSort::CompareResult m_answer;
};

// Compares as if its name were abc.
template <class KIND>
class RecordAbc : public KIND::Record {
  public:
    QoSort::CompareResult vCompareTo(const QoObject2& other, short key) const override {
        typename KIND::Record abc;
        KIND::name(abc, _T("abc"));
        return abc.vCompareTo(other, key);
    }
};

template <class KIND>
class Finders : public ::testing::Test {
  protected:
    using Record = typename KIND::Record;

    void append(const CString& text) {
        Record record;
        KIND::name(record, text);
        m_table.append(record.clone());
    }
    INT_PTR find(const CString& text) const { return findIn(m_table, text); }
    INT_PTR byProbe(const CString& text) const {
        Record probe;
        KIND::name(probe, text);
        return m_table.lookFor(&probe, KIND::kKey);
    }

    typename KIND::Table m_table;
};

using Kinds = ::testing::Types<Locks, Users, Connections>;
TYPED_TEST_SUITE(Finders, Kinds);

CString text(const char* characters) {
    return CString(characters);
}

// Around the number of characters that are compared at once, and with what looks like another
// letter case but is none: @ and `, [ and {, and the same beyond ASCII; and with a zero character.
std::vector<CString> awkwardTexts() {
    const CString zero(static_cast<WCHAR>(0), 1);
    std::vector<CString> ends = {zero + text("x"), zero + text("yz"),
                                 zero + text("tail that is long")};
    for (const int accent : {0xC4, 0xE4, 0x100, 0x120}) {
        ends.push_back(CString(static_cast<WCHAR>(accent)));
    }
    for (const char* end : {"", "@", "`", "[", "{", "Z", "z", "1", "!"}) ends.push_back(text(end));
    std::vector<CString> all;
    for (const char* start : {"", "a", "ab", "abc", "abcd", "ABCD", "abcde", "a longer start "}) {
        for (const CString& end : ends) all.push_back(text(start) + end);
    }
    return all;
}

TYPED_TEST(Finders, FindWhatAProbeFinds) {
    for (const CString& one : awkwardTexts()) this->append(one);
    for (const CString& sought : awkwardTexts()) {
        ASSERT_EQ(this->byProbe(sought), this->find(sought)) << sought.GetLength();
        ASSERT_GE(this->find(sought), 0);
        const CString missing = text("#") + sought;
        ASSERT_EQ(-1, this->find(missing));
    }
}

TYPED_TEST(Finders, CompareUpToAZeroCharacter) {
    this->append(CString(_T("head\0tail"), 9));
    EXPECT_EQ(0, this->find(text("HEAD")));
    EXPECT_EQ(0, this->find(CString(_T("head\0other"), 10)));
    EXPECT_EQ(-1, this->find(text("head tail")));
}

TYPED_TEST(Finders, FindTheFirstOfEqualNames) {
    EXPECT_EQ(-1, this->find(text("")));
    for (const char* one : {"other", "Name it", "NAME IT", "name it"}) this->append(text(one));
    EXPECT_EQ(1, this->find(text("name IT")));
}

TYPED_TEST(Finders, FindARenamedRecord) {
    for (const char* one : {"a", "b", "c"}) this->append(text(one));
    EXPECT_EQ(1, this->find(text("b")));
    TypeParam::name(*this->m_table.GetAt(1), text("renamed"));
    EXPECT_EQ(1, this->find(text("RENAMED")));
    EXPECT_EQ(-1, this->find(text("b")));
}

// One record twice in a table that does not own it.
TYPED_TEST(Finders, FindARenamedRecordWhoseOtherEntryIsRemoved) {
    typename TypeParam::Record record;
    typename TypeParam::Table view(QoArraySerial2::kDoNotDelete);
    view.append(&record);
    view.append(&record);
    EXPECT_EQ(-1, findIn(view, text("name")));
    view.RemoveAt(0);
    TypeParam::name(record, text("name"));
    EXPECT_EQ(0, findIn(view, text("NAME")));
}

TYPED_TEST(Finders, LetADerivedRecordCompareInItsOwnWay) {
    using Stubborn = StubbornRecord<typename TypeParam::Record>;
    this->append(text("first"));
    this->m_table.append(new Stubborn(QoSort::noOrder));
    this->m_table.append(new RecordAbc<TypeParam>);
    EXPECT_EQ(-1, this->find(text("")));
    EXPECT_EQ(2, this->find(text("ABC")));
    this->m_table.append(new Stubborn(QoSort::equal));
    this->append(text("last"));
    EXPECT_EQ(0, this->find(text("First")));
    EXPECT_EQ(3, this->find(text("last")));
}

TYPED_TEST(Finders, SkipRecordsOfAnotherKind) {
    struct Foreign : QoObject2 {
        QoObject2* vClone() const override { return nullptr; }
    };
    this->m_table.QoArraySerial2::append(new Foreign);
    this->append(text("name"));
    EXPECT_EQ(1, this->find(text("Name")));
    EXPECT_EQ(-1, this->find(text("")));
}

// The lock that is given is the probe: of a lock that is equal to itself alone it finds that one.
TEST(LockFinders, ReleaseTheLockThatComparesEqualToTheGivenOne) {
    class OnlyItself : public NySeLock {
      public:
        QoSort::CompareResult vCompareTo(const QoObject2& other, short) const override {
            return &other == this ? QoSort::equal : QoSort::noOrder;
        }
    };
    NySeLockArray table;
    NySeUser user;
    table.append(new OnlyItself);
    table.append(new OnlyItself);
    EXPECT_FALSE(table.removeLock(*std::make_unique<NySeLock>(), user));
    EXPECT_TRUE(table.removeLock(*table.GetAt(1), user));
    EXPECT_EQ(1, table.GetSize());
}

}  // namespace
