// Openers: which sessions have which connection open, and how often.
#pragma once

#include <afx.h>

#include <map>
#include <optional>

// One object may be used by one thread at a time.
class Openers {
  public:
    // How often each session has a connection open; never 0.
    using Counts = std::map<LONG, LONG>;

    void open(LONG connection, LONG session) { ++m_counts[connection][session]; }
    // Once. False when the session does not have the connection open.
    bool close(LONG connection, LONG session);

    const Counts& of(LONG connection) const;
    // The first connection from the number `from` on that the session has open; nothing when there
    // is none.
    std::optional<LONG> nextOpenedBy(LONG session, LONG from) const;
    const std::map<LONG, Counts>& all() const { return m_counts; }

  private:
    std::map<LONG, Counts> m_counts;
};
