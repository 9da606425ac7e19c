#include "tests/client/ClientTest.h"

namespace {

// The golden reply holds Anna and bob.
constexpr INT_PTR kUsersInReply = 2;

class ClientUsers : public ClientTest {
  protected:
    // A user as the golden request has it.
    static NySeUser plainUser() {
        NySeUser user;
        const auto& value = golden("user-plain").value;
        user.setPort(value.at("port").get<LONG>());
        user.setStrHostName(value.at("host").get<std::string>().c_str());
        user.setStrUserName(value.at("user").get<std::string>().c_str());
        user.setStrComputerName(value.at("computer").get<std::string>().c_str());
        user.setSessionNumber(value.at("session").get<LONG>());
        user.setSchema(value.at("schema").get<LONG>());
        user.setSoftType(value.at("soft_type").get<LONG>());
        return user;
    }

    static std::string replyWith(const NySeUser& user) {
        NySeMemFile message;
        message.startWrite(NySe::schema2015);
        message.writeObject(static_cast<const CObject&>(user));
        message.stopWriting();
        return std::string(reinterpret_cast<char*>(message.getBuffer()), message.getLength());
    }

    // Replies that are no table of users.
    static std::vector<std::string> uselessReplies() {
        const std::string good = goldenWire("reply-users");
        return {"",
                wire("0A 00"),
                wireOf<LONG>(0),
                wireOf<LONG>(-1),
                goldenWire("reply-locks"),
                goldenWire("reply-user"),
                goldenWire("reply-string"),
                wireOf<LONG>(2) + wire("00 00"),
                good.substr(0, good.size() / 2)};
    }

    const std::string getAllUserRequest = goldenWire("request-getAllUser");
    const std::string getPortRequest = goldenWire("request-getPortClient");
};

TEST_F(ClientUsers, GetAllUserAppendsWhatTheServerSends) {
    serveRequest(getAllUserRequest, goldenWire("reply-users"));
    NySeUserPtrArray users;
    users.append(new NySeUser);
    client.getAllUser(users);
    EXPECT_EQ(1 + kUsersInReply, users.GetSize());
    EXPECT_TRUE(users[0]->getStrUserName().IsEmpty());
    expectRequestsSent();
}

TEST_F(ClientUsers, GetAllUserTwiceYieldsEveryUserTwice) {
    serve({{getAllUserRequest, {goldenWire("reply-users")}},
           {getAllUserRequest, {goldenWire("reply-users")}}});
    NySeUserPtrArray users;
    client.getAllUser(users);
    const INT_PTR once = users.GetSize();
    client.getAllUser(users);
    EXPECT_EQ(2 * once, users.GetSize());
}

TEST_F(ClientUsers, GetAllUserReadsAReplyInSingleBytes) {
    const std::string reply = goldenWire("reply-users");
    std::vector<std::string> pieces = inSingleBytes(reply.substr(4));
    pieces.insert(pieces.begin(), reply.substr(0, 4));
    serve({{getAllUserRequest, pieces}});
    NySeUserPtrArray users;
    client.getAllUser(users);
    EXPECT_EQ(kUsersInReply, users.GetSize());
}

TEST_F(ClientUsers, GetAllUserLeavesTheTableWithoutAUsefulReply) {
    for (const std::string& reply : uselessReplies()) {
        SCOPED_TRACE(toHex(Bytes(reply.begin(), reply.end())));
        serveRequest(getAllUserRequest, reply, Then::close);
        NySeUserPtrArray users;
        users.append(new NySeUser);
        client.getAllUser(users);
        EXPECT_EQ(1, users.GetSize());
        client.disconnect();
    }
}

TEST_F(ClientUsers, GetAllUserReturnsQuietlyWithoutConnection) {
    NySeUserPtrArray users;
    client.getAllUser(users);
    EXPECT_EQ(0, users.GetSize());
}

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

    NySeUser user = plainUser();
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
    std::vector<std::string> replies = uselessReplies();
    std::erase(replies, goldenWire("reply-user"));
    replies.push_back(goldenWire("reply-users"));
    for (const std::string& reply : replies) {
        SCOPED_TRACE(toHex(Bytes(reply.begin(), reply.end())));
        serveRequest(getPortRequest, reply, Then::close);
        NySeUser user = plainUser();
        EXPECT_EQ(0, client.getPortClient(user));
        EXPECT_EQ(plainUser().getPort(), user.getPort());
        EXPECT_EQ(plainUser().getSessionNumber(), user.getSessionNumber());
        client.disconnect();
    }
}

TEST_F(ClientUsers, GetPortClientIsZeroWithoutConnection) {
    NySeUser user = plainUser();
    EXPECT_EQ(0, client.getPortClient(user));
}

}  // namespace
