#include "apps/monitor/MonitorWnd.h"

#include "apps/monitor/resource.h"
#include "apps/monitor/Words.h"
#include "NyServer/host/NyServerModule.h"
#include "NyServer/listener/NyServerNotification.h"

namespace apps::monitor {

namespace {

constexpr DWORD kWindowStyle = WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN;
constexpr DWORD kChild = WS_CHILD | WS_VISIBLE;
constexpr SIZE kFirstSize = {1020, 640};  // at 96 dots per inch

struct Button {
    const wchar_t* text;
    int id;
};
constexpr std::array<Button, kButtonCount> kButtons = {{{L"Lock...", ID_LOCK},
                                                        {L"Unlock...", ID_UNLOCK},
                                                        {L"Open...", ID_OPEN},
                                                        {L"Close...", ID_CLOSE},
                                                        {L"Send...", ID_SEND},
                                                        {L"Rename...", ID_RENAME}}};
constexpr std::array kPaneIds = {IDC_USERS, IDC_CONNECTIONS, IDC_LOCKS};

// Returns whether windows of the class can be created.
bool registerClass() {
    WNDCLASSEXW traits{};
    traits.cbSize = sizeof traits;
    traits.lpfnWndProc = &::DefWindowProcW;
    traits.hInstance = AfxGetInstanceHandle();
    traits.hIcon = ::LoadIconW(nullptr, IDI_APPLICATION);
    traits.hCursor = ::LoadCursorW(nullptr, IDC_ARROW);
    traits.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
    traits.lpszMenuName = MAKEINTRESOURCEW(IDR_MONITOR);
    traits.lpszClassName = MonitorWnd::kClassName;
    return ::RegisterClassExW(&traits) != 0 || ::GetLastError() == ERROR_CLASS_ALREADY_EXISTS;
}

HMENU asMenu(int id) {
    return reinterpret_cast<HMENU>(static_cast<INT_PTR>(id));
}

}  // namespace

// Not later: its last messages need the members.
MonitorWnd::~MonitorWnd() {
    DestroyWindow();
}

bool MonitorWnd::create() {
    if (!registerClass()) return false;
    const std::wstring title = L"nymonitor - " + wide(m_account.server);
    if (!CreateEx(0, kClassName, title.c_str(), kWindowStyle, CW_USEDEFAULT, CW_USEDEFAULT,
                  CW_USEDEFAULT, CW_USEDEFAULT, nullptr, nullptr))
        return false;
    m_shortcuts = ::LoadAcceleratorsW(AfxGetInstanceHandle(), MAKEINTRESOURCEW(IDR_MONITOR));
    m_queue.setWindow(m_hWnd);
    m_worker.start();
    return true;
}

bool MonitorWnd::onCreate() {
    if (!createBar()) return false;
    for (size_t i = 0; i < kPanes; ++i)
        if (!m_panes[i].create(*this, kPaneIds[i])) return false;
    if (!m_log.create(*this, IDC_LOG) || !m_status.create(*this, IDC_STATUS)) return false;
    useDpi(static_cast<int>(::GetDpiForWindow(m_hWnd)));
    placeOnScreen();
    m_keyboard = users().control().window();
    m_status.show(Backlog());
    allowRequests(false);
    return true;
}

// Sets the initial size, limited to the screen.
void MonitorWnd::placeOnScreen() {
    RECT area{};
    ::GetWindowRect(m_hWnd, &area);
    area.right = area.left + scaled(kFirstSize.cx, m_dpi);
    area.bottom = area.top + scaled(kFirstSize.cy, m_dpi);
    MONITORINFO screen{};
    screen.cbSize = sizeof screen;
    if (::GetMonitorInfoW(::MonitorFromWindow(m_hWnd, MONITOR_DEFAULTTONEAREST), &screen))
        area = within(area, screen.rcWork);
    moveTo(area);
}

void MonitorWnd::moveTo(const RECT& area) {
    ::SetWindowPos(m_hWnd, nullptr, area.left, area.top, area.right - area.left,
                   area.bottom - area.top, SWP_NOZORDER | SWP_NOACTIVATE);
}

bool MonitorWnd::createBar() {
    for (size_t i = 0; i < m_buttons.size(); ++i)
        if (!createButton(i)) return false;
    return m_filterLabel.CreateEx(0, WC_STATICW, L"Fi&lter:", kChild, 0, 0, 0, 0, m_hWnd,
                                  nullptr) &&
           m_filter.CreateEx(WS_EX_CLIENTEDGE, WC_EDITW, L"", kChild | WS_TABSTOP | ES_AUTOHSCROLL,
                             0, 0, 0, 0, m_hWnd, asMenu(IDC_FILTER));
}

bool MonitorWnd::createButton(size_t index) {
    const Button& button = kButtons[index];
    return m_buttons[index].CreateEx(0, WC_BUTTONW, button.text, kChild | WS_TABSTOP, 0, 0, 0, 0,
                                     m_hWnd, asMenu(button.id));
}

void MonitorWnd::useDpi(int dpi) {
    m_dpi = dpi;
    UniqueFont font = makeWindowFont(dpi);
    const auto give = [&](const CWnd& window) {
        ::SendMessageW(window.GetSafeHwnd(), WM_SETFONT, reinterpret_cast<WPARAM>(font.get()),
                       TRUE);
    };
    for (const CWnd& button : m_buttons) give(button);
    give(m_filterLabel);
    give(m_filter);
    for (ListPane& pane : m_panes) pane.control().setFont(font.get(), dpi);
    m_log.control().setFont(font.get(), dpi);
    m_status.setFont(font.get(), dpi);
    m_font = std::move(font);  // the controls no longer use the previous one
}

void MonitorWnd::onSize() {
    m_status.fit();
    RECT client{};
    ::GetClientRect(m_hWnd, &client);
    const Layout layout =
        layOut({static_cast<int>(client.right), static_cast<int>(client.bottom) - m_status.height(),
                m_dpi, textHeight(m_font.get())});
    for (size_t i = 0; i < m_buttons.size(); ++i) placeWindow(m_buttons[i], layout.buttons[i]);
    placeWindow(m_filterLabel, layout.filterLabel);
    placeWindow(m_filter, layout.filter);
    for (size_t i = 0; i < kPanes; ++i)
        m_panes[i].control().place(layout.titles[i], layout.lists[i]);
    m_log.control().place(layout.logTitle, layout.log);
}

void MonitorWnd::onDpiChanged(int dpi, const RECT& area) {
    useDpi(dpi);
    moveTo(area);
    onSize();
}

void MonitorWnd::onSizeLimits(MINMAXINFO& limits) const {
    if (!m_font) return;  // before onCreate
    const SIZE client = smallestClient(m_dpi, textHeight(m_font.get()));
    RECT area{0, 0, client.cx, client.cy + m_status.height()};
    ::AdjustWindowRectExForDpi(&area, kWindowStyle, TRUE, 0, static_cast<UINT>(m_dpi));
    limits.ptMinTrackSize = {area.right - area.left, area.bottom - area.top};
}

LRESULT MonitorWnd::onNotify(NMHDR& header) {
    for (size_t i = 0; i < kPanes; ++i)
        if (static_cast<int>(header.idFrom) == kPaneIds[i]) m_panes[i].onNotify(header);
    if (header.idFrom == IDC_LOG) m_log.control().onNotify(header);
    return 0;
}

void MonitorWnd::onActivate(bool isActive) {
    if (isActive) {
        takeKeyboard();
    } else if (::IsChild(m_hWnd, ::GetFocus())) {
        m_keyboard = ::GetFocus();
    }
}

void MonitorWnd::takeKeyboard() {
    ::SetFocus(::IsWindowEnabled(m_keyboard) ? m_keyboard : users().control().window());
}

// Nothing more is posted once the worker is stopped; what was posted before is freed.
void MonitorWnd::onDestroy() {
    m_worker.stop(std::chrono::milliseconds(0));
    const UINT posted = NySe::_TM_NYSERVERMESSAGE;
    MSG message;
    while (::PeekMessageW(&message, m_hWnd, posted, posted, PM_REMOVE))
        const NyServerNotification dropped(message.wParam, message.lParam, nullptr);
    ::PostQuitMessage(0);
}

bool MonitorWnd::translate(MSG& message) {
    return ::TranslateAcceleratorW(m_hWnd, m_shortcuts, &message) != 0 ||
           ::IsDialogMessageW(m_hWnd, &message);
}

LRESULT MonitorWnd::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == NySe::_TM_NYSERVERMESSAGE) return onNotification(wParam, lParam);
    switch (message) {
        case WM_CREATE:
            return onCreate() ? 0 : -1;
        case WM_SIZE:
            return onSize(), 0;
        case WM_GETMINMAXINFO:
            return onSizeLimits(*reinterpret_cast<MINMAXINFO*>(lParam)), 0;
        case WM_DPICHANGED:
            return onDpiChanged(LOWORD(wParam), *reinterpret_cast<const RECT*>(lParam)), 0;
        case WM_ACTIVATE:
            return onActivate(LOWORD(wParam) != WA_INACTIVE), 0;
        case WM_SETFOCUS:
            return takeKeyboard(), 0;
        case WM_COMMAND:
            return onCommand(LOWORD(wParam), HIWORD(wParam)), 0;
        case WM_NOTIFY:
            return onNotify(*reinterpret_cast<NMHDR*>(lParam));
        case WM_TIMER:
            return update(), 0;
        case WM_DESTROY:
            return onDestroy(), 0;
        case WindowQueue::kMessage:
            return m_queue.runNext(), 0;
        default:
            break;
    }
    return CWnd::WindowProc(message, wParam, lParam);
}

}  // namespace apps::monitor
