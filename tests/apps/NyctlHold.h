// Runs nyctl's hold with a server that a test scripts.
#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <string>

#include "tests/apps/AnsweringServer.h"
#include "tests/apps/ListenerPorts.h"
#include "tests/apps/NyctlRun.h"

class NyctlHold : public ::testing::Test {
  protected:
    // The server grants the lock at the request of that number, from 1.
    ExitStatus hold(int granted, const std::string& options) {
        m_answers[NySe::actionInitializeSchema] = answering(wireOf<LONG>(NySe::schema2015));
        m_answers.emplace(NySe::actionIsAlive, answering(wireOf<LONG>(NySe::kAliveAnswer)));
        m_answers[NySe::actionGetPortClient] = answering(registrationAnswer(m_listening));
        m_answers[NySe::actionUnLock] = [this](const std::string&) {
            ++m_releases;
            return std::string();
        };
        m_answers.emplace(NySe::actionLock, [this, granted](const std::string&) {
            const bool isGranted = ++m_requests == granted;
            if (!isGranted && m_notification) notify();
            return std::string(1, isGranted ? '\1' : '\0');
        });
        AnsweringServer server(m_answers);
        return m_run({{server.address(), "Anna"}}, "hold part/42 " + options + " -- " + m_command);
    }

    // Sends the notification to the listener.
    void notify() {
        if (!m_toListener)
            m_toListener = std::make_unique<peers::Connection>(
                peers::connectionTo(static_cast<unsigned int>(m_listening)));
        m_toListener->send(*m_notification);
    }

    // The release of a lock, as the server reports it.
    static std::string releaseOf(const char* name) {
        NySeLock lock;
        lock.setStrLockName(name);
        const std::string object = messageOf(lock).substr(sizeof(LONG));
        return wireOf<LONG>(NySe::notifyLockReleased) +
               wireOf<LONG>(static_cast<LONG>(object.size())) + object;
    }

    bool hasRun() const { return !m_run.printed().empty(); }

    const LONG m_listening = freePorts(1)[0];
    std::string m_command = "whoami";  // a program of both systems that prints something
    Answers m_answers;
    std::optional<std::string> m_notification;
    std::unique_ptr<peers::Connection> m_toListener;
    std::atomic<int> m_requests = 0;
    std::atomic<int> m_releases = 0;
    NyctlRun m_run;
};
