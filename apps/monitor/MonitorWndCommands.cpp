// The user's commands.
#include <algorithm>

#include "apps/monitor/Dialogs.h"
#include "apps/monitor/MonitorWnd.h"
#include "apps/monitor/resource.h"
#include "apps/monitor/Words.h"

namespace apps::monitor {

namespace {

std::wstring keyOf(const Row* row) {
    return row != nullptr ? row->key : std::wstring();
}

}  // namespace

void MonitorWnd::onCommand(int id, int event) {
    switch (id) {
        case ID_LOCK:
            return lock();
        case ID_UNLOCK:
            return unlock();
        case ID_OPEN:
            return open();
        case ID_CLOSE:
            return close();
        case ID_SEND:
            return send();
        case ID_RENAME:
            return rename();
        case ID_REFRESH:
            return m_worker.refresh();
        case ID_FIND:
            return find();
        case ID_EXIT:
            ::PostMessageW(m_hWnd, WM_CLOSE, 0, 0);
            return;
        case IDCANCEL:
            ::SetWindowTextW(control(IDC_FILTER), L"");
            return;  // the Escape key
        case IDC_FILTER:
            if (event == EN_CHANGE) onFilterChanged();
            return;
        default:
            return;
    }
}

void MonitorWnd::onFilterChanged() {
    wchar_t text[256];
    ::GetWindowTextW(control(IDC_FILTER), text, static_cast<int>(std::size(text)));
    for (ListPane& pane : m_panes) pane.setFilter(text);
}

void MonitorWnd::find() {
    ::SetFocus(control(IDC_FILTER));
    ::SendMessageW(control(IDC_FILTER), EM_SETSEL, 0, -1);
}

void MonitorWnd::request(const Task& task) {
    if (!m_worker.post(task)) addLog(task.event, task.what + L": " + words::notConnected());
}

void MonitorWnd::lock() {
    if (const auto input = inputLock(m_hWnd, keyOf(locks().chosen())))
        request(lockTask(input->name, input->mode));
}

void MonitorWnd::unlock() {
    if (const auto name = inputText(m_hWnd, {L"Unlock", L"&Name:", keyOf(locks().chosen())}))
        request(unlockTask(*name));
}

void MonitorWnd::open() {
    const Row* const chosen = connections().chosen();
    const std::wstring text = chosen != nullptr ? chosen->cells[1] : std::wstring();
    if (const auto connection =
            inputText(m_hWnd, {L"Open connection", L"&Connection string:", text}))
        request(openTask(*connection));
}

void MonitorWnd::close() {
    const auto text = inputText(
        m_hWnd, {L"Close connection", L"&Id or connection string:", keyOf(connections().chosen())});
    if (!text) return;
    if (const Row* const connection = findConnection(*text))
        request(closeTask(connection->cells[1], std::stol(connection->key)));
    else
        addLog(L"Close", *text + L": there is no such connection");
}

void MonitorWnd::send() {
    if (const auto input = inputMessage(m_hWnd, receivers()))
        request(sendTask(input->receiver, input->text));
}

void MonitorWnd::rename() {
    if (const auto name = inputText(m_hWnd, {L"Rename", L"&Your new name:", {}}))
        request(renameTask(*name));
}

// Also those that the filter hides, but not this user.
std::vector<Receiver> MonitorWnd::receivers() const {
    std::vector<Receiver> receivers{{L"everybody"}};
    const Table& users = m_panes[0].table();
    for (int i = 0; i < users.total(); ++i) {
        const Row& user = users.any(i);
        const LONG session = std::stol(user.key);
        if (session != m_session) receivers.push_back({user.cells[0], session});
    }
    return receivers;
}

// By its id, else by its string; also when the filter hides it.
const Row* MonitorWnd::findConnection(const std::wstring& text) const {
    const Table& table = m_panes[1].table();
    for (const size_t cell : {0U, 1U})
        for (int i = 0; i < table.total(); ++i)
            if (table.any(i).cells[cell] == text) return &table.any(i);
    return nullptr;
}

}  // namespace apps::monitor
