// The same calls against the same peers give the same results, error numbers and bytes on every
// system: each row is one connection, and its results are written down once for all systems.
#include <gtest/gtest.h>

#include <map>
#include <sstream>

#include "tests/socket/LocalConnection.h"
#include "tests/socket/ProbeServer.h"

namespace {

using peers::Connection;

// What a call of the script gives: the function's result, and the codes that OnError was given.
class Caller {
  public:
    // `call` is NAME or NAME:ARGUMENT.
    std::string result(const std::string& call, unsigned int port) {
        const size_t colon = std::min(call.find(':'), call.size());
        m_port = port;
        m_argument = colon < call.size() ? call.substr(colon + 1) : "";
        m_client.codes.clear();
        m_worker.codes.clear();
        std::string text = call + "=" + (this->*functions().at(call.substr(0, colon)))();
        for (const int code : m_client.codes) text += "," + std::to_string(code);
        for (const int code : m_worker.codes) text += "," + std::to_string(code);
        return text;
    }

  private:
    using Function = std::string (Caller::*)();

    static const std::map<std::string, Function>& functions() {
        static const std::map<std::string, Function> all = {
            {"accept", &Caller::accept},
            {"bound", &Caller::bound},
            {"clear", &Caller::clear},
            {"close", &Caller::close},
            {"connect", &Caller::connect},
            {"datagram", &Caller::datagram},
            {"error", &Caller::error},
            {"file", &Caller::file},
            {"finish", &Caller::finish},
            {"has", &Caller::has},
            {"is", &Caller::is},
            {"line", &Caller::line},
            {"lines", &Caller::lines},
            {"listen", &Caller::listen},
            {"lookup", &Caller::lookUp},
            {"mode", &Caller::mode},
            {"name", &Caller::name},
            {"option", &Caller::option},
            {"receive", &Caller::receive},
            {"remote", &Caller::remote},
            {"send", &Caller::send},
            {"text", &Caller::text},
            {"timeout", &Caller::timeOut},
            {"wait", &Caller::wait},
            {"refused", &Caller::refused},
            {"reset", &Caller::reset},
            {"taken", &Caller::taken},
            {"datagrams", &Caller::datagrams},
            {"to", &Caller::to},
            {"from", &Caller::from},
            {"worker", &Caller::worker},
            {"w-receive", &Caller::workerReceive},
            {"w-line", &Caller::workerLine},
            {"w-send", &Caller::workerSend},
            {"w-lines", &Caller::workerLines},
            {"serve", &Caller::serve},
        };
        return all;
    }

    int number() const { return std::atoi(m_argument.c_str()); }
    static std::string show(int result, const char* bytes = "") {
        std::string text = std::to_string(result);
        if (*bytes) text += std::string("'") + bytes + "'";
        return text;
    }

