// What a client may send without harm to anybody else.
#include "tests/apps/CentralTest.h"

namespace {

class CentralHostile : public CentralTest {
  protected:
    void SetUp() override {
        CentralTest::SetUp();
        connect(client);
    }

    using CentralTest::send;
    void send(const std::string& bytes) { send(client, bytes); }

    // The connection has ended, and the server still serves another.
    void expectOnlyThisConnectionEnded() {
        EXPECT_TRUE(eventually([this] { return client.IsConnected() == 0; }));
        NySeClientApp other;
        connect(other);
        EXPECT_TRUE(other.isAlive());
    }
};

TEST_F(CentralHostile, AnUnknownActionIsSkippedByItsLength) {
    send(request(12345, std::string(100'000, 'x')) + request(-7, "") + request(0, "abc"));
    EXPECT_TRUE(client.isAlive());
}

TEST_F(CentralHostile, ANegativeLengthEndsTheConnection) {
    send(wireOf<LONG>(70) + wireOf<LONG>(-1));
    expectOnlyThisConnectionEnded();
}

TEST_F(CentralHostile, AnAbsurdLengthEndsTheConnectionWithALineOnStandardError) {
    ::testing::internal::CaptureStderr();
    send(wireOf<LONG>(96) + wireOf<LONG>(INT32_MAX));
    expectOnlyThisConnectionEnded();
    const std::string said = ::testing::internal::GetCapturedStderr();
    EXPECT_NE(std::string::npos, said.find("announced 2147483647 bytes for action 96: closed"))
        << said;
}

TEST_F(CentralHostile, ARegistrationThatIsNoUserGetsAnEmptyAnswer) {
    for (const std::string& payload :
         {std::string(), std::string("garbage"), goldenWire("users-two"), goldenWire("user-plain"),
          goldenWire("user-plain-object").substr(0, 30)}) {
        send(request(96, payload));
        EXPECT_EQ(0, receive<LONG>(client));
    }
    EXPECT_TRUE(userNames(client).empty());
}

TEST_F(CentralHostile, ARequestInSingleBytesIsServed) {
    for (const std::string& byte : inSingleBytes(goldenWire("request-isAlive"))) {
        send(byte);
        ::Sleep(10);
    }
    EXPECT_EQ(NySe::kAliveAnswer, receive<LONG>(client));
}

TEST_F(CentralHostile, ARequestCutShortEndsTheConnection) {
    send(wireOf<LONG>(96) + wireOf<LONG>(1000) + "only this");
    ::shutdown(NySeClientAppAccess::socket(client), SD_SEND);
    expectOnlyThisConnectionEnded();
}

TEST_F(CentralHostile, ManyRequestsInOnePieceAreAllAnswered) {
    std::string requests;
    for (int i = 0; i < 1000; ++i) requests += goldenWire("request-isAlive");
    send(requests);
    for (int i = 0; i < 1000; ++i) {
        ASSERT_EQ(NySe::kAliveAnswer, receive<LONG>(client));
    }
}

// A cut or foreign payload of each request that has one, and what it is answered by.
TEST_F(CentralHostile, APayloadThatMakesNoSenseGetsTheFailureAnswerAndChangesNothing) {
    const std::string minusOne = wireOf<LONG>(-1);
    const std::string zeroByte(1, '\0');
    const std::string emptyMessage = wireOf<LONG>(0);
    const std::pair<LONG, std::string> answers[] = {{3, minusOne},      {4, ""},
                                                    {6, emptyMessage},  {11, zeroByte},
                                                    {12, ""},           {13, zeroByte},
                                                    {72, ""},           {73, ""},
                                                    {75, zeroByte},     {95, emptyMessage},
                                                    {96, emptyMessage}, {97, wireOf<LONG>(2015)}};
    for (const std::string& payload :
         {std::string(), std::string("\xFF\xFE", 2), std::string("\xFF\xFE\xFF\x7F", 4)}) {
        for (const auto& [action, answer] : answers) {
            if (payload.size() == 4 && (action == 4 || action == 6 || action == 95 || action == 97))
                continue;  // a number there
            SCOPED_TRACE(action);
            send(request(action, payload) + goldenWire("request-isAlive"));
            std::string came(answer.size(), '?');
            for (char& byte : came) byte = receive<char>(client);
            EXPECT_EQ(answer, came);
            EXPECT_EQ(NySe::kAliveAnswer, receive<LONG>(client));
        }
    }
    expectNothingHeld(client);
    EXPECT_NE(std::string::npos, server.events().newest(1000).find("action 97 makes no sense"));
}

TEST_F(CentralHostile, AClientThatTakesNoAnswersHoldsNobodyUp) {
    for (int i = 0; i < 200; ++i) client.lock(CString(std::to_string(i).c_str()), 0);
    std::string flood;
    for (int i = 0; i < 2000; ++i) flood += goldenWire("request-getLock");
    send(flood);
    NySeClientApp other;
    connect(other);
    EXPECT_TRUE(other.isAlive());
    EXPECT_TRUE(other.lock("mine", 0));
}

}  // namespace
