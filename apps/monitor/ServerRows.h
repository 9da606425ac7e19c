// What the server's tables look like in the window's lists.
#pragma once

#include "apps/monitor/Table.h"
#include "NyServer/records/NySeConnectionArray.h"
#include "NyServer/records/NySeLockArray.h"
#include "NyServer/records/NySeUserPtrArray.h"

namespace apps::monitor {

// The columns, and the rows to them.
std::vector<Column> userColumns();
std::vector<Column> connectionColumns();
std::vector<Column> lockColumns();

// Keys: the session number, the id, the lock's name.
std::vector<Row> userRows(const NySeUserPtrArray& users);
std::vector<Row> connectionRows(const NySeConnectionArray& connections);
// Holders have their user's name, or their session number when that has no user; a mode stands for
// each holder, in words.
std::vector<Row> lockRows(const NySeLockArray& locks, const NySeUserPtrArray& users);

// The three as of one moment.
struct ServerRows {
    std::vector<Row> users;
    std::vector<Row> connections;
    std::vector<Row> locks;
};

}  // namespace apps::monitor
