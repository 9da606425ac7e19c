#include "NyServer/listener/NyServerNotification.h"

#include <gtest/gtest.h>

#include <cstring>

#include "tests/listener/ListenerTest.h"

namespace {

class Notification : public testing::Test {
  protected:
    // The parameters of a posted block.
    WPARAM size() const { return m_bytes.size(); }
    LPARAM address(const std::string& bytes) {
        m_bytes = bytes;
        m_block = ::GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, bytes.size());
        void* const memory = ::GlobalLock(m_block);
        std::memcpy(memory, bytes.data(), bytes.size());
        ::GlobalUnlock(m_block);
        return reinterpret_cast<LPARAM>(memory);
    }
    static std::string contentOf(NyServerNotification& notification) {
        char buffer[64];
        const UINT count = notification.getMemFile().Read(buffer, sizeof buffer);
        return std::string(buffer, count);
    }
    // The action and the payload read from a block that says to be `claimed` bytes long.
    std::pair<int, std::string> read(const std::string& bytes, WPARAM claimed) {
        const LPARAM where = address(bytes);
        NyServerNotification notification(claimed, where, nullptr);
        const int action = notification.getActionType();
        return {action, contentOf(notification)};
    }
    std::pair<int, std::string> read(const std::string& bytes) { return read(bytes, bytes.size()); }
    using Read = std::pair<int, std::string>;

    std::string m_bytes;
    HGLOBAL m_block = nullptr;
    ProbeListener m_listener;
};

TEST_F(Notification, OffersItsActionAndWhatWasSent) {
    EXPECT_EQ(read(frame(50, "payload")), (Read{50, "payload"}));
    EXPECT_EQ(read(frame(58)), (Read{58, ""}));
}

TEST_F(Notification, HasNoActionWithoutAWholeHeader) {
    EXPECT_EQ(read(frame(50).substr(0, 7)), (Read{-1, ""}));
}

TEST_F(Notification, BelievesALengthOnlyAsFarAsThereAreBytes) {
    EXPECT_EQ(read(wireOf(51) + wireOf(1000) + "short"), (Read{51, "short"}));
    EXPECT_EQ(read(wireOf(51) + wireOf(2) + "longer"), (Read{51, "lo"}));
    EXPECT_EQ(read(wireOf(51) + wireOf(-1) + "none"), (Read{51, ""}));
}

TEST_F(Notification, BelievesTheSizeOnlyAsFarAsTheBlockReaches) {
    const auto got = read(frame(52, "payload"), 0xFFFFFFFF);
    EXPECT_EQ(got, (Read{52, "payload"}));
    EXPECT_EQ(read(frame(52, "payload"), 10), (Read{52, "pa"}));
}

TEST_F(Notification, IsEmptyWithoutABlock) {
    for (const LPARAM address : {LPARAM{0}, LPARAM{16}, reinterpret_cast<LPARAM>(&m_bytes)}) {
        NyServerNotification notification(100, address, nullptr);
        EXPECT_EQ(notification.getActionType(), -1);
        EXPECT_EQ(contentOf(notification), "");
    }
}

TEST_F(Notification, HasNoActionButThoseOfNotifications) {
    for (const int action : {-1, 0, 1, 7, 49, 59, 50 + 256, 50 - 0x7FFFFFFF})
        EXPECT_EQ(read(frame(action, "payload")), (Read{-1, ""})) << action;
}

// Any program can post the message with an address that it knows.
TEST_F(Notification, LeavesMemoryAloneThatNobodyPosted) {
    const std::string bytes = frame(50, "not posted");
    const HGLOBAL fixed = ::GlobalAlloc(GMEM_FIXED, bytes.size());
    void* const heap = ::HeapAlloc(::GetProcessHeap(), 0, bytes.size());
    for (void* memory : {static_cast<void*>(fixed), heap}) {
        std::memcpy(memory, bytes.data(), bytes.size());
        {
            NyServerNotification stranger(bytes.size(), reinterpret_cast<LPARAM>(memory), nullptr);
            EXPECT_EQ(stranger.getActionType(), -1);
            EXPECT_EQ(contentOf(stranger), "");
        }
        EXPECT_EQ(::HeapSize(::GetProcessHeap(), 0, memory), bytes.size());
    }
    EXPECT_EQ(::GlobalFree(fixed), nullptr);
    EXPECT_TRUE(::HeapFree(::GetProcessHeap(), 0, heap));
}

TEST_F(Notification, FreesItsBlock) {
    for (int i = 0; i < 70000; ++i) {
        const LPARAM where = address("12345678");
        const NyServerNotification notification(size(), where, nullptr);
    }
    EXPECT_TRUE(UniqueGlobalBlock(::GlobalAlloc(GMEM_MOVEABLE, 1)));
}

TEST_F(Notification, IsConsumedWhenItGoes) {
    m_listener.increasePostMsgCount();
    m_listener.increasePostMsgCount();
    {
        const LPARAM where = address(frame(50));
        const NyServerNotification notification(size(), where, &m_listener);
        EXPECT_EQ(m_listener.getPostMsgCount(), 2);
    }
    EXPECT_EQ(m_listener.getPostMsgCount(), 1);
}

// Any program can post the message.
TEST_F(Notification, IsNotConsumedWhenNobodyPostedIt) {
    m_listener.increasePostMsgCount();
    m_listener.increasePostMsgCount();
    for (const LPARAM where : {LPARAM{0}, LPARAM{16}, reinterpret_cast<LPARAM>(&m_bytes)}) {
        const NyServerNotification forged(100, where, &m_listener);
    }
    EXPECT_EQ(m_listener.getPostMsgCount(), 2);
}

TEST_F(Notification, IsConsumedOnceHoweverOftenItIsPosted) {
    m_listener.increasePostMsgCount();
    m_listener.increasePostMsgCount();
    const LPARAM where = address(frame(50));
    for (int i = 0; i < 2; ++i) const NyServerNotification repeated(size(), where, &m_listener);
    EXPECT_EQ(m_listener.getPostMsgCount(), 1);
}

TEST_F(Notification, CannotGrow) {
    const LPARAM where = address(frame(50, "ab"));
    NyServerNotification notification(size(), where, nullptr);
    EXPECT_EQ(notification.getMemFile().GetLength(), 2u);
    EXPECT_THROW(notification.getMemFile().Write("abc", 3), CMemoryException*);
    NyServerNotification empty(0, 0, nullptr);
    EXPECT_THROW(empty.getMemFile().Write("a", 1), CMemoryException*);
}

}  // namespace
