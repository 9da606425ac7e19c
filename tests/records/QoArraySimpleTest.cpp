#include "NyServer/records/QoArraySimple.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "tests/support/ArchiveBytes.h"
#include "tests/support/Thrown.h"

namespace {

using Longs = std::vector<LONG>;

class QoArraySimpleTest : public ::testing::Test {
  protected:
    NySe::QoArraySimple<LONG> m_array;

    void insertAll(const Longs& values) {
        for (const LONG value : values) m_array.insertSorted(value);
    }
    Longs values() const { return {m_array.GetData(), m_array.GetData() + m_array.GetSize()}; }
};

TEST_F(QoArraySimpleTest, KeepsAscendingOrder) {
    EXPECT_EQ(0, m_array.insertSorted(5));
    EXPECT_EQ(0, m_array.insertSorted(-1));
    EXPECT_EQ(1, m_array.insertSorted(3));
    EXPECT_EQ(3, m_array.insertSorted(9));
    EXPECT_EQ((Longs{-1, 3, 5, 9}), values());
}

TEST_F(QoArraySimpleTest, ComparesAsSignedNumbers) {
    insertAll({0, INT32_MIN, INT32_MAX, -1});
    EXPECT_EQ((Longs{INT32_MIN, -1, 0, INT32_MAX}), values());
}

TEST_F(QoArraySimpleTest, RefusesDuplicatesUnlessTheyAreAllowed) {
    insertAll({1, 2, 3});
    for (const LONG value : {1, 2, 3}) EXPECT_EQ(-1, m_array.insertSorted(value));
    EXPECT_EQ((Longs{1, 2, 3}), values());
    m_array.setAllowDuplicates(1);
    EXPECT_EQ(1, m_array.insertSorted(2));
    EXPECT_EQ((Longs{1, 2, 2, 3}), values());
}

TEST_F(QoArraySimpleTest, InsertsADuplicateBeforeItsEquals) {
    m_array.setAllowDuplicates(1);
    insertAll({2, 2, 2});
    EXPECT_EQ(0, m_array.insertSorted(2));
}

TEST_F(QoArraySimpleTest, AgreesWithASortedListOnRandomValues) {
    std::mt19937 random(20150601);
    RecordProperty("seed", 20150601);
    m_array.setAllowDuplicates(1);
    Longs model;
    for (int i = 0; i < 2000; ++i) {
        const LONG value = static_cast<LONG>(random() % 500) - 250;
        const auto place = std::lower_bound(model.begin(), model.end(), value);
        ASSERT_EQ(place - model.begin(), m_array.insertSorted(value));
        model.insert(place, value);
    }
    EXPECT_EQ(model, values());
}

TEST_F(QoArraySimpleTest, RemovingTheFirstShiftsTheRestDown) {
    insertAll({1, 2, 3});
    m_array.RemoveAt(0, 1);
    EXPECT_EQ((Longs{2, 3}), values());
}

TEST_F(QoArraySimpleTest, RemoveAtChecksItsArguments) {
    insertAll({1, 2, 3});
    const auto refuses = [&](INT_PTR index, INT_PTR count) {
        return throwsA<CInvalidArgException>([&] { m_array.RemoveAt(index, count); });
    };
    EXPECT_TRUE(refuses(-1, 1));
    EXPECT_TRUE(refuses(0, -1));
    EXPECT_TRUE(refuses(3, 1));
    EXPECT_TRUE(refuses(1, 3));
    EXPECT_EQ((Longs{1, 2, 3}), values());
}

TEST_F(QoArraySimpleTest, TravelsAsACountAndFourBytesEach) {
    insertAll({1, 260, -1});
    const Bytes bytes = stored([&](CArchive& ar) { m_array.Serialize(ar); });
    EXPECT_EQ(hex("0300 FFFFFFFF 01000000 04010000"), toHex(bytes));
    NySe::QoArraySimple<LONG> loaded;
    loaded.insertSorted(77);
    Loading loading(bytes);
    loaded.Serialize(loading.ar);
    ASSERT_EQ(3, loaded.GetSize());
    EXPECT_EQ(-1, loaded.GetAt(0));
    EXPECT_EQ(260, loaded.GetAt(2));
}

TEST_F(QoArraySimpleTest, ReadsNoMoreThanIsThere) {
    for (const char* text : {"", "03", "0300", "0300 01000000 02000000 030000", "FFFF", "FFFF 0000",
                             "FFFF FFFFFFFF 01000000"}) {
        Loading loading(fromHex(text));
        EXPECT_EQ(CArchiveException::endOfFile,
                  archiveCause([&] { m_array.Serialize(loading.ar); }))
            << text;
    }
}

}  // namespace
