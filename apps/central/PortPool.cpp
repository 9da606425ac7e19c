#include "apps/central/PortPool.h"

#include <algorithm>
#include <charconv>
#include <numeric>

namespace {

// The whole text as a port; 0 when it is none.
LONG parsePort(const char* first, const char* last) {
    unsigned short port = 0;
    const auto [end, error] = std::from_chars(first, last, port);
    return error == std::errc() && end == last ? port : 0;
}

}  // namespace

PortPool::PortPool(const std::vector<LONG>& ports) {
    for (const LONG port : ports) m_ports.push_back({port, false});
}

LONG PortPool::take() {
    const auto free =
        std::find_if(m_ports.begin(), m_ports.end(), [](const Port& p) { return !p.isTaken; });
    if (free == m_ports.end()) return 0;
    free->isTaken = true;
    return free->number;
}

void PortPool::giveBack(LONG port) {
    for (Port& one : m_ports) {
        if (one.number == port) one.isTaken = false;
    }
}

std::vector<LONG> portRange(LONG first, LONG last) {
    std::vector<LONG> ports(static_cast<size_t>(last - first + 1));
    std::iota(ports.begin(), ports.end(), first);
    return ports;
}

std::optional<std::vector<LONG>> parsePortRange(const std::string& text) {
    const size_t dash = text.find('-');
    if (dash == std::string::npos) return std::nullopt;
    const char* const start = text.data();
    const LONG first = parsePort(start, start + dash);
    const LONG last = parsePort(start + dash + 1, start + text.size());
    if (first < 1 || last < first) return std::nullopt;
    return portRange(first, last);
}
