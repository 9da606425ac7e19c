#include "apps/monitor/ServerWorker.h"

#include <utility>

#include "apps/monitor/Words.h"
#include "NyServer/detail/ExceptionBoundary.h"
#include "NyServer/framing/NySeReply.h"

namespace apps::monitor {

namespace {

// The interval of the checks of the connection while there is nothing to do.
constexpr std::chrono::milliseconds kRound{200};

// A failure does not show whether the server refused or did not reply. The time does: the client
// waits until its time-out, which may end a little earlier on another clock.
constexpr std::chrono::seconds kReplyTime{NySe::kScalarTimeOut - 1};

}  // namespace

ServerWorker::~ServerWorker() {
    stop(std::chrono::milliseconds(0));
    if (m_thread.joinable()) m_thread.join();
}

void ServerWorker::start() {
    {
        const NySe::MutexLock lock(m_mutex);
        m_hasEnded = false;
    }
    m_thread = std::thread([this] { run(); });
}

bool ServerWorker::stop(std::chrono::milliseconds timeOut) {
    NySe::MutexLock lock(m_mutex);
    m_isStopping = true;
    if (m_listener) m_listener->reset();
    m_changed.notify_all();
    return m_changed.wait_for(lock.standard(), timeOut,
                              [this]() NY_REQUIRES(m_mutex) { return m_hasEnded; });
}

bool ServerWorker::post(Task task) {
    const NySe::MutexLock lock(m_mutex);
    if (!m_isServing) return false;
    m_tasks.push_back(std::move(task));
    m_changed.notify_all();
    return true;
}

void ServerWorker::refresh() {
    const NySe::MutexLock lock(m_mutex);
    m_isRefreshWanted = true;
    m_changed.notify_all();
}

void ServerWorker::setServing(bool isServing) {
    const NySe::MutexLock lock(m_mutex);
    m_isServing = isServing;
}

bool ServerWorker::isStopping() {
    const NySe::MutexLock lock(m_mutex);
    return m_isStopping;
}

void ServerWorker::run() {
    while (!isStopping()) {
        std::wstring reason;
        const bool isOver = NySe::succeeds([&] { reason = runConnection(); });
        const bool isLeft = NySe::succeeds([&] {
            endSession();
            if (!isOver) reason = words::noMemory();  // other exceptions end in the library
            if (!reason.empty()) awaitNextAttempt(reason);
        });
        if (!isLeft) std::this_thread::sleep_for(kRound);
    }
    const NySe::MutexLock lock(m_mutex);
    m_hasEnded = true;
    m_changed.notify_all();
}

std::wstring ServerWorker::runConnection() {
    reportState({false, words::connecting(m_account)});
    if (!m_session.open()) return words::noConnection(m_account);
    attachListener();
    if (!m_session.listen()) return m_session.client().isAlive() ? words::noPort() : whyNoReply();
    return serve();
}

// Set before it listens, so that no notification is missed.
void ServerWorker::attachListener() {
    MonitorListener& listener = m_session.monitorListener();
    const auto reference = std::make_shared<ListenerReference>(listener);
    m_queue.post([this, reference] { m_view.setListener(reference); });
    const NySe::MutexLock lock(m_mutex);
    m_listener = reference;
    if (!m_isStopping) listener.setAppWnd(&m_window);
}

void ServerWorker::endSession() {
    {
        const NySe::MutexLock lock(m_mutex);
        if (m_listener) m_listener->reset();
        m_listener.reset();
    }
    m_session.close();
    setServing(false);
    dropTasks();
    reportActivity({});
}

std::wstring ServerWorker::serve() {
    if (!readTables()) return whyNoReply();
    m_delay.reset();
    setServing(true);
    reportConnected();
    std::wstring reason;
    while (!isStopping() && reason.empty()) reason = serveOne();
    return reason;
}

std::wstring ServerWorker::serveOne() {
    const std::optional<Task> task = takeTask();
    bool hasReplied = true;
    if (task) {
        hasReplied = perform(*task);
    } else if (takeRefresh()) {
        hasReplied = readTables();
    } else if (!m_session.client().IsConnected()) {
        return words::connectionLost();
    }
    return hasReplied ? std::wstring() : whyNoReply();
}

std::optional<Task> ServerWorker::takeTask() {
    NySe::MutexLock lock(m_mutex);
    m_changed.wait_for(lock.standard(), kRound, [this]() NY_REQUIRES(m_mutex) {
        return m_isStopping || m_isRefreshWanted || !m_tasks.empty();
    });
    if (m_isStopping || m_tasks.empty()) return std::nullopt;
    Task task = std::move(m_tasks.front());
    m_tasks.pop_front();
    return task;
}

bool ServerWorker::takeRefresh() {
    const NySe::MutexLock lock(m_mutex);
    return std::exchange(m_isRefreshWanted, false);
}

// The task's effect appears in the tables, and reading them shows whether the server still
// replies. They are not read after a missing reply, which may still arrive in their place.
bool ServerWorker::perform(const Task& task) {
    reportActivity(task.event + L' ' + task.what);
    const auto start = std::chrono::steady_clock::now();
    const std::wstring outcome = task.run(m_session.client(), m_account);
    const bool isInTime = std::chrono::steady_clock::now() - start < kReplyTime;
    const bool hasReplied = isInTime && readTables();
    reportOutcome(task, hasReplied ? outcome : L"no reply");
    if (hasReplied) reportConnected();
    return hasReplied;
}

// The users first: this program is one of them, so an empty table means that there was no reply.
// The other tables may be empty, so a probe follows them.
bool ServerWorker::readTables() {
    takeRefresh();
    reportActivity(L"lists");
    NySeClientApp& client = m_session.client();
    NySeUserPtrArray users;
    client.getAllUser(users);
    if (users.GetSize() == 0) return false;
    NySeConnectionArray connections;
    NySeLockArray locks;
    client.getConnection(connections);
    client.getLock(locks);
    if (!client.isAlive()) return false;
    reportActivity({});
    m_queue.post([this, rows = ServerRows{userRows(users), connectionRows(connections),
                                          lockRows(locks, users)}] { m_view.showRows(rows); });
    return true;
}

void ServerWorker::awaitNextAttempt(const std::wstring& reason) {
    const ReconnectDelay::Duration delay = m_delay.next();
    takeRefresh();  // earlier requests; a later one ends the wait
    reportState({false, words::waiting(reason, delay)});
    NySe::MutexLock lock(m_mutex);
    m_changed.wait_for(lock.standard(), delay,
                       [this]() NY_REQUIRES(m_mutex) { return m_isStopping || m_isRefreshWanted; });
}

std::wstring ServerWorker::whyNoReply() {
    return m_session.client().IsConnected() ? words::noReply() : words::connectionLost();
}

void ServerWorker::dropTasks() {
    std::deque<Task> tasks;
    {
        const NySe::MutexLock lock(m_mutex);
        tasks.swap(m_tasks);
    }
    for (const Task& task : tasks) reportOutcome(task, words::notConnected());
}

void ServerWorker::reportConnected() {
    const NySeUser& user = m_session.user();
    reportState({true, words::connected(m_account, user), user.getSessionNumber()});
}

void ServerWorker::reportState(const ConnectionState& state) {
    m_queue.post([this, state] { m_view.showState(state); });
}

void ServerWorker::reportActivity(const std::wstring& what) {
    m_queue.post([this, what] { m_view.showActivity(what); });
}

void ServerWorker::reportOutcome(const Task& task, const std::wstring& outcome) {
    m_queue.post([this, event = task.event, content = task.what + L": " + outcome] {
        m_view.addLog(event, content);
    });
}

}  // namespace apps::monitor
