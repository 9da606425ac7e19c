#include "apps/monitor/ServerWorker.h"

#include <utility>

#include "apps/monitor/Words.h"
#include "NyServer/ExceptionBoundary.h"

namespace apps::monitor {

namespace {

// How often the connection is looked at when there is nothing to do.
constexpr std::chrono::milliseconds kRound{200};

// A failure does not say whether the server refused or was silent; the time does: the client waits
// for 15 s, which may end a little early by another clock.
constexpr std::chrono::seconds kAnswerTime{14};

}  // namespace

ServerWorker::~ServerWorker() {
    stop(std::chrono::milliseconds(0));
    if (m_thread.joinable()) m_thread.join();
}

void ServerWorker::start() {
    m_hasEnded = false;
    m_thread = std::thread([this] { run(); });
}

bool ServerWorker::stop(std::chrono::milliseconds timeOut) {
    Lock lock(m_mutex);
    m_isStopping = true;
    if (m_listener) m_listener->reset();
    m_changed.notify_all();
    return m_changed.wait_for(lock, timeOut, [this] { return m_hasEnded; });
}

bool ServerWorker::post(Task task) {
    const Lock lock(m_mutex);
    if (!m_isServing) return false;
    m_tasks.push_back(std::move(task));
    m_changed.notify_all();
    return true;
}

void ServerWorker::refresh() {
    const Lock lock(m_mutex);
    m_isRefreshWanted = true;
    m_changed.notify_all();
}

void ServerWorker::setServing(bool isServing) {
    const Lock lock(m_mutex);
    m_isServing = isServing;
}

bool ServerWorker::isStopping() {
    const Lock lock(m_mutex);
    return m_isStopping;
}

void ServerWorker::run() {
    while (!isStopping()) {
        std::wstring reason;
        const bool isOver = NySe::succeeds([&] { reason = runConnection(); });
        const bool isLeft = NySe::succeeds([&] {
            leave();
            if (!isOver) reason = words::noMemory();  // what else throws ends in the library
            if (!reason.empty()) awaitNextAttempt(reason);
        });
        if (!isLeft) std::this_thread::sleep_for(kRound);
    }
    const Lock lock(m_mutex);
    m_hasEnded = true;
    m_changed.notify_all();
}

std::wstring ServerWorker::runConnection() {
    tellState({false, words::connecting(m_account)});
    if (!m_session.open()) return words::noConnection(m_account);
    enter();
    if (!m_session.listen())
        return m_session.client().isAlive() ? words::noPort() : whyUnanswered();
    return serve();
}

// The window is the listener's before it listens, so that nothing is missed from then on.
void ServerWorker::enter() {
    MonitorListener& listener = m_session.monitorListener();
    const auto link = std::make_shared<ListenerReference>(listener);
    m_queue.post([this, link] { m_view.setListener(link); });
    const Lock lock(m_mutex);
    m_listener = link;
    if (!m_isStopping) listener.setAppWnd(&m_window);
}

void ServerWorker::leave() {
    {
        const Lock lock(m_mutex);
        if (m_listener) m_listener->reset();
        m_listener.reset();
    }
    m_session.close();
    setServing(false);
    dropTasks();
    tellActivity({});
}

std::wstring ServerWorker::serve() {
    if (!readTables()) return whyUnanswered();
    m_delay.reset();
    setServing(true);
    tellConnected();
    std::wstring reason;
    while (!isStopping() && reason.empty()) reason = serveOne();
    return reason;
}

std::wstring ServerWorker::serveOne() {
    const std::optional<Task> task = takeTask();
    bool isAnswered = true;
    if (task) {
        isAnswered = perform(*task);
    } else if (takeRefresh()) {
        isAnswered = readTables();
    } else if (!m_session.client().IsConnected()) {
        return words::goneAway();
    }
    return isAnswered ? std::wstring() : whyUnanswered();
}

std::optional<Task> ServerWorker::takeTask() {
    Lock lock(m_mutex);
    m_changed.wait_for(lock, kRound,
                       [this] { return m_isStopping || m_isRefreshWanted || !m_tasks.empty(); });
    if (m_isStopping || m_tasks.empty()) return std::nullopt;
    Task task = std::move(m_tasks.front());
    m_tasks.pop_front();
    return task;
}

bool ServerWorker::takeRefresh() {
    const Lock lock(m_mutex);
    return std::exchange(m_isRefreshWanted, false);
}

// What the task has changed is seen in the tables, and reading them tells whether the server
// still answers. Not so after an answer that has not come: it may yet come, in place of the tables.
bool ServerWorker::perform(const Task& task) {
    tellActivity(task.event + L' ' + task.what);
    const auto start = std::chrono::steady_clock::now();
    const std::wstring outcome = task.run(m_session.client(), m_account);
    const bool isInTime = std::chrono::steady_clock::now() - start < kAnswerTime;
    const bool isAnswered = isInTime && readTables();
    tellOutcome(task, isAnswered ? outcome : L"no answer");
    if (isAnswered) tellConnected();
    return isAnswered;
}

// First come the users: this program is one of them, so that an empty table means no answer. The
// other tables may well be empty; so the server is asked for a sign of life in the end.
bool ServerWorker::readTables() {
    takeRefresh();
    tellActivity(L"lists");
    NySeClientApp& client = m_session.client();
    NySeUserPtrArray users;
    client.getAllUser(users);
    if (users.GetSize() == 0) return false;
    NySeConnectionArray connections;
    NySeLockArray locks;
    client.getConnection(connections);
    client.getLock(locks);
    if (!client.isAlive()) return false;
    tellActivity({});
    m_queue.post([this, rows = ServerRows{userRows(users), connectionRows(connections),
                                          lockRows(locks, users)}] { m_view.showRows(rows); });
    return true;
}

void ServerWorker::awaitNextAttempt(const std::wstring& reason) {
    const ReconnectDelay::Duration delay = m_delay.next();
    takeRefresh();  // earlier ones; one that comes once the wait is told ends it
    tellState({false, words::waiting(reason, delay)});
    Lock lock(m_mutex);
    m_changed.wait_for(lock, delay, [this] { return m_isStopping || m_isRefreshWanted; });
}

std::wstring ServerWorker::whyUnanswered() {
    return m_session.client().IsConnected() ? words::noAnswer() : words::goneAway();
}

void ServerWorker::dropTasks() {
    std::deque<Task> tasks;
    {
        const Lock lock(m_mutex);
        tasks.swap(m_tasks);
    }
    for (const Task& task : tasks) tellOutcome(task, words::notConnected());
}

void ServerWorker::tellConnected() {
    const NySeUser& user = m_session.user();
    tellState({true, words::connected(m_account, user), user.getSessionNumber()});
}

void ServerWorker::tellState(const ConnectionState& state) {
    m_queue.post([this, state] { m_view.showState(state); });
}

void ServerWorker::tellActivity(const std::wstring& what) {
    m_queue.post([this, what] { m_view.showActivity(what); });
}

void ServerWorker::tellOutcome(const Task& task, const std::wstring& outcome) {
    m_queue.post([this, event = task.event, content = task.what + L": " + outcome] {
        m_view.addLog(event, content);
    });
}

}  // namespace apps::monitor
