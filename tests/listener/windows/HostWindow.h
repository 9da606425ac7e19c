// A host's main window, on a thread of its own.
#pragma once

#include <afxwin.h>

#include <atomic>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "NyServer/listener/NyServerApp.h"
#include "tests/listener/PostedMessage.h"

// A message as the window found it; it has freed the block.
struct PostedBlock : PostedMessage {
    UINT message;
    WPARAM size;
    LPARAM address;
    bool isMoveable;
    UINT lockCount;
};

// Keeps the messages that it is posted from WM_APP on. The window is destroyed with the object.
class HostWindow {
  public:
    // With a listener it tells that of each notification consumed; the listener must live as long.
    explicit HostWindow(NyServerApp* listener = nullptr);
    ~HostWindow();

    CWnd* wnd() { return &m_wnd; }

    // Destroys the window; the object then has a handle that is no window's.
    void destroyWindow();

    // The listener notifies this window from now on, and none.
    void attachTo(NyServerApp& listener) { listener.setAppWnd(&m_wnd); }
    void detachFrom(NyServerApp& listener) { listener.setAppWnd(nullptr); }

    // From now on it does not report what it consumes, unless `consume` does.
    void hold() { m_isHolding = true; }
    // REQUIRES: it holds, and was created with the listener.
    void consume(int count = 1) {
        for (int i = 0; i < count; ++i) m_listener->decreasePostMsgCount();
    }

    std::vector<PostedBlock> messages() const;
    auto awaitMessages(size_t count) const { return messagesOnceThereAre(*this, count); }
    size_t count() const;
    // Once the window has seen all that was posted so far.
    void settle();
    // Forgets its messages once settled.
    void forget();

  private:
    static LRESULT CALLBACK windowProcedure(HWND window, UINT message, WPARAM wParam,
                                            LPARAM lParam);
    void run();
    void take(UINT message, WPARAM wParam, LPARAM lParam);

    NyServerApp* m_listener;
    std::atomic<bool> m_isHolding = false;
    CWnd m_wnd;
    mutable std::mutex m_mutex;
    std::vector<PostedBlock> m_messages;
    std::thread m_thread;
};
