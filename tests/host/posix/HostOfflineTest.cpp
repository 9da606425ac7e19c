#include <gtest/gtest.h>

#include "NyServer/host/MachineIdentity.h"
#include "NyServer/host/NyFctIpUtil.h"
#include "tests/support/CStringPrinter.h"

namespace {

TEST(MachineId, IsTheSystemsSerialWithoutAnAdapter) {
    ASSERT_TRUE(port::adapters().empty());
    EXPECT_EQ(NyFctIpUtil::getStrMachineID(), machineidentity::serialText(port::systemSerial()));
}

}  // namespace
