// What a sorted array of numbers adds to the class library's array.
#include "NyServer/records/QoArraySimple.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace {

using Longs = std::vector<LONG>;

class QoArraySimpleTest : public ::testing::Test {
  protected:
    NySe::QoArraySimple<LONG> m_array;

    Longs inserted(const Longs& values) {
        Longs indices;
        for (const LONG value : values) {
            indices.push_back(static_cast<LONG>(m_array.insertSorted(value)));
        }
        return indices;
    }
    Longs values() const { return {m_array.GetData(), m_array.GetData() + m_array.GetSize()}; }
};

TEST_F(QoArraySimpleTest, KeepsAscendingOrder) {
    EXPECT_EQ((Longs{0, 0, 1, 3, 0, 5}), inserted({5, -1, 3, 9, INT32_MIN, INT32_MAX}));
    EXPECT_EQ((Longs{INT32_MIN, -1, 3, 5, 9, INT32_MAX}), values());
}

TEST_F(QoArraySimpleTest, RefusesDuplicatesUnlessTheyAreAllowed) {
    inserted({1, 2, 3});
    EXPECT_EQ((Longs{-1, -1, -1}), inserted({1, 2, 3}));
    EXPECT_EQ((Longs{1, 2, 3}), values());
    m_array.setAllowDuplicates(1);
    EXPECT_EQ((Longs{1}), inserted({2}));
    EXPECT_EQ((Longs{1, 2, 2, 3}), values());
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

}  // namespace
