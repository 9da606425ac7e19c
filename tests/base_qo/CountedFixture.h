// A fixture that expects every test to leave no record behind.
#pragma once

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "tests/base_qo/Counted.h"

using Numbers = std::vector<int>;
using Pairs = std::vector<std::pair<int, int>>;

class CountedFixture : public ::testing::Test {
  protected:
    CountedFixture() {
        Counted::deleted = 0;
        Counted::clonesLeft = -1;
    }
    // Runs when the members of the derived fixture are gone.
    ~CountedFixture() override {
        EXPECT_EQ(0, Counted::alive);
        EXPECT_EQ(0, Stranger::alive);
    }

    // Number and group of each.
    static Pairs pairsOf(const CountedTable& table) {
        Pairs pairs;
        for (INT_PTR i = 0; i < table.GetSize(); ++i) {
            pairs.emplace_back(table.at(i)->m_number, table.at(i)->m_group);
        }
        return pairs;
    }
    static Numbers numbersOf(const CountedTable& table) {
        Numbers numbers;
        for (const auto& [number, group] : pairsOf(table)) numbers.push_back(number);
        return numbers;
    }
};
