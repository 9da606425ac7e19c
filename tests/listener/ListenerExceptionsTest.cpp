#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/listener/ListenerTest.h"

namespace {

class ListenerExceptions : public ScriptedListenerTest {
  protected:
    // The next body that is read fails so.
    void failNextBody(const std::function<void()>& fail) {
        m_hasFailed = false;
        m_listener.script->receive = [this, fail](char*, int, int timeOut) {
            if (timeOut == 30 && !m_hasFailed.exchange(true)) fail();
            return ProbeListenerWorker::kFromSocket;
        };
    }

    std::atomic<bool> m_hasFailed = false;
};

TEST_F(ListenerExceptions, AFileOrArchiveExceptionLosesItsMessageOnly) {
    for (const auto& fail : std::vector<std::function<void()>>{
             [] { AfxThrowFileException(CFileException::genericException); },
             [] { AfxThrowArchiveException(CArchiveException::endOfFile); }}) {
        failNextBody(fail);
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
        peer.close();
        ASSERT_TRUE(m_listener.awaitWorkers(0));
        m_window.forget();
    }
}

TEST_F(ListenerExceptions, AShortageOfMemoryOrAStandardExceptionEndsItsConnectionOnly) {
    auto bystander = connect();
    for (const auto& fail : std::vector<std::function<void()>>{
             [] { AfxThrowMemoryException(); },
             [] { throw std::runtime_error("from a derived worker"); }}) {
        failNextBody(fail);
        auto peer = connect();
        peer.send(frame(51, "body"));
        EXPECT_TRUE(peer.awaitClose());
        EXPECT_TRUE(m_hasFailed);
        EXPECT_TRUE(m_listener.awaitWorkers(1));
        EXPECT_TRUE(isAlive(bystander));
        auto next = connect();
        next.send(frame(53, "next"));
        EXPECT_EQ(postedFor(next).at(0).payload(), "next");
        EXPECT_EQ(m_window.count(), 1u);
        next.close();
        ASSERT_TRUE(m_listener.awaitWorkers(1));
        m_window.forget();
    }
}

}  // namespace
