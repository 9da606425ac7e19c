// The requests that a table answers.
#include "tests/client/ClientRequests.h"
#include "tests/client/ClientTest.h"

namespace {

constexpr INT_PTR kRecordsInReply = 2;

class ClientTables : public ClientTest, public ::testing::WithParamInterface<TableRequest> {
  protected:
    std::string request() const { return goldenWire(std::string("request-") + GetParam().name); }
    std::string goodReply() const { return GetParam().beforeReply + goldenWire(GetParam().reply); }
    void call() { GetParam().call(client, *table); }

    const std::shared_ptr<QoArraySerial2> table = GetParam().makeTable();
};

INSTANTIATE_TEST_SUITE_P(Request, ClientTables, ::testing::ValuesIn(tableRequests()),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_P(ClientTables, AppendsWhatTheServerSends) {
    serveRequest(request(), goodReply());
    QoObject2* const held = GetParam().makeRecord();
    table->append(held);
    call();
    ASSERT_EQ(1 + kRecordsInReply, table->GetSize());
    EXPECT_EQ(held, table->GetAt(0));
    expectRequestsSent();
}

TEST_P(ClientTables, AskedTwiceYieldsEverythingTwice) {
    serve({{request(), {goodReply()}}, {request(), {goodReply()}}});
    call();
    call();
    EXPECT_EQ(2 * kRecordsInReply, table->GetSize());
    expectRequestsSent();
}

TEST_P(ClientTables, AReplyInSingleBytesArrivesWhole) {
    serve({byteByByte(request(), goldenWire(GetParam().reply), GetParam().beforeReply)});
    call();
    EXPECT_EQ(kRecordsInReply, table->GetSize());
}

TEST_P(ClientTables, ALengthInTwoPiecesCountsAsNoReply) {
    const std::string reply = goodReply();
    const size_t cut = GetParam().beforeReply.size() + 2;
    serve({{request(), {reply.substr(0, cut), reply.substr(cut)}}});
    call();
    EXPECT_EQ(0, table->GetSize());
}

TEST_P(ClientTables, StayWithoutAUsefulReply) {
    table->append(GetParam().makeRecord());
    for (const std::string& reply : messagesOtherThan(GetParam().reply)) {
        SCOPED_TRACE(shown(reply));
        serveRequest(request(), GetParam().beforeReply + reply, Then::close);
        call();
        EXPECT_EQ(1, table->GetSize());
        client.disconnect();
    }
}

TEST_P(ClientTables, StayWithoutConnection) {
    call();
    EXPECT_EQ(0, table->GetSize());
}

TEST_P(ClientTables, OwnWhatTheyTake) {
    serveRequest(request(), goodReply());
    call();
    EXPECT_EQ(kRecordsInReply, table->GetSize());
    EXPECT_TRUE(table->getDeleteObject());
}

TEST_P(ClientTables, ThatDoNotOwnLeaveTheRecordsToTheCaller) {
    serveRequest(request(), goodReply());
    table->setDeleteObject(false);
    call();
    EXPECT_FALSE(table->getDeleteObject());
    ASSERT_EQ(kRecordsInReply, table->GetSize());
    const std::unique_ptr<QoObject2> first(table->GetAt(0));
    const std::unique_ptr<QoObject2> second(table->GetAt(1));
    const std::unique_ptr<QoObject2> copy(first->vClone());
    table->RemoveAll();
    EXPECT_EQ(QoSort::equal, first->vCompareTo(*copy, 1));
}

}  // namespace
