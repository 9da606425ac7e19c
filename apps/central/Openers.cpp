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

std::vector<LONG> Openers::openedBy(LONG session) const {
    std::vector<LONG> connections;
    for (const auto& [connection, counts] : m_counts) {
        const auto count = counts.find(session);
        if (count == counts.end()) continue;
        connections.insert(connections.end(), static_cast<size_t>(count->second), connection);
    }
    return connections;
}
