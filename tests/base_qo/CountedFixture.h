// A fixture that expects every test to leave no record behind.
#pragma once

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "tests/base_qo/Counted.h"

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

    // Puts records of these numbers at the end of the table.
    static void appendAll(CountedTable& table, const std::vector<int>& numbers) {
        for (const int number : numbers) table.append(new Counted(number));
    }

    static std::vector<int> numbersOf(const CountedTable& table) {
        std::vector<int> numbers;
        for (INT_PTR i = 0; i < table.GetSize(); ++i) numbers.push_back(table.at(i)->m_number);
        return numbers;
    }

    // Number and group of each.
    static std::vector<std::pair<int, int>> pairsOf(const CountedTable& table) {
        std::vector<std::pair<int, int>> pairs;
        for (INT_PTR i = 0; i < table.GetSize(); ++i) {
            pairs.emplace_back(table.at(i)->m_number, table.at(i)->m_group);
        }
        return pairs;
    }
};

using Numbers = std::vector<int>;
using Pairs = std::vector<std::pair<int, int>>;
