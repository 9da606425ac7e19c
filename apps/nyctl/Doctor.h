// Doctor: what a host needs of a central server, tried one after the other.
#pragma once

#include <array>
#include <chrono>
#include <string>

#include "apps/nyctl/CommandTools.h"

namespace apps::nyctl {

// What one check found.
struct Finding {
    std::string found;    // in a few words
    std::string meaning;  // of a failure, in a sentence; empty when all is well
    std::string remedy;   // what to do, in a sentence
    ExitStatus status = exitYes;

    static Finding well(std::string found) { return {std::move(found), {}, {}, exitYes}; }
};

// It has connections and a listener of its own, and a user, who is gone when it is. Used by one
// thread, for one run.
class Doctor {
  public:
    struct Check {
        const char* name;
        Finding (Doctor::*run)();
    };

    // In their order. Each needs what the ones before it have found well.
    static const std::array<Check, 7> kChecks;

    // `options` say where the server is and, when isUserChosen, the name to register under.
    // `timeOut`: how long the server has for a connection or a notification.
    Doctor(const Options& options, std::chrono::seconds timeOut);

    // Shows each check; none is tried behind the first that fails. The status of that one, or
    // exitYes.
    ExitStatus examine(const Output& output);

  private:
    using Clock = std::chrono::steady_clock;

    Finding lookUpName();
    Finding connect();
    Finding agreeOnSchema();
    Finding askForLife();
    Finding registerUser();
    Finding awaitServer();
    Finding awaitNotification();

    // A text for this user from another session, which is no user's. False when the server does not
    // take it.
    bool sendToUser(const std::string& text);
    // Sends it and waits for it to come to a window. A finding of failure, or well.
    Finding passThroughWindow(const std::string& text);
    // Dispatches messages until `isDone`; false when the timeout ends before that.
    template <class Condition>
    bool waitFor(Condition isDone) const;
    std::string timeOut() const { return std::to_string(m_timeOut.count()) + " s"; }
    const NySeUser& user() const { return m_session.user(); }

    const Options m_options;
    const ServerAddress m_server;
    const std::chrono::seconds m_timeOut;
    std::string m_dotted;  // the server's address once it is known
    Session m_session;
};

Run defineDoctor(CLI::App& command);

}  // namespace apps::nyctl
