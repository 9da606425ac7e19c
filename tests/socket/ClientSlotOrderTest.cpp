#include <gtest/gtest.h>

#include "NyServer/socket/CUT_WSClient.h"
#include "tests/support/SlotOrder.h"

namespace {

class ClientSlots : public CUT_WSClient {
  public:
    using C = CUT_WSClient;

    static void expectPublicOrder() {
        EXPECT_EQ(slotOf(&C::Connect), 2u);
        EXPECT_EQ(slotOf(&C::ConnectBound), 3u);
        EXPECT_EQ(slotOf(&C::CreateUDPSocket), 4u);
        EXPECT_EQ(slotOf(&C::CreateSocket), 5u);
        EXPECT_EQ(slotOf(&C::CloseConnection), 6u);
        EXPECT_EQ(slotOf(&C::InitAsync), 7u);
        EXPECT_EQ(slotOf(&C::WaitForConnect), 8u);
        EXPECT_EQ(slotOf(&C::WaitForAccept), 9u);
        EXPECT_EQ(slotOf(&C::AcceptConnection), 10u);
        EXPECT_EQ(slotOf<int (C::*)(CUT_DataSource&)>(&C::Send), 11u);
        EXPECT_EQ((slotOf<int (C::*)(const char*, int)>(&C::Send)), 12u);
        EXPECT_EQ(slotOf(&C::SendAsLine), 13u);
        EXPECT_EQ(slotOf(&C::SendFile), 14u);
        EXPECT_EQ(slotOf(&C::SendTo), 15u);
        EXPECT_EQ(slotOf(&C::WaitForSend), 16u);
        EXPECT_EQ((slotOf<int (C::*)(CUT_DataSource&, OpenMsgType, int, long)>(&C::Receive)), 17u);
        EXPECT_EQ((slotOf<int (C::*)(char*, int, int)>(&C::Receive)), 18u);
        EXPECT_EQ(slotOf(&C::ReceiveToFile), 19u);
        EXPECT_EQ(slotOf(&C::ReceiveLine), 20u);
        EXPECT_EQ(slotOf(&C::ClearReceiveBuffer), 21u);
        EXPECT_EQ(slotOf(&C::ReceiveFrom), 22u);
        EXPECT_EQ(slotOf(&C::WaitForReceive), 23u);
    }

    static void expectProtectedOrder() {
        EXPECT_EQ(slotOf(&ClientSlots::OnError), 24u);
        EXPECT_EQ(slotOf(&ClientSlots::ReceiveFileStatus), 25u);
        EXPECT_EQ(slotOf(&ClientSlots::SendFileStatus), 26u);
        EXPECT_EQ(slotOf(&ClientSlots::IsAborted), 27u);
        EXPECT_EQ(slotOf(&ClientSlots::OnAsyncNotify), 28u);
        EXPECT_EQ(slotOf(&ClientSlots::OnAsyncGetNameNotify), 29u);
        EXPECT_EQ(slotOf(&ClientSlots::OnAsyncGetAddressNotify), 30u);
    }
};

TEST(ClientSlotOrder, PublicOperationsKeepTheirSlots) {
    ClientSlots::expectPublicOrder();
}

TEST(ClientSlotOrder, HooksKeepTheirSlots) {
    ClientSlots::expectProtectedOrder();
}

// A host compiled against the header names every argument; one more is a new binary interface.
static_assert(std::is_same_v<decltype(&CUT_WSClient::Connect),
                             int (CUT_WSClient::*)(unsigned int, const char*, long, int, int)>);

}  // namespace