    std::string connect() { return show(m_client.Connect(m_port, "127.0.0.1", 10)); }
    std::string bound() {
        char own[] = "127.0.0.1";
        char other[] = "127.0.0.1";
        return show(m_client.ConnectBound(0, m_port, own, other, AF_INET, SOCK_STREAM));
    }
    std::string datagram() {
        char own[] = "127.0.0.1";
        return show(m_client.CreateUDPSocket(0, 0, own, own));
    }
    std::string listen() {
        return show(m_client.WaitForConnect(static_cast<unsigned short>(number()), 1, AF_INET,
                                            htonl(INADDR_LOOPBACK)));
    }
    std::string accept() { return show(m_client.WaitForAccept(0)); }
    std::string close() { return show(m_client.CloseConnection()); }
    std::string finish() { return show(port::finishSending(m_client.GetSocket())); }
    std::string send() {
        return show(m_client.Send(m_argument.c_str(), static_cast<int>(m_argument.size())));
    }
    std::string lines() {
        return show(
            m_client.SendAsLine(m_argument.c_str(), static_cast<int>(m_argument.size()), 4));
    }
    std::string file() { return show(m_client.SendFile(_T("/no/such/file"))); }
    std::string receive() {
        char buffer[64] = "";
        return show(m_client.Receive(buffer, number(), 0), buffer);
    }
    std::string line() {
        char buffer[64] = "";
        return show(m_client.ReceiveLine(buffer, number(), 0), buffer);
    }
    std::string clear() { return show(m_client.ClearReceiveBuffer()); }
    std::string wait() { return show(m_client.WaitForReceive(number(), 0)); }
    std::string has() { return show(m_client.IsDataWaiting()); }
    std::string is() { return show(m_client.IsConnected()); }
    std::string mode() { return show(m_client.SetBlockingMode(number())); }
    std::string timeOut() { return show(m_client.SetReceiveTimeOut(number())); }
    std::string option() {
        int value = -1;
        const int result = m_client.GetSocketOption(SO_TYPE, &value);
        return show(result) + "/" + show(value);
    }
    std::string remote() { return show(m_client.GetRemotePort() == static_cast<int>(m_port)); }
    std::string lookUp() {
        char address[64] = "";
        return show(m_client.GetAddressFromName(m_argument.c_str(), address, sizeof address),
                    address);
    }
    std::string name() { return show(m_client.IsIPAddress(m_argument.c_str())); }
    // What a system call gives, and the number of its failure.
    std::string error() {
        char byte;
        const int received = port::receive(m_client.GetSocket(), &byte, 1, 0);
        return show(received) + (received < 0 ? "/" + show(port::lastSocketError()) : "");
    }
    std::string text() {
        const SOCKET socket = m_client.GetSocket();
        int code = -1;
        const WCHAR* const words = SocketErrorText(&socket, &code);
        return show(code,
                    std::string(words, words + std::char_traits<WCHAR>::length(words)).c_str());
    }

    std::string refused() {
        const peers::RefusingPort nobody;
        return show(m_client.Connect(nobody.port(), "127.0.0.1", number()));
    }
    // Connects to a peer that resets the connection.
    std::string reset() {
        peers::ResettingPort peer;
        const int result = m_client.connectTo(peer.port());
        peer.resetConnections();
        EXPECT_TRUE(m_client.hasArrived());
        return show(result);
    }
    std::string taken() {
        const auto port = static_cast<unsigned short>(m_port);
        return show(m_client.WaitForConnect(port, 1, AF_INET, htonl(INADDR_LOOPBACK)));
    }

    // The datagram socket's peer is m_other.
    std::string datagrams() {
        char own[] = "127.0.0.1";
        const int other = peers::portOf(m_other);
        return show(m_client.CreateUDPSocket(0, static_cast<unsigned int>(other), own, own));
    }
    std::string to() {
        int length = number();
        const std::string data(static_cast<size_t>(length), 'x');
        const int result = m_client.SendTo(data.data(), length);
        return show(result) + "/" + show(length);
    }
    // Receives "datagram" with room for so many bytes.
    std::string from() {
        const int own = m_client.GetLocalPort();
        port::sendTo(m_other.get(), "datagram", 8,
                     peers::loopbackAddress(static_cast<unsigned int>(own)));
        char buffer[64] = "";
        int length = number();
        const int result = m_client.ReceiveFrom(buffer, length, 10);
        return show(result) + "/" + (length > 0 ? show(length, buffer) : show(length));
    }

    std::string worker() {
        m_workerSocket = peers::connectTo(m_port);
        m_worker.attach(m_workerSocket.get());
        return show(static_cast<bool>(m_workerSocket));
    }
    std::string workerReceive() {
        char buffer[64] = "";
        return show(m_worker.Receive(buffer, number(), 10), buffer);
    }
    std::string workerLine() {
        char buffer[64] = "";
        return show(m_worker.ReceiveLine(buffer, number(), 10), buffer);
    }
    std::string workerSend() {
        return show(m_worker.Send(m_argument.c_str(), static_cast<int>(m_argument.size()), 0));
    }
    std::string workerLines() {
        return show(m_worker.SendAsLine(m_argument.data(), static_cast<int>(m_argument.size()), 4));
    }
    // A line to a listener, and its answer.
    std::string serve() {
        ProbeServer server;
        const bool isStarted = server.start();
        return show(isStarted, server.converse(m_argument + "\r\n").c_str());
    }

