// What tables do when their record base loads whatever the archive holds.
#include "NyServer/records/NySeTable.h"

#include <gtest/gtest.h>

#include "NyServer/records/NySeMessage.h"
#include "NyServer/records/NySeUser.h"
#include "tests/support/Thrown.h"

namespace {

class LoadedTable : public ::testing::Test {
  protected:
    NySeUser* append() {
        auto* const user = new NySeUser;
        user->setStrUserName(_T("anna"));
        m_table.append(user);
        return user;
    }
    int require() {
        return archiveCause([this] { NySe::requireElements(m_table, RUNTIME_CLASS(NySeUser)); });
    }

    QoArraySerial2 m_table;
};

TEST_F(LoadedTable, MayHoldRecordsOfItsClass) {
    NySeUser* const first = append();
    append();
    EXPECT_EQ(-1, require());
    EXPECT_EQ(2, m_table.GetSize());
    EXPECT_EQ(first, m_table.GetAt(0));
}

TEST_F(LoadedTable, RefusesNull) {
    append();
    m_table.append(nullptr);
    EXPECT_EQ(CArchiveException::badClass, require());
    EXPECT_EQ(0, m_table.GetSize());
}

TEST_F(LoadedTable, RefusesAnyOtherClass) {
    append();
    m_table.append(new NySeMessage);
    append();
    EXPECT_EQ(CArchiveException::badClass, require());
    EXPECT_EQ(0, m_table.GetSize());
    EXPECT_TRUE(m_table.getDeleteObject());
}

TEST_F(LoadedTable, HoldsACloneOfWhatCameAgain) {
    NySeUser* const user = append();
    m_table.append(user);
    EXPECT_EQ(-1, require());
    EXPECT_EQ(user, m_table.GetAt(0));
    NySeUser* const clone = NySeUser::cast(m_table.GetAt(1));
    ASSERT_NE(user, clone);
    EXPECT_EQ(user->getStrUserName(), clone->getStrUserName());
}

TEST_F(LoadedTable, DeletesWhatWasLoadedForAViewToo) {
    append();
    m_table.setDeleteObject(false);
    m_table.append(nullptr);
    EXPECT_EQ(CArchiveException::badClass, require());  // the sanitizers see what is left
    EXPECT_FALSE(m_table.getDeleteObject());
}

}  // namespace
