// WatchWindow: the hidden window to which a listener posts the notifications.
#pragma once

#include <afxwin.h>

#include <functional>

#include "NyServer/framing/NySeActions.h"
#include "NyServer/listener/NyServerApp.h"

namespace apps::nyctl {

// The listener's window while it exists; the listener must outlive it. It belongs to the thread
// that creates it and receives its messages when that thread dispatches them.
class WatchWindow : public CWnd {
  public:
    using Show = std::function<void(NySe::ActionType action, CMemFile& payload)>;

    // `show` is called once for each notification. Throws std::runtime_error if the window cannot
    // be created.
    WatchWindow(NyServerApp& listener, Show show);
    // Discards the notifications that have not been dispatched.
    ~WatchWindow() override;

  protected:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;

  private:
    NyServerApp& m_listener;
    const Show m_show;
};

// Dispatches one message of this thread. Returns false if there is none.
bool dispatchNextMessage();

}  // namespace apps::nyctl
