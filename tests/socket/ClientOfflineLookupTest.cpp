// Run without a network: whether an address has a name is for name services to say, and no test
// asks one.
#include <gtest/gtest.h>

#include "tests/socket/Probes.h"

namespace {

TEST(ClientOfflineLookup, ReportsAnAddressWithoutAName) {
    ProbeClient client;
    char name[64] = "untouched";
    EXPECT_EQ(client.GetNameFromAddress("203.0.113.1", name, sizeof name), UTE_NAME_LOOKUP_FAILED);
    EXPECT_STREQ(name, "untouched");
    EXPECT_EQ(client.codes, std::vector<int>{UTE_NAME_LOOKUP_FAILED});
}

}  // namespace
