#include "tests/client/ClientTest.h"

#include "tests/support/Exposed.h"

namespace {

// Up to `count` bytes, fewer when the client closes.
std::string receive(peers::Connection& connection, size_t count) {
    std::string bytes;
    char byte;
    while (bytes.size() < count && port::receive(connection.socket(), &byte, 1, 0) == 1)
        bytes += byte;
    return bytes;
}

class CountingTransport : public CUT_WSClient {
  public:
    explicit CountingTransport(ReceivedBytes& received) : m_received(received) {}

    using CUT_WSClient::Receive;
    int Receive(char* buffer, int len, int timeOut) override {
        const int result = CUT_WSClient::Receive(buffer, len, timeOut);
        if (result > 0) m_received.add(static_cast<size_t>(result));
        return result;
    }

  private:
    ReceivedBytes& m_received;
};

}  // namespace

NY_EXPOSE(NySeClientApp, sendMemFile);
NY_EXPOSE(NySeClientApp, receiveMemfile);
NY_EXPOSE(NySeClientApp, receiveString);
NY_EXPOSE(NySeClientApp, transfertObject);
NY_EXPOSE(NySeClientApp, m_socket);

bool NySeClientAppAccess::sendMemFile(NySeClientApp& client, NySeMemFile& message) {
    return (client.*memberOf(Of_sendMemFile()))(message);
}

bool NySeClientAppAccess::receiveMemfile(NySeClientApp& client, CMemFile& into) {
    return (client.*memberOf(Of_receiveMemfile()))(into);
}

bool NySeClientAppAccess::receiveString(NySeClientApp& client, CString& into) {
    return (client.*memberOf(Of_receiveString()))(into);
}

void NySeClientAppAccess::transfertObject(QoArraySerial2& from, QoArraySerial2& to) {
    memberOf(Of_transfertObject())(from, to);
}

const CUT_WSClient& NySeClientAppAccess::transport(const NySeClientApp& client) {
    return *(client.*memberOf(Of_m_socket()));
}

SOCKET NySeClientAppAccess::socket(const NySeClientApp& client) {
    return transport(client).GetSocket();
}

void NySeClientAppAccess::setTransport(NySeClientApp& client, CUT_WSClient* transport) {
    CUT_WSClient*& own = client.*memberOf(Of_m_socket());
    delete own;
    own = transport;
}

void NySeClientAppAccess::closeConnection(NySeClientApp& client) {
    (client.*memberOf(Of_m_socket()))->CloseConnection();
}

std::string wire(std::string_view hexText) {
    const Bytes bytes = fromHex(hexText);
    return std::string(bytes.begin(), bytes.end());
}

std::string goldenWire(const std::string& name) {
    const Bytes& bytes = golden(name).bytes;
    return std::string(bytes.begin(), bytes.end());
}

NySeUser goldenUser() {
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

std::string shown(const std::string& bytes) {
    return toHex(Bytes(bytes.begin(), bytes.end()));
}

std::string messageOf(const CObject& object) {
    NySeMemFile message;
    message.startWrite(NySe::schema2015);
    message.writeObject(object);
    message.stopWriting();
    return std::string(reinterpret_cast<char*>(message.getBuffer()), message.getLength());
}

std::vector<std::string> inSingleBytes(const std::string& bytes) {
    std::vector<std::string> pieces;
    for (const char byte : bytes) pieces.emplace_back(1, byte);
    return pieces;
}

void ReceivedBytes::reset() {
    const std::lock_guard lock(m_mutex);
    m_count = 0;
}

void ReceivedBytes::add(size_t count) {
    const std::lock_guard lock(m_mutex);
    m_count += count;
    m_changed.notify_all();
}

void ReceivedBytes::await(size_t count) {
    std::unique_lock lock(m_mutex);
    m_changed.wait_for(lock, std::chrono::seconds(60), [&] { return m_count >= count; });
}

ClientTest::ClientTest() {
    NySeClientAppAccess::setTransport(client, new CountingTransport(m_taken));
}

void ClientTest::serve(std::vector<Step> steps, Then then) {
    m_peer.reset();
    m_received.clear();
    m_taken.reset();
    m_steps = std::move(steps);
    m_peer = std::make_unique<peers::Peer>(
        [this, then](peers::Connection& connection) { follow(connection, then); });
    connectTo(*m_peer);
}

void ClientTest::TearDown() {
    // The server waits for this.
    client.disconnect();
}

void ClientTest::follow(peers::Connection& connection, Then then) {
    // No piece waits for the one before it to be acknowledged.
    port::setNoDelay(connection.socket());
    size_t sent = 0;
    for (const Step& step : m_steps) {
        m_received += receive(connection, step.request.size());
        for (size_t i = 0; i < step.answer.size(); ++i) {
            if (i > 0) m_taken.await(sent);
            if (i > 0) port::sleep(static_cast<DWORD>(step.pauseMs));
            connection.send(step.answer[i]);
            sent += step.answer[i].size();
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
    EXPECT_EQ(shown(expected + goodBye), shown(m_received));
}
