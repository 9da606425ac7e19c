// Stands in for Google Benchmark where that is not built for Windows: as much of its interface as
// bench-codec uses, with the same arguments and the same lines of CSV. Times are those of a clock.
#pragma once

#include <chrono>
#include <cstdio>
#include <functional>
#include <map>
#include <regex>
#include <string>
#include <utility>
#include <vector>

namespace benchmark {

template <class T>
void DoNotOptimize(T&& value) {
    asm volatile("" : : "g"(&value) : "memory");
}
inline void ClobberMemory() {
    asm volatile("" : : : "memory");
}

class State {
  public:
    explicit State(size_t iterations) : m_iterations(iterations) {}

    struct [[maybe_unused]] Iteration {};

    // Counts the iterations of the loop that is timed.
    class Iterator {
      public:
        Iterator(State& state, size_t left) : m_state(state), m_left(left) {}
        bool operator!=(const Iterator&) {
            if (m_left != 0) return true;
            m_state.m_end = Clock::now();
            return false;
        }
        void operator++() { --m_left; }
        Iteration operator*() const { return {}; }

      private:
        State& m_state;
        size_t m_left;
    };
    Iterator begin() {
        m_begin = Clock::now();
        return {*this, m_iterations};
    }
    Iterator end() { return {*this, 0}; }

    void SkipWithError(const char* what) { error = what; }
    double nanoseconds() const {
        return std::chrono::duration<double, std::nano>(m_end - m_begin).count();
    }

    std::map<std::string, double> counters;
    std::string error;

  private:
    using Clock = std::chrono::steady_clock;

    size_t m_iterations;
    Clock::time_point m_begin;
    Clock::time_point m_end;
};

struct Settings {
    std::vector<std::pair<std::string, std::function<void(State&)>>> benchmarks;
    std::string filter = ".";
    double nanoseconds = 5e8;  // for one benchmark
    bool isList = false;
    std::string unknown;
};
inline Settings settings;

inline void RegisterBenchmark(const char* name, std::function<void(State&)> run) {
    settings.benchmarks.emplace_back(name, std::move(run));
}

inline void Initialize(int* argc, char** argv) {
    for (int i = 1; i < *argc; ++i) {
        const std::string argument = argv[i];
        const std::string value = argument.substr(argument.find('=') + 1);
        if (argument.rfind("--benchmark_filter=", 0) == 0)
            settings.filter = value;
        else if (argument.rfind("--benchmark_min_time=", 0) == 0)
            settings.nanoseconds = std::stod(value) * 1e9;
        else if (argument == "--benchmark_list_tests")
            settings.isList = true;
        else if (argument != "--benchmark_format=csv")
            settings.unknown = argument;
    }
}

inline bool ReportUnrecognizedArguments(int, char**) {
    if (!settings.unknown.empty()) std::fprintf(stderr, "unknown: %s\n", settings.unknown.c_str());
    return !settings.unknown.empty();
}

// Doubles the iterations until they take at least the time set.
inline void runOne(const std::string& name, const std::function<void(State&)>& run) {
    for (size_t iterations = 1;; iterations *= 2) {
        State state(iterations);
        run(state);
        if (!state.error.empty()) {
            std::fprintf(stderr, "%s: %s\n", name.c_str(), state.error.c_str());
            return;
        }
        if (state.nanoseconds() < settings.nanoseconds) continue;
        std::printf("\"%s\",%g,%g\n", name.c_str(),
                    state.nanoseconds() / static_cast<double>(iterations),
                    state.counters["records"]);
        return;
    }
}

inline void RunSpecifiedBenchmarks() {
    const std::regex filter(settings.filter);
    if (!settings.isList) std::puts("name,cpu_time,\"records\"");
    for (const auto& [name, run] : settings.benchmarks) {
        if (!std::regex_search(name, filter)) continue;
        if (settings.isList)
            std::puts(name.c_str());
        else
            runOne(name, run);
    }
}

inline void Shutdown() {}

}  // namespace benchmark