    peers::WinsockSession m_winsock;
    ProbeClient m_client;
    NySe::UniqueSocket m_other = peers::bindToLoopback(SOCK_DGRAM);
    ProbeWorker m_worker;
    NySe::UniqueSocket m_workerSocket;
    unsigned int m_port = 0;
    std::string m_argument;
};

struct Row {
    const char* name;
    peers::Script peer;  // null: nobody connects
    const char* calls;   // separated by '|'
    const char* results;
    const char* received;  // by the peer
};

// Scripts of the peer; what the client sends after them is received by the test.
peers::Script says(std::string data) {
    return [data](Connection& client) {
        client.send(data);
        client.finishSending();
    };
}
peers::Script asks(size_t count, std::string answer) {
    return [count, answer](Connection& client) {
        for (std::string question; question.size() < count;) question += client.receive();
        client.send(answer);
    };
}
peers::Script waits() {
    return [](Connection&) {};
}

const Row kRows[] = {
    {"Lines", says("one\r\ntwo\nrest"),
     "connect|remote|wait:10|line:64|line:64|line:4|is|close|is|close",
     "connect=0,0,0,0,0,0,0,0|remote=1|wait:10=0,0|line:64=5'one\r\n'|line:64=4'two\n'|line:4=3'"
     "res'|is=1,0,0|close=0,0|is=0|close=0,0",
     ""},
    {"Answers", asks(4, "pong"),
     "bound|send:ping|wait:10|receive:64|send:bye|finish|wait:10|receive:8|error",
     "bound=0,0,0,0,0|send:ping=4|wait:10=0,0|receive:64=4'pong'|send:bye=3|finish=1|wait:10=0,0|"
     "receive:8=0|error=0",
     "bye"},
    {"PeerCloses", says("end"),
     "connect|wait:10|receive:64|wait:10|receive:64|line:64|is|has|send:x",
     "connect=0,0,0,0,0,0,0,0|wait:10=0,0|receive:64=3'end'|wait:10=0,0|receive:64=0|line:64=0|is="
     "0,0,0|has=0|send:x=1",
     "x"},
    {"NothingComes", waits(),
     "connect|timeout:50|has|receive:4|error|mode:0|receive:4|error|mode:1|error|wait:0|is|clear",
     "connect=0,0,0,0,0,0,0,0|timeout:50=0,0|has=0|receive:4=-1|error=-1/"
     "10060|mode:0=0,0|receive:4=-1|error=-1/10060|mode:1=0,0|error=-1/"
     "10035|wait:0=1,1|is=1,0,0,0|clear=0,0",
     ""},
    {"Sends", waits(), "connect|send:hello|send:|lines:abcdefgh|file|option",
     "connect=0,0,0,0,0,0,0,0|send:hello=5|send:=0|lines:abcdefgh=8|file=79,79|option=0/1",
     "helloabcd\r\nefgh\r\n"},
    {"NotConnected", nullptr, "send:x|receive:4|line:4|wait:0|is|has|clear|close|option|error|text",
     "send:x=0|receive:4=-1|line:4=0|wait:0=1,1|is=0|has=0|clear=0,0|close=0,0|option=-1/"
     "-1|error=-1/10038|text=10038'GetSockOpt error: WSAENOTSOCK'",
     ""},
    {"ConnectsTwice", waits(), "connect|connect|bound|datagram|is",
     "connect=0,0,0,0,0,0,0,0|connect=16,16|bound=16,16|datagram=16,16|is=1,0,0,0", ""},
    {"Listens", waits(), "listen:0|listen:0|accept|connect|close|accept",
     "listen:0=0,0,-1,-1,0|listen:0=16,16|accept=1,1|connect=0,0,0,0,0,0,0,0|close=1,1|accept=1,1",
     ""},
    {"Datagrams", nullptr, "datagram|option|send:x|wait:0|datagram|connect|close",
     "datagram=0,0,0,0,0|option=0/2|send:x=0|wait:0=1,1|datagram=16,16|connect=16,16|close=0,0",
     ""},
    {"Names", nullptr,
     "lookup:127.0.0.1|lookup:localhost|lookup:no.such.name.invalid|name:1.2.3.4|name:1.2.3|name:1."
     "2.3.456",
     "lookup:127.0.0.1=0'127.0.0.1',0|lookup:localhost=0'127.0.0.1',0|lookup:no.such.name.invalid="
     "7,7|name:1.2.3.4=1|name:1.2.3=1|name:1.2.3.456=0",
     ""},
    {"Refused", nullptr, "refused:1|refused:-1|is", "refused:1=5,0,0,1,5|refused:-1=19,0,19|is=0",
     ""},
    {"ResetReceive", nullptr, "reset|wait:10|has", "reset=0,0,0,0,0,0,0,0,0|wait:10=0,0|has=0", ""},
    {"ResetSend", nullptr, "reset|send:x|send:x", "reset=0,0,0,0,0,0,0,0,0|send:x=0|send:x=0", ""},
    {"ResetIs", nullptr, "reset|is", "reset=0,0,0,0,0,0,0,0,0|is=0,0,0", ""},
    {"Taken", waits(), "connect|taken|bound", "connect=0,0,0,0,0,0,0,0|taken=18,0,18|bound=16,16",
     ""},
    {"LongDatagrams", nullptr, "datagrams|to:5|to:70000|from:8|from:4|from:64",
     "datagrams=0,0,0,0,0|to:5=0/5,0|to:70000=22/-1,22|from:8=0/8'datagram',0,0|from:4=21/"
     "-1,0,21|from:64=0/8'datagram',0,0",
     ""},
    {"Worker", says("one\r\ntwo\r\nrest"),
     "worker|w-line:64|w-line:4|w-receive:64|w-line:64|w-receive:64",
     "worker=1|w-line:64=5'one\r\n',0|w-line:4=3'two',0|w-receive:64=6'\r\nrest',0|w-line:64=0,0|w-"
     "receive:64=0,0",
     ""},
    {"WorkerSends", waits(), "worker|w-send:hello|w-send:|w-lines:abcdefgh",
     "worker=1|w-send:hello=5|w-send:=0|w-lines:abcdefgh=12", "helloabcd\r\nefgh\r\n"},
    {"Listener", nullptr, "serve:hi|serve:",
     "serve:hi=1'Connect Successful ... Now Disconnecting.'|serve:=1'Connect Successful ... Now "
     "Disconnecting.'",
     ""},
    {"Healthy", waits(), "connect|text|close",
     "connect=0,0,0,0,0,0,0,0|text=0'Last error not available'|close=0,0", ""},
};

class SameOnEverySystem : public testing::TestWithParam<Row> {};

std::string resultsOf(const char* calls, unsigned int port) {
    Caller caller;
    std::istringstream script(calls);
    std::string all;
    for (std::string call; std::getline(script, call, '|');)
        all += (all.empty() ? "" : "|") + caller.result(call, port);
    return all;
}

TEST_P(SameOnEverySystem, GivesTheseResults) {
    std::string received;
    {
        peers::Peer peer([&received](Connection& connection) {
            GetParam().peer(connection);
            received = connection.receiveAll();
        });
        EXPECT_EQ(resultsOf(GetParam().calls, peer.port()), GetParam().results);
        if (GetParam().peer) peer.waitForServed(1);
    }
    EXPECT_EQ(received, GetParam().received);
}

INSTANTIATE_TEST_SUITE_P(Script, SameOnEverySystem, testing::ValuesIn(kRows),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
