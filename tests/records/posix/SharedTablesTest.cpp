// Many readers of one table at a time.
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#include "tests/records/FilledTables.h"

namespace {

constexpr int kThreads = 4;
constexpr int kRounds = 20;

TEST(SharedTables, GiveEveryReaderTheRightResults) {
    const FilledTables tables;
    std::atomic<int> wrong = 0;
    std::vector<std::thread> readers;
    for (int reader = 0; reader < kThreads; ++reader) {
        readers.emplace_back([&, reader] {
            for (int i = 0; i < kRounds * FilledTables::kRecords; ++i) {
                // Each from another place on, so that no two ask for the same.
                const int record = (i + reader * 25) % FilledTables::kRecords;
                if (!tables.findsAll(record)) ++wrong;
            }
        });
    }
    for (std::thread& reader : readers) reader.join();
    EXPECT_EQ(0, wrong);
}

}  // namespace
