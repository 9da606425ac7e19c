// The time to find a lock in a table by its name, compared with a plain loop over the names.
//
//   lookForLockName/N   the last lock of the table
//   lookForMissing/N    a name that is not in the table
//   addLock/N           a request for the last lock, which its holder refuses
//   removeLock/N        the last lock, which the user does not hold
//   plainLoop/N         CompareNoCase with each name up to the last lock
//   alikeNames/N        lookForLockName of the last lock where all names begin alike
//   alikePlainLoop/N    the plain loop there
//   N = 1,000, 10,000, 100,000 locks
//
// None of them changes the table. All are linear in N.
#include <string>

#include "bench/Measure.h"
#include "NyServer/records/NySeShareMode.h"

namespace {

constexpr unsigned int kExclusive = NySe::exclude1 | NySe::exclude2;
constexpr unsigned int kReading = NySe::access1;

// A table whose last lock excludes everybody else.
class LockTable {
  public:
    explicit LockTable(const benchmark::State& state) {
        bench::fill(m_table, static_cast<size_t>(state.range(0)));
        m_last = m_table.GetSize() - 1;
        m_table.GetAt(m_last)->getHolders().GetAt(0)->setLockState(kExclusive);
        m_name = m_table.GetAt(m_last)->getStrLockName();
        m_stranger.setSessionNumber(-7);
    }

    void makeNamesAlike() {
        for (INT_PTR i = 0; i < m_table.GetSize(); ++i) {
            const std::string number = std::to_string(1'000'000 + i);
            m_table.GetAt(i)->setStrLockName(CString(("project/storey/a/" + number).c_str()));
        }
        m_name = m_table.GetAt(m_last)->getStrLockName();
    }

    INT_PTR plainLoop(const CString& name) const {
        for (INT_PTR i = 0; i < m_table.GetSize(); ++i) {
            if (m_table.GetAt(i)->getStrLockName().CompareNoCase(name) == 0) return i;
        }
        return -1;
    }

    NySeLockArray m_table;
    NySeUser m_stranger;
    CString m_name;
    INT_PTR m_last = 0;
};

template <class Call>
void timeCall(benchmark::State& state, INT_PTR expected, Call call) {
    for (auto _ : state) {
        INT_PTR result = call();
        if (result != expected) bench::fail(state, "wrong answer");
        benchmark::DoNotOptimize(result);
    }
    bench::count(state, 0, static_cast<size_t>(state.range(0)));
}

void lookForLockName(benchmark::State& state) {
    LockTable table(state);
    timeCall(state, table.m_last, [&] { return table.m_table.lookForLockName(table.m_name); });
}

void lookForMissing(benchmark::State& state) {
    LockTable table(state);
    const CString missing = table.m_name + _T("!");
    timeCall(state, -1, [&] { return table.m_table.lookForLockName(missing); });
}

void addLock(benchmark::State& state) {
    LockTable table(state);
    timeCall(state, -1,
             [&] { return table.m_table.addLock(table.m_name, table.m_stranger, kReading); });
}

void removeLock(benchmark::State& state) {
    LockTable table(state);
    NySeLock lock;
    lock.setStrLockName(table.m_name);
    timeCall(state, 1, [&] { return INT_PTR{table.m_table.removeLock(lock, table.m_stranger)}; });
}

void plainLoop(benchmark::State& state) {
    LockTable table(state);
    timeCall(state, table.m_last, [&] { return table.plainLoop(table.m_name); });
}

void alikeNames(benchmark::State& state) {
    LockTable table(state);
    table.makeNamesAlike();
    timeCall(state, table.m_last, [&] { return table.m_table.lookForLockName(table.m_name); });
}

void alikePlainLoop(benchmark::State& state) {
    LockTable table(state);
    table.makeNamesAlike();
    timeCall(state, table.m_last, [&] { return table.plainLoop(table.m_name); });
}

void addSizes(const char* name, void (*run)(benchmark::State&)) {
    benchmark::RegisterBenchmark(name, run)->RangeMultiplier(10)->Range(1'000, 100'000);
}

}  // namespace

int main(int argc, char** argv) {
    addSizes("lookForLockName", lookForLockName);
    addSizes("lookForMissing", lookForMissing);
    addSizes("addLock", addLock);
    addSizes("removeLock", removeLock);
    addSizes("plainLoop", plainLoop);
    addSizes("alikeNames", alikeNames);
    addSizes("alikePlainLoop", alikePlainLoop);
    return bench::runBenchmarks(argc, argv);
}
