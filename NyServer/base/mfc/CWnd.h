// CWnd: a window as an object.
#pragma once

#include <atomic>

#include "CObject.h"

// Holds a window's handle and, for a window that it has created, receives its messages. A window
// and its object belong to the thread that created the window; other threads may read the handle
// while the object exists.
class NYBASE_API CWnd : public CObject {
    DECLARE_DYNAMIC(CWnd)
  public:
    CWnd() = default;
    CWnd(const CWnd&) = delete;
    CWnd& operator=(const CWnd&) = delete;
    // Destroys a window that CreateEx has created; WindowProc of derived classes gets none of its
    // last messages, so destroy it earlier where they matter.
    ~CWnd() override;

    // Returns the window's handle; null if there is no window.
    HWND GetSafeHwnd() const {
        // Other threads may read while the window's own thread writes; no ordering is needed.
        return std::atomic_ref(const_cast<HWND&>(m_hWnd)).load(std::memory_order_relaxed);
    }

    // Attaches an existing window, which its creator still owns. Returns FALSE for a null handle.
    // REQUIRES: no window attached.
    BOOL Attach(HWND window);
    // Detaches the window and returns its handle.
    HWND Detach();

    // Creates a window of any class, registered by AfxRegisterWndClass or a control's: m_hWnd is
    // set before its first message and null after its last. With the parent HWND_MESSAGE the window
    // only receives messages. Returns FALSE, with m_hWnd null, if the system or the window itself
    // refuses. REQUIRES: no window attached.
    BOOL CreateEx(DWORD exStyle, LPCTSTR className, LPCTSTR windowName, DWORD style, int x, int y,
                  int width, int height, HWND parent, HMENU idOrMenu, LPVOID parameter = nullptr);

    // Returns FALSE if there is no window. REQUIRES: called by the window's thread.
    virtual BOOL DestroyWindow();

    // For the window's thread; others use GetSafeHwnd.
    HWND m_hWnd = nullptr;

  protected:
    // Receives every message of a window that CreateEx has created. An exception that leaves it is
    // caught: the message returns 0, WM_CREATE -1.
    virtual LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam);
    // Passes a message to the procedure of the window's class.
    virtual LRESULT DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam);
    // Called after the last message, when m_hWnd is null: the place for `delete this`.
    virtual void PostNcDestroy() {}

  private:
    friend struct AfxWindowProcedure;

    WNDPROC m_classProcedure = nullptr;  // null unless CreateEx has created the window
};
