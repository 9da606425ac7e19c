#include "apps/central/Openers.h"

bool Openers::close(LONG connection, LONG session) {
    const auto counts = m_counts.find(connection);
    if (counts == m_counts.end()) return false;
    const auto count = counts->second.find(session);
    if (count == counts->second.end()) return false;
    if (--count->second == 0) counts->second.erase(count);
    if (counts->second.empty()) m_counts.erase(counts);
    return true;
}

const Openers::Counts& Openers::of(LONG connection) const {
    static const Counts nobody;
    const auto counts = m_counts.find(connection);
    return counts == m_counts.end() ? nobody : counts->second;
}

std::optional<LONG> Openers::nextOpenedBy(LONG session, LONG from) const {
    for (auto one = m_counts.lower_bound(from); one != m_counts.end(); ++one) {
        if (one->second.contains(session)) return one->first;
    }
    return std::nullopt;
}
