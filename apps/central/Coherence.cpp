#include "apps/central/Coherence.h"

#include <numeric>

#include "apps/common/Utf8.h"

using namespace apps;

namespace {

class Check {
  public:
    explicit Check(const TableView& tables) : m_tables(tables) {}

    std::vector<std::string> faults() {
        checkUsers();
        checkConnections();
        checkOpeners();
        checkLocks();
        return std::move(m_faults);
    }

  private:
    void checkUsers() {
        std::set<LONG> ports;
        std::set<LONG> sessions;
        for (INT_PTR i = 0; i < m_tables.users.GetSize(); ++i) {
            const NySeUser& user = *m_tables.users[i];
            const std::string who = "user " + toUtf8(user.getStrUserName());
            checkSession(who, user.getSessionNumber());
            if (!sessions.insert(user.getSessionNumber()).second)
                fault(who + " shares session " + std::to_string(user.getSessionNumber()));
            if (!ports.insert(user.getPort()).second)
                fault(who + " shares port " + std::to_string(user.getPort()));
        }
    }

    void checkConnections() {
        for (INT_PTR i = 0; i < m_tables.connections.GetSize(); ++i) {
            const NySeConnection& connection = *m_tables.connections[i];
            const LONG opened = timesOpened(connection.getId());
            if (opened == connection.getRefCount()) continue;
            fault(nameOf(connection.getId()) + " counts " +
                  std::to_string(connection.getRefCount()) + " opens, its openers " +
                  std::to_string(opened));
        }
    }

    void checkOpeners() {
        for (const auto& [id, counts] : m_tables.openers.all()) {
            if (m_tables.connections.findById(id) == nullptr)
                fault(nameOf(id) + " has openers and does not exist");
            for (const auto& [session, count] : counts) checkSession(nameOf(id), session);
        }
    }

    void checkLocks() {
        for (INT_PTR i = 0; i < m_tables.locks.GetSize(); ++i) {
            const NySeLock& lock = *m_tables.locks[i];
            const std::string name = "lock " + toUtf8(lock.getStrLockName());
            const NySeSessionLockPtrArray& holders = lock.getHolders();
            if (holders.GetSize() == 0) fault(name + " has no holder");
            for (INT_PTR h = 0; h < holders.GetSize(); ++h)
                checkSession(name, holders[h]->getSessionNumber());
        }
    }

    LONG timesOpened(LONG connection) const {
        const Openers::Counts& counts = m_tables.openers.of(connection);
        return std::accumulate(counts.begin(), counts.end(), LONG{0},
                               [](LONG sum, const auto& count) { return sum + count.second; });
    }

    void checkSession(const std::string& what, LONG session) {
        if (m_tables.sessions.count(session) == 0)
            fault(what + " belongs to session " + std::to_string(session) + ", which has left");
    }

    static std::string nameOf(LONG connection) {
        return "connection " + std::to_string(connection);
    }

    void fault(const std::string& text) { m_faults.push_back(text); }

    const TableView& m_tables;
    std::vector<std::string> m_faults;
};

}  // namespace

std::vector<std::string> coherenceFaults(const TableView& tables) {
    return Check(tables).faults();
}
