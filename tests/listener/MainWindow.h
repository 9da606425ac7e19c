// A host's main window, on a thread of its own.
#pragma once

#include <afxwin.h>

#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "NyServer/listener/NyServerApp.h"
#include "tests/support/Gate.h"

// A message as the window found it; it has freed the block.
struct PostedMessage {
    UINT message;
    WPARAM size;
    LPARAM address;
    std::string bytes;
    bool isMoveable;
    UINT lockCount;

    int action() const;
    std::string payload() const;
};

// Keeps the messages that it is posted from WM_APP on. The window is destroyed with the object.
class MainWindow {
  public:
    // With a listener it tells that of each notification consumed; the listener must live as long.
    explicit MainWindow(NyServerApp* listener = nullptr);
    ~MainWindow();
    MainWindow(const MainWindow&) = delete;
    MainWindow& operator=(const MainWindow&) = delete;

    CWnd* wnd() { return &m_wnd; }

    // Destroys the window; the object then has a handle that is no window's.
    void destroyWindow();

    std::vector<PostedMessage> messages() const;
    // The messages there are once they are `count`, or when none has come for 10 s.
    std::vector<PostedMessage> awaitMessages(size_t count) const;
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
    CWnd m_wnd;
    mutable std::mutex m_mutex;
    std::vector<PostedMessage> m_messages;
    std::thread m_thread;
};
