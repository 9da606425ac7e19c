// The checks from the server to this user's listener and its receiver.
#include <memory>
#include <random>

#include "apps/nyctl/Doctor.h"
#include "apps/nyctl/NotificationReceiver.h"
#include "NyServer/framing/NySeReply.h"
#include "NyServer/records/NySeMessage.h"

namespace apps::nyctl {

namespace {

// The interval of the checks while waiting, in milliseconds.
constexpr DWORD kWaitRound = 20;

// A text that no other doctor sends.
std::string ownText() {
    std::random_device random;
    return "nyctl doctor " + std::to_string(random()) + ' ' + std::to_string(random());
}

bool holds(CMemFile& payload, const std::string& text) {
    const std::unique_ptr<CObject> object(
        NySe::readReplyObject(payload, RUNTIME_CLASS(NySeMessage)));
    const auto* const message = static_cast<const NySeMessage*>(object.get());
    return message != nullptr && toUtf8(message->getStrMessage()) == text;
}

Finding noSecondSession() {
    return {"the server accepts no second session",
            "it has as many clients as its limit allows, or stopped replying",
            "read its output; disconnect other clients, or start it with a larger "
            "--max-sessions",
            exitNoReply};
}

}  // namespace

template <class Condition, class Wait>
bool Doctor::waitFor(Condition isDone, Wait wait) const {
    const auto end = Clock::now() + m_timeOut;
    while (!isDone()) {
        if (Clock::now() >= end) return false;
        wait();
    }
    return true;
}

bool Doctor::sendToUser(const std::string& text) {
    Session other(m_options);
    if (!other.open()) return false;
    NySeUser receiver = user();
    NySeMessage message;
    message.setStrMessage(fromUtf8(text));
    other.client().sendUserData(receiver, message);
    return other.client().isAlive();
}

// The server connects when it has a notification. Nothing receives it yet.
Finding Doctor::awaitServer() {
    if (!m_session.listenFrom(user().getPort()))
        return {"the server has no port that is free on this machine",
                "other programs of this machine listen on all the ports that it assigns",
                "end those programs, or start the server with other --ports", exitNo};
    const NyServerApp& listener = m_session.listener();
    const std::string port = std::to_string(listener.getPortNumber());
    if (!sendToUser(ownText())) return noSecondSession();
    if (waitFor([&listener] { return listener.GetNumConnections() > 0; },
                [] { port::sleep(kWaitRound); }))
        return Finding::ok("the server connected to port " + port);
    return {
        "no connection to port " + port + " within " + timeOut(),
        "the server cannot reach this machine's listener: a firewall blocks it, or an "
        "address is translated between the two machines",
        "allow the server's machine to connect to the ports that it assigns (nycentral --ports) "
        "in this machine's firewall and those between",
        exitNoReply};
}

Finding Doctor::awaitNotification() {
    try {
        return passThroughReceiver(ownText());
    } catch (const std::runtime_error& error) {  // no receiver
        return {error.what(), "nothing can be created that receives the notifications",
                "close other programs; on Windows run it in a session that allows windows", exitNo};
    }
}

Finding Doctor::passThroughReceiver(const std::string& text) {
    bool isReceived = false;
    NyServerApp& listener = m_session.listener();
    NotificationReceiver receiver(listener, [&](NySe::ActionType, CMemFile& payload) {
        isReceived = isReceived || holds(payload, text);
    });
    const auto receive = [&receiver] { receiver.receive(kWaitRound); };
    const auto begin = Clock::now();
    if (!sendToUser(text)) return noSecondSession();
    if (!waitFor([&isReceived] { return isReceived; }, receive))
        return {
            "no notification within " + timeOut(),
            "the server connected to the listener, but does not forward what was sent to the user",
            "read the server's output; check whether a program between the two machines "
            "accepts connections in place of the listener",
            exitNoReply};
    const auto taken = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - begin);
    // There may be notifications of other users, too.
    if (!waitFor([&listener] { return listener.getPostMsgCount() == 0; }, receive))
        return {"messages that are not consumed: " + std::to_string(listener.getPostMsgCount()),
                "notifications arrive faster than they are consumed",
                "have the other users send less, and retry", exitNo};
    return Finding::ok("a notification arrived after " + std::to_string(taken.count()) +
                       " ms; all are consumed");
}

}  // namespace apps::nyctl
