#include "apps/monitor/ServerRows.h"

#include "apps/monitor/Words.h"
#include "NyServer/records/NySeShareMode.h"

namespace apps::monitor {

namespace {

std::wstring holderName(const NySeSessionLock& holder, const NySeUserPtrArray& users) {
    const NySeUser* const user = users.findBySessionNumber(holder.getSessionNumber());
    return user != nullptr ? wide(user->getStrUserName())
                           : L"session " + std::to_wstring(holder.getSessionNumber());
}

Row lockRow(const NySeLock& lock, const NySeUserPtrArray& users) {
    std::wstring names;
    std::wstring modes;
    const NySeSessionLockPtrArray& holders = lock.getHolders();
    for (INT_PTR i = 0; i < holders.GetSize(); ++i) {
        const wchar_t* const comma = i > 0 ? L", " : L"";
        names += comma + holderName(*holders[i], users);
        modes += comma + wide(NySe::shareModeWords(holders[i]->getLockState()));
    }
    const std::wstring name = wide(lock.getStrLockName());
    return {name, {name, names, modes}};
}

}  // namespace

std::vector<Column> userColumns() {
    return {{L"User", 80}, {L"Session", 66, true}, {L"Port", 56, true}, {L"Host", 70}};
}

std::vector<Column> connectionColumns() {
    return {{L"Id", 52, true}, {L"Connection", 138}, {L"Opens", 52, true}};
}

std::vector<Column> lockColumns() {
    return {{L"Lock", 100}, {L"Holders", 90}, {L"Modes", 210}};
}

std::vector<Row> userRows(const NySeUserPtrArray& users) {
    std::vector<Row> rows;
    for (INT_PTR i = 0; i < users.GetSize(); ++i) {
        const NySeUser& user = *users[i];
        const std::wstring session = std::to_wstring(user.getSessionNumber());
        rows.push_back({session,
                        {wide(user.getStrUserName()), session, std::to_wstring(user.getPort()),
                         wide(user.getStrHostName())}});
    }
    return rows;
}

std::vector<Row> connectionRows(const NySeConnectionArray& connections) {
    std::vector<Row> rows;
    for (INT_PTR i = 0; i < connections.GetSize(); ++i) {
        const NySeConnection& connection = *connections[i];
        const std::wstring id = std::to_wstring(connection.getId());
        rows.push_back(
            {id,
             {id, wide(connection.getStrConnection()), std::to_wstring(connection.getRefCount())}});
    }
    return rows;
}

std::vector<Row> lockRows(const NySeLockArray& locks, const NySeUserPtrArray& users) {
    std::vector<Row> rows;
    for (INT_PTR i = 0; i < locks.GetSize(); ++i) rows.push_back(lockRow(*locks[i], users));
    return rows;
}

}  // namespace apps::monitor
