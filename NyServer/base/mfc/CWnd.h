// CWnd: a window as an object.
#pragma once

#include "CObject.h"

// Bears a window's handle and, for a window that it has made, receives its messages. A window and
// its object belong to the thread that made the window; other threads may read the handle as long
// as the object lives.
class NYBASE_API CWnd : public CObject {
    DECLARE_DYNAMIC(CWnd)
  public:
    CWnd() = default;
    CWnd(const CWnd&) = delete;
    CWnd& operator=(const CWnd&) = delete;
    // Destroys a window that CreateEx has made; WindowProc of derived classes gets none of its last
    // messages, so destroy it earlier where they matter.
    ~CWnd() override;

    // The window's handle; null when there is no window.
    HWND GetSafeHwnd() const { return m_hWnd; }

    // Makes this the object of an existing window, which stays its maker's. FALSE for a null
    // handle. REQUIRES: no window attached.
    BOOL Attach(HWND window);
    // Lets go of the window and returns its handle.
    HWND Detach();

    // Makes a window of any class, registered by AfxRegisterWndClass or a control's: m_hWnd is set
    // before its first message and null after its last. With the parent HWND_MESSAGE the window
    // only receives messages. FALSE when the system or the window itself refuses. REQUIRES: no
    // window attached.
    BOOL CreateEx(DWORD exStyle, LPCTSTR className, LPCTSTR windowName, DWORD style, int x, int y,
                  int width, int height, HWND parent, HMENU idOrMenu, LPVOID parameter = nullptr);

    // FALSE when there is no window. REQUIRES: called by the window's thread.
    virtual BOOL DestroyWindow();

    HWND m_hWnd = nullptr;

  protected:
    // Receives every message of a window that CreateEx has made. An exception that leaves it ends
    // there: the message gets the answer 0, WM_CREATE -1.
    virtual LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam);
    // What the window's class does with a message.
    virtual LRESULT DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam);
    // Called after the last message, when m_hWnd is null: the place for `delete this`.
    virtual void PostNcDestroy() {}

  private:
    friend struct AfxWindowProcedure;

    WNDPROC m_classProcedure = nullptr;  // null unless CreateEx has made the window
};
