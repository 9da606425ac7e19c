// PortPool: the notification ports that a server hands out.
#pragma once

#include <afx.h>

#include <optional>
#include <string>
#include <vector>

// One pool may be used by one thread at a time.
class PortPool {
  public:
    explicit PortPool(const std::vector<LONG>& ports);

    // The first port that nobody has; 0 when there is none left.
    LONG take();
    // Ports of others than this pool are passed over.
    void giveBack(LONG port);

  private:
    struct Port {
        LONG number;
        bool isTaken;
    };
    std::vector<Port> m_ports;
};

// The ports first to last, both included.
std::vector<LONG> portRange(LONG first, LONG last);

// The ports of a range written FIRST-LAST; nothing when the text is no such range within 1 to
// 65535.
std::optional<std::vector<LONG>> parsePortRange(const std::string& text);
