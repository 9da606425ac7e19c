// How long something took each time.
#pragma once

#include <algorithm>
#include <chrono>
#include <cmath>
#include <vector>

namespace bench {

using Clock = std::chrono::steady_clock;

class Samples {
  public:
    void add(Clock::duration sample) {
        m_microseconds.push_back(std::chrono::duration<double, std::micro>(sample).count());
    }
    void add(const Samples& others) {
        m_microseconds.insert(m_microseconds.end(), others.m_microseconds.begin(),
                              others.m_microseconds.end());
    }

    template <class Action>
    void time(Action action) {
        const auto start = Clock::now();
        action();
        add(Clock::now() - start);
    }

    size_t count() const { return m_microseconds.size(); }

    // In microseconds; 0.5 is the median. 0 without samples.
    double quantile(double share) const {
        if (m_microseconds.empty()) return 0;
        std::vector<double> sorted(m_microseconds);
        const auto at =
            sorted.begin() + std::lround(share * static_cast<double>(sorted.size() - 1));
        std::nth_element(sorted.begin(), at, sorted.end());
        return *at;
    }
    double median() const { return quantile(0.5); }
    // How far the middle half spreads, in percent of the median.
    double spread() const { return 100 * (quantile(0.75) - quantile(0.25)) / median(); }

  private:
    std::vector<double> m_microseconds;
};

}  // namespace bench
