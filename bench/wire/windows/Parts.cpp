#include "bench/wire/windows/Parts.h"

const std::map<std::string, bench::Part>& bench::parts() {
    static const std::map<std::string, Part> all = {
        {"requests", &runRequests},       {"notifications", &runNotifications},
        {"connections", &runConnections}, {"central", &runCentral},
        {"hold", &holdConnections},
    };
    return all;
}
