#include "apps/central/ProbeClock.h"

#include <algorithm>

namespace {

constexpr std::chrono::milliseconds kBetweenLooksForTheAnswer{50};
constexpr std::chrono::hours kLong{1};

}  // namespace

ProbeClock::milliseconds ProbeClock::pause() const {
    if (m_isAsking) return kBetweenLooksForTheAnswer;
    if (m_isStopped) return kLong;
    return std::max(milliseconds(0), std::chrono::ceil<milliseconds>(m_next - Clock::now()));
}

void ProbeClock::ask() {
    m_isAsking = true;
    m_next = Clock::now() + m_patience;
}

void ProbeClock::settle() {
    m_isAsking = false;
    m_next = Clock::now() + m_interval;
}

void ProbeClock::stop() {
    m_isAsking = false;
    m_isStopped = true;
}
