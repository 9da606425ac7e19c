#include "CArchiveObjects.h"

namespace {

constexpr DWORD kFirstRun = 64;
constexpr size_t kDoublings = 6;

}  // namespace

DWORD CArchive::WrittenNumbers::nextNumber() const {
    if (m_runs.empty()) return 1 + m_skipped;
    const Run& last = m_runs.back();
    return last.firstNumber + static_cast<DWORD>(m_next - last.written.get()) + m_skipped;
}

bool CArchive::WrittenNumbers::skipNumber() {
    if (nextNumber() > kLastNumber) return false;
    m_end = m_next;
    ++m_skipped;
    return true;
}

// Runs become longer, so that a large archive has few; one behind a skipped number stays short.
bool CArchive::WrittenNumbers::addRun() {
    const DWORD number = nextNumber();
    if (number > kLastNumber) return false;
    const size_t doublings = m_skipped > 0 ? 0 : std::min(m_runs.size(), kDoublings);
    const DWORD size = std::min(kFirstRun << doublings, kLastNumber - number + 1);
    closeRun();
    m_runs.push_back({number, std::make_unique_for_overwrite<const void*[]>(size), nullptr});
    m_next = m_runs.back().written.get();
    m_end = m_next + size;
    m_skipped = 0;
    return true;
}

void CArchive::WrittenNumbers::closeRun() {
    if (!m_runs.empty()) m_runs.back().end = m_next;
}

DWORD CArchive::WrittenNumbers::numberInIndex(const void* written) {
    closeRun();
    for (; m_indexedRuns < m_runs.size(); ++m_indexedRuns, m_indexedOfNext = 0) {
        const Run& run = m_runs[m_indexedRuns];
        const ptrdiff_t size = run.end - run.written.get();
        for (; m_indexedOfNext < size; ++m_indexedOfNext) {
            // What was written twice keeps its first number.
            m_index.emplace(run.written[m_indexedOfNext],
                            run.firstNumber + static_cast<DWORD>(m_indexedOfNext));
        }
        if (m_indexedRuns + 1 == m_runs.size()) break;
    }
    const auto found = m_index.find(written);
    return found != m_index.end() ? found->second : 0;
}
