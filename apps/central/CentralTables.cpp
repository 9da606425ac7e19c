// Sessions and their users. Locks and connections are in sources of their own.
#include "apps/central/CentralTables.h"

#include "apps/central/Coherence.h"
#include "NyServer/detail/ExceptionBoundary.h"
#include "NyServer/records/NySeSessionLockPtrArray.h"

CentralTables::CentralTables(const std::vector<LONG>& ports, Notifier& notifier,
                             const TableLimits& limits)
    : m_notifier(notifier), m_limits(limits), m_ports(ports) {}

LONG CentralTables::beginSession(unsigned long address) {
    const std::lock_guard guard(m_lock);
    m_sessions[++m_lastSessionNumber].address = address;
    return m_lastSessionNumber;
}

void CentralTables::endSession(LONG session) {
    const std::lock_guard guard(m_lock);
    const Session* ended = findSession(session);
    if (ended == nullptr) return;
    m_notifier.forget(session);
    releaseLocksOf(session);
    closeAllOf(session);
    if (const NySeUser* user = m_users.findBySessionNumber(session)) {
        announceIfPossible(notifyUserLeft, *user, session);
        removeUser(user);
    }
    for (const LONG port : ended->ports) m_ports.giveBack(port);
    m_sessions.erase(session);
}

std::optional<NySeUser> CentralTables::registerUser(const NySeUser& user, LONG session) {
    const std::lock_guard guard(m_lock);
    Session* const known = findSession(session);
    if (known == nullptr || hasTooLongText(user)) return std::nullopt;
    if (known->ports.empty() && takePort(*known) == 0) return std::nullopt;
    NySeUser completed(user);
    completed.setSessionNumber(session);
    completed.setPort(known->ports.back());
    listenTo(session, *known);
    enterUser(completed);
    announce(notifyUserJoined, completed, session);
    return completed;
}

bool CentralTables::renameUser(LONG session, const CString& name) {
    const std::lock_guard guard(m_lock);
    const NySeUser* user = m_users.findBySessionNumber(session);
    if (user == nullptr || isTooLong(name)) return false;
    NySeUser renamed(*user);
    renamed.setStrUserName(name);
    enterUser(renamed);
    return true;
}

LONG CentralTables::anotherPort(LONG session) {
    const std::lock_guard guard(m_lock);
    Session* const known = findSession(session);
    if (known == nullptr || known->ports.size() >= m_limits.portsPerSession ||
        takePort(*known) == 0)
        return -1;
    if (NySeUser* user = m_users.findBySessionNumber(session)) {
        listenTo(session, *known);
        user->setPort(known->ports.back());
    }
    return known->ports.back();
}

NySeUserPtrArray CentralTables::users() const {
    const std::lock_guard guard(m_lock);
    return m_users;
}

void CentralTables::sendToUser(LONG sender, LONG receiver, const std::string& object) {
    const std::lock_guard guard(m_lock);
    if (receiver == sender || m_users.findBySessionNumber(receiver) == nullptr) return;
    send(notifyUserData, object, {receiver});
}

void CentralTables::sendToAll(LONG sender, const std::string& object) {
    const std::lock_guard guard(m_lock);
    send(notifyDataForAll, object, usersBut(sender));
}

std::vector<std::string> CentralTables::faults() const {
    const std::lock_guard guard(m_lock);
    std::set<LONG> sessions;
    for (const auto& [number, session] : m_sessions) sessions.insert(number);
    return coherenceFaults({sessions, m_users, m_connections, m_openers, m_locks});
}

CentralTables::Session* CentralTables::findSession(LONG number) {
    const auto found = m_sessions.find(number);
    return found == m_sessions.end() ? nullptr : &found->second;
}

// 0 when there is none left.
LONG CentralTables::takePort(Session& session) {
    session.ports.reserve(session.ports.size() + 1);  // may throw, so that it comes first
    const LONG port = m_ports.take();
    if (port != 0) session.ports.push_back(port);
    return port;
}

bool CentralTables::isTooLong(const CString& text) const {
    return static_cast<size_t>(text.GetLength()) > m_limits.longestText;
}

bool CentralTables::hasTooLongText(const NySeUser& user) const {
    return isTooLong(user.getStrUserName()) || isTooLong(user.getStrHostName()) ||
           isTooLong(user.getStrComputerName());
}

void CentralTables::listenTo(LONG session, const Session& about) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = about.address;
    address.sin_port = ::htons(static_cast<unsigned short>(about.ports.back()));
    m_notifier.listen(session, address);
}

// In the place of the session's user, if it has one. What may throw comes first, so that a user who
// cannot be entered takes nobody's place.
void CentralTables::enterUser(const NySeUser& user) {
    const NySeUser* const replaced = m_users.findBySessionNumber(user.getSessionNumber());
    auto entered = std::make_unique<NySeUser>(user);
    m_users.add(entered.get());
    static_cast<void>(entered.release());
    if (replaced != nullptr) removeUser(replaced);
}

void CentralTables::removeUser(const NySeUser* user) {
    INT_PTR index = 0;
    while (m_users[index] != user) ++index;
    m_users.RemoveAt(index);
}

// The archived table of the sessions' users; sessions without a user are left out.
std::string CentralTables::archivedUsersOf(const std::set<LONG>& sessions) const {
    NySeSessionLockPtrArray wanted;
    for (const LONG session : sessions) {
        auto entry = std::make_unique<NySeSessionLock>();
        entry->setSessionNumber(session);
        wanted.append(entry.get());
        static_cast<void>(entry.release());
    }
    NySeUserPtrArray users(QoArraySerial2::kDoNotDelete);
    users.addFromSessionArray(m_users, wanted);
    return archived(users);
}

void CentralTables::announce(Notification number, const CObject& object, LONG causer) {
    const std::vector<LONG> receivers = usersBut(causer);
    if (!receivers.empty()) send(number, archived(object), receivers);
}

void CentralTables::announceIfPossible(Notification number, const CObject& object, LONG causer) {
    NySe::succeeds([&] { announce(number, object, causer); });
}

std::vector<LONG> CentralTables::usersBut(LONG session) const {
    std::vector<LONG> others;
    for (INT_PTR i = 0; i < m_users.GetSize(); ++i) {
        const LONG other = m_users[i]->getSessionNumber();
        if (other != session) others.push_back(other);
    }
    return others;
}

void CentralTables::send(Notification number, const std::string& object,
                         const std::vector<LONG>& receivers) {
    if (!receivers.empty()) m_notifier.notify(receivers, makeNotification(number, object));
}
