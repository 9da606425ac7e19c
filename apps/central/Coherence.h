// Whether the server's tables agree with each other.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "apps/central/Openers.h"
#include "NyServer/records/NySeConnectionArray.h"
#include "NyServer/records/NySeLockArray.h"
#include "NyServer/records/NySeUserPtrArray.h"

struct TableView {
    const std::set<LONG>& sessions;  // those that are connected
    const NySeUserPtrArray& users;
    const NySeConnectionArray& connections;
    const Openers& openers;
    const NySeLockArray& locks;
};

// A line in UTF-8 for each fault; empty when there is none.
std::vector<std::string> coherenceFaults(const TableView& tables);
