// Openers: which sessions have which connection open, and how often.
#pragma once

#include <afx.h>

#include <map>
#include <vector>

// One object may be used by one thread at a time.
class Openers {
  public:
    // How often each session has a connection open; never 0.
    using Counts = std::map<LONG, LONG>;

    void open(LONG connection, LONG session) { ++m_counts[connection][session]; }
    // Once. False when the session does not have the connection open.
    bool close(LONG connection, LONG session);

    const Counts& of(LONG connection) const;
    // Each connection once for each time that the session has it open.
    std::vector<LONG> openedBy(LONG session) const;
    const std::map<LONG, Counts>& all() const { return m_counts; }

  private:
    std::map<LONG, Counts> m_counts;
};
