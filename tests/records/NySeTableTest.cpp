// What tables do when their record base loads whatever the archive holds.
#include "NyServer/records/detail/NySeTable.h"

#include <gtest/gtest.h>

#include "tests/records/RecordSamples.h"
#include "tests/support/Thrown.h"

namespace {

class LoadedTable : public ::testing::Test {
  protected:
    NySeUser* append() {
        NySeUser* const user = makeUser(_T("anna")).clone();
        m_table.append(user);
        return user;
    }
    template <class Load>
    int load(Load what, bool areCopiesComplete = true) {
        return archiveCause(
            [&] { NySe::loadTable(m_table, RUNTIME_CLASS(NySeUser), areCopiesComplete, what); });
    }
    void expectEmpty() {
        EXPECT_EQ(0, m_table.GetSize());
        EXPECT_TRUE(m_table.getDeleteObject());
    }

    QoArraySerial2 m_table;
};

TEST_F(LoadedTable, MayHoldRecordsOfItsClass) {
    const NySeUser* first = nullptr;
    EXPECT_EQ(-1, load([&] {
        first = append();
        append();
    }));
    EXPECT_EQ(2, m_table.GetSize());
    EXPECT_EQ(first, m_table.GetAt(0));
}

// What is not the table's is not deleted, and not asked for a copy: the class is checked first.
TEST_F(LoadedTable, RefusesNullAndAnyOtherClass) {
    NySeMessage foreign;
    NySeUser user;
    for (QoObject2* const element :
         {static_cast<QoObject2*>(nullptr), static_cast<QoObject2*>(&foreign)}) {
        EXPECT_EQ(CArchiveException::badClass, load([&] {
                      m_table.append(&user);
                      m_table.append(element);
                      m_table.append(element);
                  }));
        expectEmpty();
    }
}

TEST_F(LoadedTable, HoldsACopyOfARepeatedRecord) {
    NySeUser* user = nullptr;
    EXPECT_EQ(-1, load([&] {
        user = append();
        m_table.append(user);
    }));
    EXPECT_EQ(user, m_table.GetAt(0));
    const NySeUser* const copy = NySeUser::cast(m_table.GetAt(1));
    ASSERT_NE(user, copy);
    EXPECT_EQ(user->getStrUserName(), copy->getStrUserName());
}

TEST_F(LoadedTable, RefusesARepeatedRecordWithoutACompleteCopy) {
    NySeUser user;
    const auto twice = [&] {
        m_table.append(&user);
        m_table.append(&user);
    };
    EXPECT_EQ(CArchiveException::badIndex, load(twice, false));
    expectEmpty();
}

// Until then a record may be in it twice.
TEST_F(LoadedTable, IsEmptyWhenLoadingFails) {
    NySeUser user;
    EXPECT_EQ(CArchiveException::endOfFile, load([&] {
                  m_table.append(&user);
                  m_table.append(&user);
                  AfxThrowArchiveException(CArchiveException::endOfFile);
              }));
    expectEmpty();
}

}  // namespace
