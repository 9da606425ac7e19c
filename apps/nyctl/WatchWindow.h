// WatchWindow: the hidden window to which a listener posts the notifications.
#pragma once

#include <afxwin.h>

#include <functional>

#include "NyServer/framing/NySeActions.h"
#include "NyServer/listener/NyServerApp.h"

namespace apps::nyctl {

// It is the listener's window as long as it lives; the listener must live longer. It belongs to the
// thread that makes it and gets its messages when that thread dispatches them.
class WatchWindow : public CWnd {
  public:
    using Show = std::function<void(NySe::ActionType action, CMemFile& payload)>;

    // `show` is called once for each notification. Throws std::runtime_error when the system makes
    // no window.
    WatchWindow(NyServerApp& listener, Show show);
    // Drops the notifications that have not been dispatched.
    ~WatchWindow() override;

  protected:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;

  private:
    NyServerApp& m_listener;
    const Show m_show;
};

// Dispatches one message of this thread. False when none is waiting.
bool dispatchNextMessage();

}  // namespace apps::nyctl
