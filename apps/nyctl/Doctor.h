// Doctor: checks one after the other what a host needs from a central server.
#pragma once

#include <array>
#include <chrono>
#include <string>

#include "apps/nyctl/CommandTools.h"

namespace apps::nyctl {

// The result of one check.
struct Finding {
    std::string found;    // in a few words
    std::string meaning;  // of a failure, in a sentence; empty if there is none
    std::string remedy;   // what to do, in a sentence
    ExitStatus status = exitYes;

    static Finding ok(std::string found) { return {std::move(found), {}, {}, exitYes}; }
};

// Has its own connections, listener and user; the user is removed when it is destroyed. Used by one
// thread, for one run.
class Doctor {
  public:
    struct Check {
        const char* name;
        Finding (Doctor::*run)();
    };

    // In order. Each requires that the ones before it succeeded.
    static const std::array<Check, 7> kChecks;

    // `options` has the server and, if isUserChosen, the name to register under. `timeOut` is for a
    // connection and for a notification.
    Doctor(const Options& options, std::chrono::seconds timeOut);

    // Runs and shows the checks up to the first that fails. Returns the status of that one, or
    // exitYes.
    ExitStatus examine(const Output& output);

  private:
    using Clock = std::chrono::steady_clock;

    Finding lookUpName();
    Finding connect();
    Finding agreeOnSchema();
    Finding checkLiveness();
    Finding registerUser();
    Finding awaitServer();
    Finding awaitNotification();

    // Sends a text to this user from another session, which is not registered. Returns false if the
    // server does not accept it.
    bool sendToUser(const std::string& text);
    // Sends the text and waits until it is received.
    Finding passThroughReceiver(const std::string& text);
    // Calls `wait` until `isDone` returns true. Returns false at the time-out.
    template <class Condition, class Wait>
    bool waitFor(Condition isDone, Wait wait) const;
    std::string timeOut() const { return std::to_string(m_timeOut.count()) + " s"; }
    const NySeUser& user() const { return m_session.user(); }

    const Options m_options;
    const ServerAddress m_server;
    const std::chrono::seconds m_timeOut;
    std::string m_dotted;  // the server's address, after the look-up
    Session m_session;
};

Run defineDoctor(CLI::App& command);

}  // namespace apps::nyctl
