#include "NyServer/records/NySeUserPtrArray.h"
#include "tests/client/ClientTest.h"

namespace {

using ClientTransport = ClientTest;
using Access = NySeClientAppAccess;

std::string contentOf(CMemFile& file) {
    std::string bytes(file.GetLength(), '\0');
    file.SeekToBegin();
    file.Read(bytes.data(), static_cast<UINT>(bytes.size()));
    return bytes;
}

NySeMemFile& start(NySeMemFile& message, int action) {
    message.writeAction(static_cast<NySe::ActionType>(action), NySe::schema2015);
    return message;
}

TEST_F(ClientTransport, SendsNoActionAbove701) {
    serve({{wireOf<LONG>(701) + wireOf<LONG>(0), {}}});
    NySeMemFile message;
    EXPECT_FALSE(Access::sendMemFile(client, start(message, 702)));
    EXPECT_TRUE(Access::sendMemFile(client, start(message, 701)));
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
    NySeMemFile message;
    EXPECT_FALSE(Access::sendMemFile(client, start(message, 1)));
}

TEST_F(ClientTransport, AnEmptyReplyIsASuccess) {
    for (const LONG length : {0, -3, INT32_MIN}) {
        SCOPED_TRACE(length);
        serveRequest("", wireOf(length) + "more");
        CMemFile reply;
        EXPECT_TRUE(Access::receiveMemfile(client, reply));
        EXPECT_EQ(0u, reply.GetLength());
        client.disconnect();
    }
}

TEST_F(ClientTransport, AReplyInSingleBytesArrivesWhole) {
    serve({byteByByte("", wireOf<LONG>(5) + "hello")});
    CMemFile reply;
    EXPECT_TRUE(Access::receiveMemfile(client, reply));
    EXPECT_EQ(0u, reply.GetPosition());
    EXPECT_EQ("hello", contentOf(reply));
}

TEST_F(ClientTransport, AReplyThatStopsEarlyFailsWithWhatCame) {
    serveRequest("", wireOf<LONG>(10) + "abc", Then::close);
    CMemFile reply;
    EXPECT_FALSE(Access::receiveMemfile(client, reply));
    EXPECT_EQ(0u, reply.GetPosition());
    EXPECT_EQ("abc", contentOf(reply));
}

TEST_F(ClientTransport, AShortLengthFails) {
    serveRequest("", wire("0A 00 00"), Then::close);
    CMemFile reply;
    EXPECT_FALSE(Access::receiveMemfile(client, reply));
}

TEST_F(ClientTransport, AReplyTakesNoMoreBytesThanAnnounced) {
    serveRequest("", wireOf<LONG>(3) + "abcdef");
    CMemFile reply;
    EXPECT_TRUE(Access::receiveMemfile(client, reply));
    EXPECT_EQ("abc", contentOf(reply));
}

TEST_F(ClientTransport, ALongReplyArrivesWhole) {
    std::string body(3'000'000, '\0');
    for (size_t i = 0; i < body.size(); ++i) body[i] = static_cast<char>(i * 7 + i / 251);
    serveRequest("", wireOf(static_cast<LONG>(body.size())) + body);
    CMemFile reply;
    ASSERT_TRUE(Access::receiveMemfile(client, reply));
    EXPECT_TRUE(body == contentOf(reply));
}

// Counts the memory of its block.
class MeasuredFile : public CMemFile {
  public:
    size_t largest = 0;

