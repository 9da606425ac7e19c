#include "tests/client/ClientTest.h"

#include "NyServer/socket/CUT_WSClient.h"

namespace {

// Pieces sent closer together than this may arrive as one.
constexpr int kPieceGapMs = 30;

// Up to `count` bytes, fewer when the client closes.
std::string receive(peers::Connection& connection, size_t count) {
    std::string bytes;
    char byte;
    while (bytes.size() < count && ::recv(connection.socket(), &byte, 1, 0) == 1) bytes += byte;
    return bytes;
}

}  // namespace

SOCKET NySeClientAppAccess::socket(const NySeClientApp& client) {
    return client.m_socket->GetSocket();
}

std::string wire(std::string_view hexText) {
    const Bytes bytes = fromHex(hexText);
    return std::string(bytes.begin(), bytes.end());
}

std::string goldenWire(const std::string& name) {
    const Bytes& bytes = golden(name).bytes;
    return std::string(bytes.begin(), bytes.end());
}

std::vector<std::string> inSingleBytes(const std::string& bytes) {
    std::vector<std::string> pieces;
    for (const char byte : bytes) pieces.emplace_back(1, byte);
    return pieces;
}

void ClientTest::serve(std::vector<Step> steps, Then then) {
    m_steps = std::move(steps);
    m_peer = std::make_unique<peers::Peer>(
        [this, then](peers::Connection& connection) { follow(connection, then); });
    ASSERT_EQ(0, client.connect(static_cast<int>(m_peer->port()), "127.0.0.1", -1));
}

void ClientTest::TearDown() {
    // The server waits for this.
    client.disconnect();
}

void ClientTest::follow(peers::Connection& connection, Then then) {
    for (const Step& step : m_steps) {
        m_received += receive(connection, step.request.size());
        for (size_t i = 0; i < step.answer.size(); ++i) {
            if (i > 0) ::Sleep(kPieceGapMs);
            connection.send(step.answer[i]);
        }
    }
    if (then == Then::wait) m_received += receive(connection, SIZE_MAX);
}

void ClientTest::expectRequestsSent() {
    ASSERT_TRUE(client.disconnect());
    ASSERT_EQ(1, m_peer->waitForServed(1));
    std::string expected;
    for (const Step& step : m_steps) expected += step.request;
    const std::string goodBye = goldenWire("request-disconnect");
    const auto bytes = [](const std::string& text) {
        return toHex(Bytes(text.begin(), text.end()));
    };
    EXPECT_EQ(bytes(expected + goodBye), bytes(m_received));
}
