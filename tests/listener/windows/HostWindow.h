// A host's main window, on a thread of its own.
#pragma once

#include <afxwin.h>

#include <atomic>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "NyServer/listener/NyServerApp.h"

// A message as the window found it; it has freed the block.
struct PostedBlock {
    UINT message;
    WPARAM size;
    LPARAM address;
    std::string bytes;
    bool isMoveable;
    UINT lockCount;
};

// Keeps the messages that it is posted from WM_APP on. The window is destroyed with the object.
class HostWindow {
  public:
    // With a listener it tells that of each notification consumed; the listener must live as long.
    explicit HostWindow(NyServerApp* listener = nullptr);
    ~HostWindow();
    HostWindow(const HostWindow&) = delete;
    HostWindow& operator=(const HostWindow&) = delete;

    CWnd* wnd() { return &m_wnd; }

    // Destroys the window; the object then has a handle that is no window's.
    void destroyWindow();

    // From now on it does not report what it consumes.
    void hold() { m_isHolding = true; }

    std::vector<PostedBlock> messages() const;
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
