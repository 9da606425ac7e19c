#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/listener/ListenerTest.h"

namespace {

class ListenerExceptions : public ScriptedListenerTest {
  protected:
    // The next body that is read fails so.
    void failNextBody(std::function<void()> fail) {
        m_listener.script->receive = [this, fail](char*, int, int timeOut) {
            if (timeOut == 30 && !m_hasFailed.exchange(true)) fail();
            return ProbeListenerWorker::kFromSocket;
        };
    }
    void expectLosesTheMessageOnly() {
        auto peer = connect();
        peer.send(frame(50));
        peer.send(wireOf(51) + wireOf(4));
        m_window.awaitMessages(1);
        ASSERT_TRUE(eventually([&] { return m_hasFailed.load(); }));
        peer.send(frame(52, "abc"));
        const auto all = postedFor(peer);
        ASSERT_EQ(all.size(), 2u);
        EXPECT_EQ(all[1].action(), 52);
        EXPECT_EQ(m_listener.script->all().back().action, 1);
    }
    void expectEndsTheConnectionOnly() {
        auto bystander = connect();
        auto peer = connect();
        peer.send(frame(51, "body"));
        EXPECT_EQ(peer.receive(), "");
        EXPECT_TRUE(m_hasFailed);
        EXPECT_TRUE(m_listener.awaitWorkers(1));
        EXPECT_TRUE(isAlive(bystander));
        auto next = connect();
        next.send(frame(53, "next"));
        const auto all = postedFor(next);
        ASSERT_EQ(all.size(), 1u);
        EXPECT_EQ(all[0].payload(), "next");
    }

    std::atomic<bool> m_hasFailed = false;
};

TEST_F(ListenerExceptions, AFileExceptionLosesItsMessageOnly) {
    failNextBody([] { AfxThrowFileException(CFileException::genericException); });
    expectLosesTheMessageOnly();
}

TEST_F(ListenerExceptions, AnArchiveExceptionLosesItsMessageOnly) {
    failNextBody([] { AfxThrowArchiveException(CArchiveException::endOfFile); });
    expectLosesTheMessageOnly();
}

TEST_F(ListenerExceptions, AShortageOfMemoryEndsItsConnectionOnly) {
    failNextBody([] { AfxThrowMemoryException(); });
    expectEndsTheConnectionOnly();
}

TEST_F(ListenerExceptions, AStandardExceptionEndsItsConnectionOnly) {
    failNextBody([] { throw std::runtime_error("from a derived worker"); });
    expectEndsTheConnectionOnly();
}

}  // namespace
