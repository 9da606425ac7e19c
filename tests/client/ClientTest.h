// A client connected to a server that follows a script.
#pragma once

#include <gtest/gtest.h>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "NyServer/client/NySeClientApp.h"
#include "NyServer/socket/CUT_WSClient.h"
#include "tests/socket/Peers.h"
#include "tests/support/CStringPrinter.h"
#include "tests/support/Golden.h"

// Reaches the private transport.
struct NySeClientAppAccess {
    static bool sendMemFile(NySeClientApp& client, NySeMemFile& message);
    static bool receiveMemfile(NySeClientApp& client, CMemFile& into);
    static bool receiveString(NySeClientApp& client, CString& into);
    static void transfertObject(QoArraySerial2& from, QoArraySerial2& to);
    static const CUT_WSClient& transport(const NySeClientApp& client);
    static SOCKET socket(const NySeClientApp& client);
    // The client takes `transport` over, in place of the one it has.
    static void setTransport(NySeClientApp& client, CUT_WSClient* transport);
    // Without a good-bye.
    static void closeConnection(NySeClientApp& client);
};

// Bytes as they go over a socket, from hex text or from the golden file.
std::string wire(std::string_view hexText);
std::string goldenWire(const std::string& name);
// The user of the golden requests.
NySeUser goldenUser();
// Bytes for a SCOPED_TRACE.
std::string shown(const std::string& bytes);
// The object after its length, as in a reply of a server.
std::string messageOf(const CObject& object);
// Each byte alone, for peers that send with pauses.
std::vector<std::string> inSingleBytes(const std::string& bytes);
template <class Scalar>
std::string wireOf(Scalar value) {
    return std::string(reinterpret_cast<const char*>(&value), sizeof value);
}

// Counts the bytes that a client has received.
class ReceivedBytes {
  public:
    void reset();
    void add(size_t count);
    // Waits until there are `count` of them, at most 60 s.
    void await(size_t count);

  private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    size_t m_count = 0;
};

class ClientTest : public ::testing::Test {
  protected:
    ClientTest();
    void TearDown() override;

    // What the server does with one request: reads as many bytes as `request` has, then sends
    // `answer` in pieces, each once the client has received the one before.
    struct Step {
        std::string request;
        std::vector<std::string> answer;
        int pauseMs = 0;  // before each further piece
    };
    enum class Then { wait, close };

    // To a peer on a port of this host.
    template <class Server>
    void connectTo(const Server& server) {
        ASSERT_EQ(0, client.connect(static_cast<int>(server.port()), "127.0.0.1", -1));
    }

    // Starts a server that takes one connection through the steps, and connects to it.
    void serve(std::vector<Step> steps, Then then = Then::wait);
    void serveRequest(const std::string& request, const std::string& answer = "",
                      Then then = Then::wait) {
        serve({{request, {answer}}}, then);
    }
    // Expects that what the server read is exactly the steps' requests, and nothing after them.
    // Ends the connection.
    void expectRequestsSent();

  private:
    ReceivedBytes m_taken;  // by the client

  protected:
    NySeClientApp client;

  private:
    void follow(peers::Connection& connection, Then then);

    std::vector<Step> m_steps;
    std::string m_received;
    std::unique_ptr<peers::Peer> m_peer;
};
