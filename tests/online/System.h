// What a fetch must not leave behind, or show.
#pragma once

#include <memory>

// Returns whether this process has no page open: on Windows a handle of WinINet, elsewhere a
// connection.
bool areAllPagesClosed();

// Expects that no message box is shown while it exists.
class NoMessageBoxes {
  public:
    NoMessageBoxes();
    ~NoMessageBoxes();

  private:
    struct Watch;
    std::unique_ptr<Watch> m_watch;
};
