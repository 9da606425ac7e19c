#include "bench/wire/windows/ProcessUsage.h"

#include <psapi.h>
#include <winternl.h>

#include <algorithm>
#include <memory>

#include "bench/wire/Parts.h"

namespace {

// The system's table of every handle of every process. GetProcessHandleCount counts none in Wine.
struct HandleEntry {
    void* object;
    ULONG_PTR process;
    ULONG_PTR handle;
    ULONG access;
    USHORT trace;
    USHORT type;
    ULONG attributes;
    ULONG reserved;
};
struct HandleTable {
    ULONG_PTR count;
    ULONG_PTR reserved;
    HandleEntry entries[1];
};
constexpr auto kAllHandles = static_cast<SYSTEM_INFORMATION_CLASS>(64);
constexpr size_t kTableBytes = 16U << 20;

size_t handlesOf(HANDLE process) {
    const auto bytes = std::make_unique<BYTE[]>(kTableBytes);
    bench::require(::NtQuerySystemInformation(kAllHandles, bytes.get(), kTableBytes, nullptr) >= 0,
                   "the system does not report its handles");
    const auto* const table = reinterpret_cast<const HandleTable*>(bytes.get());
    const HandleEntry* const first = table->entries;
    return static_cast<size_t>(std::count_if(
        first, first + table->count,
        [id = ::GetProcessId(process)](const HandleEntry& one) { return one.process == id; }));
}

}  // namespace

bench::ProcessUsage bench::ProcessUsage::of(HANDLE process) {
    PROCESS_MEMORY_COUNTERS counters{};
    require(::GetProcessMemoryInfo(process, &counters, sizeof counters) != 0,
            "the process does not report its memory");
    return {counters.WorkingSetSize, counters.PagefileUsage, handlesOf(process)};
}
