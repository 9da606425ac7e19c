// What a client may send without harm to anybody else.
#include "tests/apps/CentralTest.h"

namespace {

class CentralHostile : public CentralTest {
  protected:
    void SetUp() override {
        CentralTest::SetUp();
        connect(client);
    }

    void send(const std::string& bytes) {
        const int length = static_cast<int>(bytes.size());
        ASSERT_EQ(length, ::send(NySeClientAppAccess::socket(client), bytes.data(), length, 0));
    }

    static std::string request(LONG action, const std::string& payload) {
        return wireOf(action) + wireOf(static_cast<LONG>(payload.size())) + payload;
    }

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
        LONG length = -1;
        ASSERT_EQ(
            4, ::recv(NySeClientAppAccess::socket(client), reinterpret_cast<char*>(&length), 4, 0));
        EXPECT_EQ(0, length);
    }
    EXPECT_TRUE(userNames(client).empty());
}

TEST_F(CentralHostile, ARequestInSingleBytesIsServed) {
    for (const std::string& byte : inSingleBytes(goldenWire("request-isAlive"))) {
        send(byte);
        ::Sleep(10);
    }
    LONG answer = 0;
    ASSERT_EQ(4,
              ::recv(NySeClientAppAccess::socket(client), reinterpret_cast<char*>(&answer), 4, 0));
    EXPECT_EQ(NySe::kAliveAnswer, answer);
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
        LONG answer = 0;
        ASSERT_EQ(4, ::recv(NySeClientAppAccess::socket(client), reinterpret_cast<char*>(&answer),
                            4, MSG_WAITALL));
        ASSERT_EQ(NySe::kAliveAnswer, answer);
    }
}

}  // namespace