  protected:
    BYTE* Alloc(size_t bytes) override {
        largest = std::max(largest, bytes);
        return CMemFile::Alloc(bytes);
    }
    BYTE* Realloc(BYTE* memory, size_t bytes) override {
        largest = std::max(largest, bytes);
        return CMemFile::Realloc(memory, bytes);
    }
};

TEST_F(ClientTransport, AnAnnouncedLengthCostsNoMemoryUntilTheBytesCome) {
    serveRequest("", wireOf<LONG>(INT32_MAX) + "0123456789", Then::close);
    MeasuredFile reply;
    EXPECT_FALSE(Access::receiveMemfile(client, reply));
    EXPECT_EQ(10u, reply.GetLength());
    EXPECT_LE(reply.largest, 1024u * 1024);
}

// A file for which there is no memory.
class StarvedFile : public CMemFile {
  protected:
    BYTE* Alloc(size_t) override { return nullptr; }
    BYTE* Realloc(BYTE*, size_t) override { return nullptr; }
};

TEST_F(ClientTransport, AReplyThatThereIsNoMemoryForFails) {
    serveRequest("", wireOf<LONG>(3) + "abc");
    StarvedFile reply;
    EXPECT_FALSE(Access::receiveMemfile(client, reply));
    EXPECT_EQ(0u, reply.GetLength());
}

TEST_F(ClientTransport, AReplyThatIsResetInTheMiddleFails) {
    peers::Peer peer([](peers::Connection& connection) {
        char byte;
        ::recv(connection.socket(), &byte, 1, MSG_PEEK);
        connection.send(wireOf<LONG>(100) + "some");
        // With the request unread, the close is a reset.
    });
    ASSERT_EQ(0, client.connect(static_cast<int>(peer.port()), "127.0.0.1", -1));
    NySeUserPtrArray users;
    client.getAllUser(users);
    EXPECT_EQ(0, users.GetSize());
    EXPECT_FALSE(client.IsConnected());
}

TEST_F(ClientTransport, ReadsAString) {
    serveRequest("", goldenWire("reply-string"));
    CString text;
    EXPECT_TRUE(Access::receiveString(client, text));
    EXPECT_EQ(CString("00-1a-2b-3c-4d-5e"), text);
}

TEST_F(ClientTransport, KeepsTheTextWhenTheReplyIsNoString) {
    serve({{"", {wireOf<LONG>(0)}}, {"", {wireOf<LONG>(3) + wire("FF FE FF")}}});
    CString text("before");
    EXPECT_TRUE(Access::receiveString(client, text));
    EXPECT_TRUE(Access::receiveString(client, text));
    EXPECT_EQ(CString("before"), text);
}

TEST_F(ClientTransport, KeepsTheTextWhenNoReplyComes) {
    serveRequest("", "", Then::close);
    CString text("before");
    EXPECT_FALSE(Access::receiveString(client, text));
    EXPECT_EQ(CString("before"), text);
}

// A user that tells when it is deleted.
class MortalUser : public NySeUser {
  public:
    explicit MortalUser(int& deaths) : m_deaths(deaths) {}
    ~MortalUser() override { ++m_deaths; }

  private:
    int& m_deaths;
};

TEST_F(ClientTransport, TransferDeletesNoRecord) {
    int deaths = 0;
    {
        NySeUserPtrArray to;
        {
            NySeUserPtrArray from;
            from.append(new MortalUser(deaths));
            to.append(new MortalUser(deaths));
            Access::transfertObject(from, to);
        }
        EXPECT_EQ(0, deaths);
    }
    EXPECT_EQ(2, deaths);
}

TEST_F(ClientTransport, TransferMovesTheRecordsThemselves) {
    NySeUserPtrArray from;
    NySeUserPtrArray to;
    NySeUser* const held = new NySeUser;
    NySeUser* const moved = new NySeUser;
    to.append(held);
    from.append(moved);

    Access::transfertObject(from, to);
    EXPECT_EQ(0, from.GetSize());
    ASSERT_EQ(2, to.GetSize());
    EXPECT_EQ(held, to[0]);
    EXPECT_EQ(moved, to[1]);
    EXPECT_TRUE(from.getDeleteObject());
    EXPECT_TRUE(to.getDeleteObject());
}

TEST_F(ClientTransport, TransferAppendsWithoutSorting) {
    NySeUserPtrArray from;
    NySeUserPtrArray to;
    for (const auto& [table, name] : {std::pair{&to, "m"}, {&from, "z"}, {&from, "a"}}) {
        NySeUser* user = new NySeUser;
        user->setStrUserName(name);
        table->append(user);
    }
    Access::transfertObject(from, to);
    ASSERT_EQ(3, to.GetSize());
    EXPECT_EQ(CString("m"), to[0]->getStrUserName());
    EXPECT_EQ(CString("z"), to[1]->getStrUserName());
    EXPECT_EQ(CString("a"), to[2]->getStrUserName());
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
