// The parts that only Windows has.
#pragma once

#include "bench/wire/Parts.h"

namespace bench {

void runNotifications(const WireOptions& options);
void runConnections(const WireOptions& options);
void runCentral(const WireOptions& options);

// Opens a connection to the port of 127.0.0.1 for each byte of the input and holds all of them
// until the input ends: the other ends of the connections of runConnections.
void holdConnections(const WireOptions& options);

}  // namespace bench
