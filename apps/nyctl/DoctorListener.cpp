// The checks from the server to this user's listener and its window.
#include <memory>

#include "apps/nyctl/Doctor.h"
#include "apps/nyctl/WatchWindow.h"
#include "NyServer/framing/NySeReply.h"
#include "NyServer/records/NySeMessage.h"

namespace apps::nyctl {

namespace {

// The interval of the checks while waiting, in milliseconds.
constexpr DWORD kWaitRound = 20;

// A text that no other doctor sends.
std::string ownText() {
    return "nyctl doctor " + std::to_string(::GetCurrentProcessId()) + ' ' +
           std::to_string(::GetTickCount64());
}

bool holds(CMemFile& payload, const std::string& text) {
    const std::unique_ptr<CObject> object(
        NySe::readReplyObject(payload, RUNTIME_CLASS(NySeMessage)));
    const auto* const message = static_cast<const NySeMessage*>(object.get());
    return message != nullptr && toUtf8(message->getStrMessage()) == text;
}

Finding noSecondSession() {
    return {"the server serves no second session",
            "it serves as many clients as it may, or stopped answering",
            "look at what it says; have other clients end, or start it with a larger "
            "--max-sessions",
            exitNoAnswer};
}

}  // namespace

template <class Condition>
bool Doctor::waitFor(Condition isDone) const {
    const auto end = Clock::now() + m_timeOut;
    while (!isDone()) {
        if (Clock::now() >= end) return false;
        if (!dispatchNextMessage())
            ::MsgWaitForMultipleObjects(0, nullptr, FALSE, kWaitRound, QS_ALLINPUT);
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

// The server connects when it has a notification. There is no window yet, so it is not shown.
Finding Doctor::awaitServer() {
    if (!m_session.listenFrom(user().getPort()))
        return {"the server gives no port that is free here",
                "other programs of this machine listen at all the ports that it has to give",
                "end those programs, or start the server with other --ports", exitNo};
    const NyServerApp& listener = m_session.listener();
    const std::string port = std::to_string(listener.getPortNumber());
    if (!sendToUser(ownText())) return noSecondSession();
    if (waitFor([&listener] { return listener.GetNumConnections() > 0; }))
        return Finding::well("the server has come to port " + port);
    return {"nobody has come to port " + port + " within " + timeOut(),
            "the server cannot reach this machine's listener: a firewall keeps it out, or an "
            "address is translated between the two machines",
            "let the server's machine through to the ports that it hands out (nycentral --ports) "
            "on this machine's firewall, and on those between",
            exitNoAnswer};
}

Finding Doctor::awaitNotification() {
    try {
        return passThroughWindow(ownText());
    } catch (const std::runtime_error& error) {  // no window
        return {error.what(), "notifications come as messages of a window, and there can be none",
                "run it in a session that may have windows, with fewer windows open", exitNo};
    }
}

Finding Doctor::passThroughWindow(const std::string& text) {
    bool hasCome = false;
    NyServerApp& listener = m_session.listener();
    const WatchWindow window(listener, [&](NySe::ActionType, CMemFile& payload) {
        hasCome = hasCome || holds(payload, text);
    });
    const auto begin = Clock::now();
    if (!sendToUser(text)) return noSecondSession();
    if (!waitFor([&hasCome] { return hasCome; }))
        return {"no notification within " + timeOut(),
                "the server came to the listener, but tells it nothing that was sent to the user",
                "look at what the server says; look whether a program between the two machines "
                "takes connections in the listener's place",
                exitNoAnswer};
    const auto taken = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - begin);
    // There may be notifications of other users, too.
    if (!waitFor([&listener] { return listener.getPostMsgCount() == 0; }))
        return {"messages that are not consumed: " + std::to_string(listener.getPostMsgCount()),
                "notifications come faster than the window takes them",
                "have the other users send less, and try again", exitNo};
    return Finding::well("a notification came within " + std::to_string(taken.count()) +
                         " ms; none is left to consume");
}

}  // namespace apps::nyctl
