#pragma once

#include <memory>

#include "NyServer/records/NySeUser.h"

// The user in class-tagged form at the start of the payload, which is left behind it; null when
// there is none. Clients write their user under its own schema, so that the soft type is there only
// when the record's schema field says so, whatever its class description says.
std::unique_ptr<NySeUser> readUser(CMemFile& payload);
