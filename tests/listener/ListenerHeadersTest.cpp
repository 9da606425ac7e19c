// Headers in pieces: TCP ends its segments where it likes.
#include <map>

#include "tests/listener/ListenerTest.h"

namespace {

constexpr size_t kHeaderBytes = 8;
constexpr size_t kFrameBytes = kHeaderBytes + 8;

// Where a relay splits each frame, for how long it then pauses, and how many frames come.
struct Split {
    size_t place;
    DWORD pause;  // in milliseconds
    int frames;
};

// Stands between a sender and the listener.
class SplittingRelay {
  public:
    SplittingRelay(peers::Connection listener, const Split& split)
        : m_listener(std::move(listener)),
          m_split(split),
          m_peer([this](peers::Connection& sender) { relay(sender); }) {}
    unsigned int port() const { return m_peer.port(); }

  private:
    void relay(peers::Connection& sender) {
        size_t place = 0;  // in the frame
        for (std::string part; !(part = sender.receive()).empty();) {
            while (!part.empty()) {
                const size_t next = place < m_split.place ? m_split.place : kFrameBytes;
                const size_t count = std::min(part.size(), next - place);
                m_listener.send(part.substr(0, count));
                part.erase(0, count);
                place = (place + count) % kFrameBytes;
                if (place == m_split.place) port::sleep(m_split.pause);
            }
        }
        m_listener.close();
    }

    peers::Connection m_listener;
    Split m_split;
    peers::Peer m_peer;
};

class ListenerHeaders : public ListenerTest {
  protected:
    // Sends over relays that all work at the same time; sender `i` sends numbered frames with `i`.
    void sendOverRelays(const std::vector<Split>& splits) {
        for (const Split& split : splits)
            m_relays.push_back(std::make_unique<SplittingRelay>(connect(), split));
        for (size_t i = 0; i < splits.size(); ++i) {
            m_senders.push_back(peers::connectionTo(m_relays[i]->port()));
            for (int number = 0; number < splits[i].frames; ++number)
                m_senders.back().send(
                    frame(50 + number % 9, wireOf(static_cast<int>(i)) + wireOf(number)));
            m_senders.back().finishSending();
        }
    }
    void TearDown() override {
        m_senders.clear();
        m_relays.clear();
        ListenerTest::TearDown();
    }

    std::vector<std::unique_ptr<SplittingRelay>> m_relays;
    std::vector<peers::Connection> m_senders;
};

TEST_F(ListenerHeaders, MayBeSplitAtEveryByte) {
    std::vector<Split> splits;
    for (size_t place = 1; place <= kHeaderBytes; ++place)
        for (const auto& [pause, frames] : std::map<DWORD, int>{{5, 20}, {50, 6}, {500, 2}})
            splits.push_back({place, pause, frames});
    sendOverRelays(splits);
    ASSERT_TRUE(m_listener.awaitWorkers(0));
    m_window.settle();
    EXPECT_EQ(m_window.count(), kHeaderBytes * (20 + 6 + 2));
    std::map<std::string, int> next;  // by sender, the number of its next frame
    for (const PostedMessage& message : m_window.messages()) {
        const std::string payload = message.payload();
        int& number = next[payload.substr(0, 4)];
        EXPECT_EQ(message.action(), 50 + number % 9);
        EXPECT_EQ(payload.substr(4), wireOf(number++));
    }
    for (size_t i = 0; i < splits.size(); ++i)
        EXPECT_EQ(next[wireOf(static_cast<int>(i))], splits[i].frames)
            << "at byte " << splits[i].place << " for " << splits[i].pause << " ms";
}

TEST_F(ListenerHeaders, MayArriveByteByByte) {
    {
        peers::Connection sender = connect();
        ASSERT_EQ(port::setNoDelay(sender.socket()), 0);
        for (const char byte : frame(50, "payload")) {
            sender.send({&byte, 1});
            port::sleep(20);
        }
    }
    ASSERT_TRUE(m_listener.awaitWorkers(0));
    m_window.settle();
    ASSERT_EQ(m_window.count(), 1u);
    EXPECT_EQ(m_window.messages()[0].action(), 50);
    EXPECT_EQ(m_window.messages()[0].payload(), "payload");
}

}  // namespace
