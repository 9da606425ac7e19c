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
    EXPECT_EQ(50001, user.getPort());
    EXPECT_EQ(answer.getStrHostName(), user.getStrHostName());
    EXPECT_EQ(answer.getStrUserName(), user.getStrUserName());
    EXPECT_EQ(answer.getStrComputerName(), user.getStrComputerName());
    EXPECT_EQ(99, user.getSessionNumber());
    EXPECT_EQ(2016, user.getSchema());
    EXPECT_EQ(8, user.getSoftType());
    expectRequestsSent();
}

TEST_F(ClientUsers, GetPortClientLeavesTheUserWithoutAUsefulReply) {
    for (const std::string& reply : messagesOtherThan("reply-user")) {
        SCOPED_TRACE(shown(reply));
        serveRequest(getPortRequest, reply, Then::close);
        NySeUser user = goldenUser();
        EXPECT_EQ(0, client.getPortClient(user));
        EXPECT_EQ(goldenUser().getPort(), user.getPort());
        EXPECT_EQ(goldenUser().getSessionNumber(), user.getSessionNumber());
        client.disconnect();
    }
}

TEST_F(ClientUsers, GetPortClientIsZeroWithoutConnection) {
    NySeUser user = goldenUser();
    EXPECT_EQ(0, client.getPortClient(user));
}

}  // namespace
