#include "NyServer/records/NySeUserPtrArray.h"
#include "tests/client/ClientTest.h"

namespace {

using Access = NySeClientAppAccess;

class ClientTransport : public ClientTest {
  protected:
    bool send(int action) {
        NySeMemFile message;
        message.writeAction(static_cast<NySe::ActionType>(action), NySe::schema2015);
        return Access::sendMemFile(client, message);
    }
    // Takes the message of a server that sends these bytes and closes. What arrived of it is
    // `content`, and the file is at its start.
    void expectMessage(bool isComplete, const std::string& content, const std::string& sent,
                       CMemFile&& reply = CMemFile()) {
        SCOPED_TRACE(shown(sent.substr(0, 16)));
        serveRequest("", sent, Then::close);
        EXPECT_EQ(isComplete, Access::receiveMemfile(client, reply));
        EXPECT_EQ(0u, reply.GetPosition());
        std::string taken(reply.GetLength(), '\0');
        reply.Read(taken.data(), static_cast<UINT>(taken.size()));
        EXPECT_TRUE(content == taken) << shown(taken.substr(0, 16));
        client.disconnect();
    }
};

TEST_F(ClientTransport, SendsNoActionAbove701) {
    serve({{wireOf<LONG>(701) + wireOf<LONG>(0), {}}});
    EXPECT_FALSE(send(702));
    EXPECT_TRUE(send(701));
    expectRequestsSent();
}

TEST_F(ClientTransport, SendsAMessageWithoutAction) {
    serve({{wireOf<LONG>(4) + wireOf<LONG>(77), {}}});
    NySeMemFile message;
    message.startWrite(NySe::schema2015);
    message.writeInteger(77);
    message.stopWriting();
    EXPECT_EQ(NySe::noAction, message.getActionType());
    EXPECT_TRUE(Access::sendMemFile(client, message));
    expectRequestsSent();
}

TEST_F(ClientTransport, AnEmptyMessageCountsAsNotSent) {
    serve({});
    NySeMemFile message;
    message.startWrite(NySe::schema2015);
    message.stopWriting();
    message.SetLength(0);
    EXPECT_FALSE(Access::sendMemFile(client, message));
    expectRequestsSent();
}

TEST_F(ClientTransport, SendFailsWithoutConnection) {
    EXPECT_FALSE(send(1));
}

TEST_F(ClientTransport, AnEmptyReplyIsASuccess) {
    for (const LONG length : {0, -3, INT32_MIN}) expectMessage(true, "", wireOf(length) + "more");
}

TEST_F(ClientTransport, AReplyThatStopsEarlyFailsWithTheBytesReceived) {
    expectMessage(false, "abc", wireOf<LONG>(10) + "abc");
    expectMessage(false, "", wire("0A 00 00"));
}

TEST_F(ClientTransport, AReplyTakesNoMoreBytesThanAnnounced) {
    expectMessage(true, "abc", wireOf<LONG>(3) + "abcdef");
}

TEST_F(ClientTransport, ALongReplyArrivesWhole) {
    std::string body(3'000'000, '\0');
    for (size_t i = 0; i < body.size(); ++i) body[i] = static_cast<char>(i * 7 + i / 251);
    expectMessage(true, body, wireOf(static_cast<LONG>(body.size())) + body);
}

// There is a limit to its memory.
class LimitedFile : public CMemFile {
  public:
    explicit LimitedFile(size_t limit) : m_limit(limit) {}

  protected:
    BYTE* Alloc(size_t bytes) override {
        return bytes > m_limit ? nullptr : CMemFile::Alloc(bytes);
    }
    BYTE* Realloc(BYTE* memory, size_t bytes) override {
        return bytes > m_limit ? nullptr : CMemFile::Realloc(memory, bytes);
    }

  private:
    const size_t m_limit;
};

TEST_F(ClientTransport, AnAnnouncedLengthCostsNoMemoryUntilTheBytesArrive) {
    expectMessage(false, "0123456789", wireOf<LONG>(INT32_MAX) + "0123456789",
                  LimitedFile(1024 * 1024));
}

TEST_F(ClientTransport, AReplyFailsWithoutMemory) {
    expectMessage(false, "", wireOf<LONG>(3) + "abc", LimitedFile(0));
}

TEST_F(ClientTransport, AReplyThatIsResetInTheMiddleFails) {
    const peers::Peer peer([](peers::Connection& connection) {
        char byte;
        port::receive(connection.socket(), &byte, 1, MSG_PEEK);
        connection.send(wireOf<LONG>(100) + "some");
        // With the request unread, the close is a reset.
    });
    connectTo(peer);
    NySeUserPtrArray users;
    client.getAllUser(users);
    EXPECT_EQ(0, users.GetSize());
    EXPECT_FALSE(client.IsConnected());
}

TEST_F(ClientTransport, KeepsTheTextWhenTheReplyIsNoString) {
    serve({{"", {wireOf<LONG>(0)}}, {"", {wireOf<LONG>(3) + wire("FF FE FF")}}}, Then::close);
    CString text("before");
    EXPECT_TRUE(Access::receiveString(client, text));
    EXPECT_TRUE(Access::receiveString(client, text));
    EXPECT_FALSE(Access::receiveString(client, text));  // none comes
    EXPECT_EQ(CString("before"), text);
}

// A user that counts that it is deleted.
class MortalUser : public NySeUser {
  public:
    explicit MortalUser(int& deaths) : m_deaths(deaths) {}
    ~MortalUser() override { ++m_deaths; }

  private:
    int& m_deaths;
};

TEST_F(ClientTransport, TransferMovesTheRecordsThemselvesUnsorted) {
    int deaths = 0;
    {
        NySeUserPtrArray to;
        NySeUser* users[3];
        {
            NySeUserPtrArray from;
            for (size_t i = 0; i < 3; ++i) {
                users[i] = new MortalUser(deaths);
                users[i]->setStrUserName(CString("mza"[i]));
                (i == 0 ? to : from).append(users[i]);
            }
            Access::transfertObject(from, to);
            EXPECT_EQ(0, from.GetSize());
            EXPECT_TRUE(from.getDeleteObject());
        }
        ASSERT_EQ(3, to.GetSize());
        for (INT_PTR i = 0; i < 3; ++i) EXPECT_EQ(users[i], to[i]);
        EXPECT_TRUE(to.getDeleteObject());
        EXPECT_EQ(0, deaths);
    }
    EXPECT_EQ(3, deaths);
}

TEST_F(ClientTransport, TransferKeepsTheFlagOfATableThatDoesNotOwn) {
    NySeUserPtrArray from;
    NySeUserPtrArray to(QoArraySerial2::kDoNotDelete);
    const std::unique_ptr<NySeUser> user(new NySeUser);
    from.append(user.get());
    Access::transfertObject(from, to);
    EXPECT_FALSE(to.getDeleteObject());
    EXPECT_EQ(user.get(), to[0]);
}

}  // namespace
