#include "NyServer/listener/NyServerNotification.h"

#include <cstring>

#include "tests/listener/ListenerTest.h"

namespace {

class Notification : public testing::Test {
  protected:
    struct Read {
        int action;
        std::string payload;
        bool operator==(const Read&) const = default;
    };
    inline static const Read kNothing{-1, ""};

    // A posted block with these bytes.
    static LPARAM blockOf(const std::string& bytes) {
        const HGLOBAL block = ::GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, bytes.size());
        void* const memory = ::GlobalLock(block);
        std::memcpy(memory, bytes.data(), bytes.size());
        ::GlobalUnlock(block);
        return reinterpret_cast<LPARAM>(memory);
    }
    // What is read from memory that is said to hold so many bytes.
    static Read readAt(LPARAM address, WPARAM claimed) {
        NyServerNotification notification(claimed, address, nullptr);
        char buffer[64];
        const UINT count = notification.getMemFile().Read(buffer, sizeof buffer);
        return {notification.getActionType(), std::string(buffer, count)};
    }
    static Read read(const std::string& bytes, WPARAM claimed) {
        return readAt(blockOf(bytes), claimed);
    }
    static Read read(const std::string& bytes) { return read(bytes, bytes.size()); }
    // How many of a listener's two messages are still counted once such a one has been there.
    static long leftOfTwoAfter(WPARAM size, LPARAM address) {
        ProbeListener listener;
        listener.increasePostMsgCount();
        listener.increasePostMsgCount();
        {
            const NyServerNotification notification(size, address, &listener);
            EXPECT_EQ(listener.getPostMsgCount(), 2) << "not before its end";
        }
        return listener.getPostMsgCount();
    }

    // Where nobody has posted a block.
    const int m_local = 0;
    const LPARAM m_strange[3] = {0, 16, reinterpret_cast<LPARAM>(&m_local)};
};

TEST_F(Notification, HasItsActionAndItsPayload) {
    EXPECT_EQ(read(frame(50, "payload")), (Read{50, "payload"}));
    EXPECT_EQ(read(frame(58)), (Read{58, ""}));
}

TEST_F(Notification, HasNoActionWithoutAWholeHeaderAndNoneButThoseOfNotifications) {
    EXPECT_EQ(read(frame(50).substr(0, 7)), kNothing);
    for (const int action : {-1, 0, 1, 7, 49, 59, 50 + 256, 50 - 0x7FFFFFFF})
        EXPECT_EQ(read(frame(action, "payload")), kNothing) << action;
}

TEST_F(Notification, AcceptsALengthOnlyUpToTheBytesPresent) {
    EXPECT_EQ(read(wireOf(51) + wireOf(1000) + "short"), (Read{51, "short"}));
    EXPECT_EQ(read(wireOf(51) + wireOf(2) + "longer"), (Read{51, "lo"}));
    EXPECT_EQ(read(wireOf(51) + wireOf(-1) + "none"), (Read{51, ""}));
}

TEST_F(Notification, AcceptsASizeOnlyUpToThatOfTheBlock) {
    EXPECT_EQ(read(frame(52, "payload"), 0xFFFFFFFF), (Read{52, "payload"}));
    EXPECT_EQ(read(frame(52, "payload"), 10), (Read{52, "pa"}));
}

// Any program can post the message with an address that it knows.
TEST_F(Notification, IgnoresMemoryThatWasNotPosted) {
    const std::string bytes = frame(50, "not posted");
    const HGLOBAL fixed = ::GlobalAlloc(GMEM_FIXED, bytes.size());
    void* const heap = ::HeapAlloc(::GetProcessHeap(), 0, bytes.size());
    for (void* memory : {static_cast<void*>(fixed), heap}) {
        std::memcpy(memory, bytes.data(), bytes.size());
        EXPECT_EQ(readAt(reinterpret_cast<LPARAM>(memory), bytes.size()), kNothing);
        EXPECT_EQ(::HeapSize(::GetProcessHeap(), 0, memory), bytes.size());
    }
    EXPECT_EQ(::GlobalFree(fixed), nullptr);
    EXPECT_TRUE(::HeapFree(::GetProcessHeap(), 0, heap));
}

TEST_F(Notification, FreesItsBlock) {
    for (int i = 0; i < 70000; ++i)
        const NyServerNotification notification(8, blockOf("12345678"), nullptr);
    EXPECT_TRUE(NySe::UniqueGlobalBlock(::GlobalAlloc(GMEM_MOVEABLE, 1)));
}

TEST_F(Notification, IsConsumedOnceWhenItIsDestroyed) {
    const LPARAM block = blockOf(frame(50));
    EXPECT_EQ(leftOfTwoAfter(8, block), 1);
    EXPECT_EQ(leftOfTwoAfter(8, block), 2) << "posted again";
}

// Any program can post the message.
TEST_F(Notification, IsNotConsumedUnlessItWasPosted) {
    for (const LPARAM address : m_strange) {
        EXPECT_EQ(readAt(address, 100), kNothing);
        EXPECT_EQ(leftOfTwoAfter(100, address), 2);
    }
}

TEST_F(Notification, CannotGrow) {
    NyServerNotification notification(10, blockOf(frame(50, "ab")), nullptr);
    EXPECT_EQ(notification.getMemFile().GetLength(), 2u);
    EXPECT_THROW(notification.getMemFile().Write("abc", 3), CMemoryException*);
    NyServerNotification empty(0, 0, nullptr);
    EXPECT_THROW(empty.getMemFile().Write("a", 1), CMemoryException*);
}

}  // namespace
