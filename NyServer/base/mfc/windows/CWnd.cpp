#include "../afxwin.h"

#include <atomic>
#include <set>
#include <utility>

#include "NyServer/detail/ExceptionBoundary.h"
#include "NyServer/Mutex.h"

IMPLEMENT_DYNAMIC(CWnd, CObject)

namespace {

// The window property that maps a handle to its object.
constexpr wchar_t kObjectProperty[] = L"NyBaseDll.CWnd";

CWnd* objectOf(HWND window) {
    return static_cast<CWnd*>(::GetPropW(window, kObjectProperty));
}

LRESULT answerToException(HWND window, UINT message) {
    // An invalid area would cause the same message again at once.
    if (message == WM_PAINT) ::ValidateRect(window, nullptr);
    return message == WM_CREATE ? -1 : 0;
}

// Other threads may read the handle meanwhile.
void setHandle(CWnd& object, HWND window) {
    std::atomic_ref(object.m_hWnd).store(window, std::memory_order_relaxed);
}

// Attaches the next window of this thread to its object before the window's first message.
class CreationHook {
  public:
    explicit CreationHook(CWnd& object) : m_outer(std::exchange(current, this)), m_object(&object) {
        m_hook = ::SetWindowsHookExW(WH_CBT, &onEvent, nullptr, ::GetCurrentThreadId());
    }
    ~CreationHook() {
        if (m_hook != nullptr) ::UnhookWindowsHookEx(m_hook);
        current = m_outer;
    }
    CreationHook(const CreationHook&) = delete;
    CreationHook& operator=(const CreationHook&) = delete;

    bool isSet() const { return m_hook != nullptr; }

    // Returns whether the object has received a window and not lost it since.
    bool hasWindow() const { return m_owner != nullptr; }

    // The object has lost its window, or is about to be destroyed.
    static void forget(const CWnd& object) {
        for (CreationHook* hook = current; hook != nullptr; hook = hook->m_outer) {
            if (hook->m_owner == &object) hook->m_owner = nullptr;
        }
    }

  private:
    static LRESULT CALLBACK onEvent(int code, WPARAM wParam, LPARAM lParam);

    static inline thread_local CreationHook* current = nullptr;

    CreationHook* m_outer;
    CWnd* m_object;           // null once it has its window
    CWnd* m_owner = nullptr;  // null again once it has lost it
    HHOOK m_hook;
};

}  // namespace

// The procedure of every window made by CreateEx, and how the window gets it.
struct AfxWindowProcedure {
    static LRESULT CALLBACK call(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        CWnd* const object = objectOf(window);
        if (object == nullptr) return ::DefWindowProcW(window, message, wParam, lParam);
        const LRESULT result = callSafely(*object, window, message, wParam, lParam);
        if (message == WM_NCDESTROY) finish(*object);
        return result;
    }

    static LRESULT callSafely(CWnd& object, HWND window, UINT message, WPARAM wParam,
                              LPARAM lParam) noexcept {
        LRESULT result = 0;
        const auto call = [&] { result = object.WindowProc(message, wParam, lParam); };
        return NySe::succeeds(call) ? result : answerToException(window, message);
    }

    static void attach(CWnd& object, HWND window) {
        ::SetPropW(window, kObjectProperty, &object);
        setHandle(object, window);
        object.m_classProcedure = reinterpret_cast<WNDPROC>(
            ::SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&call)));
    }

    // The window continues with the procedure of its class.
    static void release(CWnd& object) {
        ::SetWindowLongPtrW(object.m_hWnd, GWLP_WNDPROC,
                            reinterpret_cast<LONG_PTR>(object.m_classProcedure));
        ::RemovePropW(object.m_hWnd, kObjectProperty);
        object.m_classProcedure = nullptr;
        setHandle(object, nullptr);
        CreationHook::forget(object);
    }

    static void finish(CWnd& object) noexcept {
        release(object);
        NySe::succeeds([&] { object.PostNcDestroy(); });
    }
};

LRESULT CALLBACK CreationHook::onEvent(int code, WPARAM wParam, LPARAM lParam) {
    if (code == HCBT_CREATEWND && current != nullptr && current->m_object != nullptr) {
        current->m_owner = std::exchange(current->m_object, nullptr);
        AfxWindowProcedure::attach(*current->m_owner, reinterpret_cast<HWND>(wParam));
    }
    return ::CallNextHookEx(nullptr, code, wParam, lParam);
}

CWnd::~CWnd() {
    if (m_classProcedure == nullptr) return;
    const HWND window = m_hWnd;
    AfxWindowProcedure::release(*this);
    ::DestroyWindow(window);
}

BOOL CWnd::Attach(HWND window) {
    setHandle(*this, window);
    return window != nullptr;
}

HWND CWnd::Detach() {
    const HWND window = m_hWnd;
    if (m_classProcedure != nullptr) AfxWindowProcedure::release(*this);
    setHandle(*this, nullptr);
    return window;
}

BOOL CWnd::CreateEx(DWORD exStyle, LPCTSTR className, LPCTSTR windowName, DWORD style, int x, int y,
                    int width, int height, HWND parent, HMENU idOrMenu, LPVOID parameter) {
    const CreationHook hook(*this);
    if (!hook.isSet()) return FALSE;
    const HWND window =
        ::CreateWindowExW(exStyle, className, windowName, style, x, y, width, height, parent,
                          idOrMenu, AfxGetInstanceHandle(), parameter);
    // A window refused by another hook is destroyed without a last message. After one,
    // PostNcDestroy may have deleted this object.
    if (window == nullptr && hook.hasWindow()) AfxWindowProcedure::release(*this);
    return window != nullptr;
}

BOOL CWnd::DestroyWindow() {
    return m_hWnd != nullptr && ::DestroyWindow(m_hWnd);
}

LRESULT CWnd::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    return DefWindowProc(message, wParam, lParam);
}

LRESULT CWnd::DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    return ::CallWindowProcW(m_classProcedure != nullptr ? m_classProcedure : &::DefWindowProcW,
                             m_hWnd, message, wParam, lParam);
}

namespace {

ATOM registerClass(LPCWSTR name, UINT classStyle, HCURSOR cursor, HBRUSH background, HICON icon) {
    WNDCLASSW traits = {};
    traits.style = classStyle;
    traits.lpfnWndProc = &::DefWindowProcW;
    traits.hInstance = AfxGetInstanceHandle();
    traits.hCursor = cursor;
    traits.hbrBackground = background;
    traits.hIcon = icon;
    traits.lpszClassName = name;
    return ::RegisterClassW(&traits);
}

}  // namespace

LPCTSTR AFXAPI AfxRegisterWndClass(UINT classStyle, HCURSOR cursor, HBRUSH background, HICON icon) {
    static NySe::Mutex mutex;
    static std::set<std::wstring> names NY_GUARDED_BY(mutex);
    CString name;
    name.Format(L"Afx:%x:%p:%p:%p", classStyle, cursor, background, icon);
    const NySe::MutexLock lock(mutex);
    const auto [place, isNew] = names.emplace(name.GetString());
    if (isNew && registerClass(place->c_str(), classStyle, cursor, background, icon) == 0) {
        names.erase(place);
        AfxThrowMemoryException();
    }
    return place->c_str();
}
