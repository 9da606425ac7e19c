#include "tests/client/ClientTest.h"

namespace {

class ClientUsers : public ClientTest {
  protected:
    static std::string replyWith(const NySeUser& user) {
        NySeMemFile message;
        message.startWrite(NySe::schema2015);
        message.writeObject(static_cast<const CObject&>(user));
        message.stopWriting();
        return std::string(reinterpret_cast<char*>(message.getBuffer()), message.getLength());
    }

    static void expectSameFields(const NySeUser& expected, const NySeUser& user) {
        EXPECT_EQ(expected.getPort(), user.getPort());
        EXPECT_EQ(expected.getStrHostName(), user.getStrHostName());
        EXPECT_EQ(expected.getStrUserName(), user.getStrUserName());
        EXPECT_EQ(expected.getStrComputerName(), user.getStrComputerName());
        EXPECT_EQ(expected.getSessionNumber(), user.getSessionNumber());
        EXPECT_EQ(expected.getSchema(), user.getSchema());
        EXPECT_EQ(expected.getSoftType(), user.getSoftType());
    }

    const std::string getPortRequest = goldenWire("request-getPortClient");
};

TEST_F(ClientUsers, GetPortClientTakesEveryFieldOfTheAnswer) {
    NySeUser answer;
    answer.setPort(50001);
    answer.setStrHostName(_T("other-host"));
    answer.setStrUserName(_T("Anna Ω"));
    answer.setStrComputerName(_T("OTHER"));
    answer.setSessionNumber(99);
    answer.setSchema(2016);
    answer.setSoftType(8);
    serveRequest(getPortRequest, replyWith(answer));

    NySeUser user = goldenUser();
    EXPECT_EQ(50001, client.getPortClient(user));
    expectSameFields(answer, user);
    expectRequestsSent();
}

TEST_F(ClientUsers, GetPortClientLeavesTheUserWithoutAUsefulReply) {
    for (const std::string& reply : messagesOtherThan("reply-user")) {
        SCOPED_TRACE(shown(reply));
        serveRequest(getPortRequest, reply, Then::close);
        NySeUser user = goldenUser();
        EXPECT_EQ(0, client.getPortClient(user));
        expectSameFields(goldenUser(), user);
        client.disconnect();
    }
}

TEST_F(ClientUsers, GetPortClientIsZeroWithoutConnection) {
    NySeUser user = goldenUser();
    EXPECT_EQ(0, client.getPortClient(user));
}

}  // namespace
