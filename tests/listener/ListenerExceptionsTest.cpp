#include <stdexcept>

#include "tests/listener/ListenerTest.h"

namespace {

class ListenerExceptions : public ScriptedListenerTest {
  protected:
    using Failure = std::function<void()>;

    // For each of the failures, while a body that is read fails so once.
    void forEachFailure(const std::vector<Failure>& failures, const std::function<void()>& check) {
        m_listener.script->receiveBy([this, failures](char*, int, int timeOut) {
            if (timeOut == 30 && !m_hasFailed.exchange(true)) failures[m_failure]();
            return ProbeListenerWorker::kFromSocket;
        });
        for (m_failure = 0; m_failure < failures.size(); ++m_failure) {
            m_hasFailed = false;
            check();
            m_window.forget();
        }
    }

    std::atomic<size_t> m_failure = 0;
    std::atomic<bool> m_hasFailed = true;
};

TEST_F(ListenerExceptions, AFileOrArchiveExceptionLosesItsMessageOnly) {
    const Failure file = [] { AfxThrowFileException(CFileException::genericException); };
    const Failure archive = [] { AfxThrowArchiveException(CArchiveException::endOfFile); };
    forEachFailure({file, archive}, [this] {
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
    });
}

TEST_F(ListenerExceptions, OutOfMemoryOrAStandardExceptionEndsItsConnectionOnly) {
    const Failure memory = [] { AfxThrowMemoryException(); };
    const Failure standard = [] { throw std::runtime_error("from a derived worker"); };
    forEachFailure({memory, standard}, [this] {
        auto bystander = connect();
        auto peer = connect();
        peer.send(frame(51, "body"));
        EXPECT_TRUE(peer.awaitClose());
        EXPECT_TRUE(m_hasFailed);
        EXPECT_TRUE(m_listener.awaitWorkers(1));
        EXPECT_TRUE(isAlive(bystander));
        auto next = connect();
        next.send(frame(53, "next"));
        const auto all = postedFor(next);
        ASSERT_EQ(all.size(), 1u);
        EXPECT_EQ(all[0].payload(), "next");
        bystander.close();
        next.close();
        ASSERT_TRUE(m_listener.awaitWorkers(0));
    });
}

}  // namespace
