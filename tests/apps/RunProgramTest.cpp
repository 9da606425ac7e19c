#include "apps/common/RunProgram.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace {

constexpr int kFailure = 3;

struct Outcome {
    int status;
    std::string complaint;
};

template <class Run>
Outcome outcomeOf(Run run) {
    Outcome outcome;
    outcome.status = apps::runProgram(
        run, [&outcome](const char* text) { outcome.complaint = text; }, kFailure);
    return outcome;
}

void expectFailure(const Outcome& outcome, const std::string& complaint) {
    EXPECT_EQ(outcome.status, kFailure);
    EXPECT_EQ(outcome.complaint, complaint);
}

TEST(RunProgram, ReturnsTheProgramsResult) {
    const Outcome outcome = outcomeOf([] { return 2; });
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.complaint, "");
}

TEST(RunProgram, ReportsAnException) {
    expectFailure(outcomeOf([]() -> int { throw std::runtime_error("no window"); }), "no window");
}

TEST(RunProgram, ReportsThatItIsOutOfMemory) {
    expectFailure(outcomeOf([]() -> int { throw std::bad_alloc(); }), "out of memory");
    expectFailure(outcomeOf([]() -> int {
                      AfxThrowMemoryException();
                      return 0;
                  }),
                  "out of memory");
}

}  // namespace
