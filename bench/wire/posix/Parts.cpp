#include "bench/wire/Parts.h"

const std::map<std::string, bench::Part>& bench::parts() {
    static const std::map<std::string, Part> all = {{"requests", &runRequests}};
    return all;
}
