// The server's tables as rows of the window's lists.
#pragma once

#include "apps/monitor/Table.h"
#include "NyServer/records/NySeConnectionArray.h"
#include "NyServer/records/NySeLockArray.h"
#include "NyServer/records/NySeUserPtrArray.h"

namespace apps::monitor {

// The columns and their rows.
std::vector<Column> userColumns();
std::vector<Column> connectionColumns();
std::vector<Column> lockColumns();

// Keys: the session number, the id, the lock's name.
std::vector<Row> userRows(const NySeUserPtrArray& users);
std::vector<Row> connectionRows(const NySeConnectionArray& connections);
// A holder is shown by user name, or by session number if the session has no user. There is one
// mode per holder, in words.
std::vector<Row> lockRows(const NySeLockArray& locks, const NySeUserPtrArray& users);

// The three tables, read one after the other.
struct ServerRows {
    std::vector<Row> users;
    std::vector<Row> connections;
    std::vector<Row> locks;
};

}  // namespace apps::monitor
