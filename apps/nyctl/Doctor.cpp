// The checks of the connection, and the output of all checks.
#include "apps/nyctl/Doctor.h"

#include <algorithm>

#include "apps/nyctl/TryConnect.h"
#include "NyServer/framing/NySeReply.h"
#include "NyServer/socket/CUT_WSClient.h"
#include "NyServer/socket/SocketCodes.h"

namespace apps::nyctl {

namespace {

constexpr const char* kDefaultUser = "nyctl doctor";

Options withOwnUser(Options options) {
    if (!options.isUserChosen) options.user = kDefaultUser;
    return options;
}

// Returns `text` padded to that width.
std::string cell(std::string text, size_t width) {
    text.resize(std::max(width, text.size()), ' ');
    return text;
}

std::string row(const char* first, const char* second, const std::string& third) {
    return cell(first, 16) + cell(second, 13) + third;
}

void show(const Output& output, const char* name, const Finding& finding) {
    if (finding.status == exitYes) {
        output.next({row(name, "ok", finding.found)},
                    {{"check", name}, {"result", "ok"}, {"found", finding.found}});
        return;
    }
    output.next({row(name, "FAILED", finding.found), row("", "it means", finding.meaning),
                 row("", "do", finding.remedy)},
                {{"check", name},
                 {"result", "failed"},
                 {"found", finding.found},
                 {"means", finding.meaning},
                 {"do", finding.remedy}});
}

void showNotReached(const Output& output, const char* name) {
    output.next({cell(name, 16) + "not reached"}, {{"check", name}, {"result", "not reached"}});
}

}  // namespace

const std::array<Doctor::Check, 7> Doctor::kChecks = {
    {{"name look-up", &Doctor::lookUpName},
     {"connect", &Doctor::connect},
     {"schema", &Doctor::agreeOnSchema},
     {"liveness", &Doctor::checkLiveness},
     {"registration", &Doctor::registerUser},
     {"listener port", &Doctor::awaitServer},
     {"notification", &Doctor::awaitNotification}}};

Doctor::Doctor(const Options& options, std::chrono::seconds timeOut)
    : m_options(withOwnUser(options)),
      m_server(parseServer(options.server).value_or(ServerAddress())),
      m_timeOut(timeOut),
      m_session(m_options) {}

ExitStatus Doctor::examine(const Output& output) {
    ExitStatus status = exitYes;
    for (const Check& check : kChecks) {
        if (status != exitYes) {
            showNotReached(output, check.name);
            continue;
        }
        const Finding finding = (this->*check.run)();
        show(output, check.name, finding);
        status = finding.status;
    }
    return status;
}

Finding Doctor::lookUpName() {
    CUT_WSClient client;
    const char* const name = m_server.host.c_str();
    if (client.IsIPAddress(name) == 1) {
        m_dotted = m_server.host;
        return Finding::ok(m_dotted + " is an address");
    }
    char dotted[30] = "";
    if (client.GetAddressFromName(name, dotted, sizeof dotted) == UTE_SUCCESS) m_dotted = dotted;
    if (!m_dotted.empty()) return Finding::ok(m_server.host + " is " + m_dotted);
    return {"no address of " + m_server.host, "this machine's name service does not know the name",
            "check the spelling; try the IPv4 address instead: nyctl --server ADDRESS:" +
                std::to_string(m_server.port) + " doctor",
            exitNoReply};
}

Finding Doctor::connect() {
    const std::string where = m_dotted + ':' + std::to_string(m_server.port);
    ConnectOutcome outcome = tryConnect(m_dotted, m_server.port, m_timeOut);
    if (outcome == ConnectOutcome::connected && !m_session.connect())
        outcome = ConnectOutcome::refused;
    switch (outcome) {
        case ConnectOutcome::connected:
            return Finding::ok(where + " accepts connections");
        case ConnectOutcome::refused:
            return {where + " refuses connections",
                    "the machine is reached, but no program listens on this port of this address",
                    "start the central server, and use the port that it prints; a server that "
                    "listens on 127.0.0.1 accepts only its own machine (nycentral --bind)",
                    exitNoReply};
        case ConnectOutcome::unreachable:
            return {where + " cannot be reached", "no network route leads to that machine",
                    "check the address and this machine's network", exitNoReply};
        default:
            return {where + " does not respond within " + timeOut(),
                    "the machine is off, or a firewall drops the packets to this port",
                    "check that the machine is running, and open the port in the firewalls",
                    exitNoReply};
    }
}

Finding Doctor::agreeOnSchema() {
    NySeClientApp& client = m_session.client();
    client.initializeSchema();
    const auto schema = static_cast<unsigned>(client.getSchemaType());
    const std::string current = std::to_string(NySe::schema2015);
    if (schema == NySe::schema2015) return Finding::ok(std::to_string(schema));
    if (schema != NySe::noSchema)
        return {"the server grants " + std::to_string(schema) + ", not " + current,
                "it uses another record format, or it is not a central server",
                "use a central server of schema " + current +
                    "; check whether the port is that of another program",
                exitNo};
    if (client.IsConnected() == 0)
        return {"the server closes the connection",
                "it has as many clients as its limit allows, or it is not a central server",
                "read its output; disconnect other clients, or start it with a larger "
                "--max-sessions; check whether the port is that of another program",
                exitNoReply};
    return {"no schema within " + std::to_string(NySe::kScalarTimeOut) + " s",
            "it hangs, or it is not a central server",
            "check whether the port is that of another program; restart the server", exitNoReply};
}

Finding Doctor::checkLiveness() {
    if (m_session.client().isAlive()) return Finding::ok("the server is alive");
    return {"the server does not reply",
            "the server agreed on the schema, but then stopped replying",
            "read its output, check the load of its machine; restart it", exitNoReply};
}

Finding Doctor::registerUser() {
    if (m_session.registerUser())
        return Finding::ok(m_options.user + " is session " +
                           std::to_string(user().getSessionNumber()) + ", notifications to port " +
                           std::to_string(user().getPort()));
    if (!m_session.client().isAlive())
        return {"no reply", "the server stopped replying when the user was registered",
                "read its output; restart it", exitNoReply};
    return {"the server refuses " + m_options.user,
            "it has no notification port left, or does not accept that name",
            "disconnect other users, or start the server with more --ports; try another --user",
            exitNo};
}

Run defineDoctor(CLI::App& command) {
    constexpr int kLongest = 3600;
    auto timeOut = std::make_shared<int>(15);
    command
        .add_option("--timeout", *timeOut,
                    "Time-out in seconds for a connection and for a notification")
        ->check(CLI::Range(1, kLongest))
        ->capture_default_str();
    return [timeOut](Context& context) {
        return Doctor(context.output.options(), std::chrono::seconds(*timeOut))
            .examine(context.output);
    };
}

}  // namespace apps::nyctl
