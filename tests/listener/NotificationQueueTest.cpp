// The end of the thread, and out of memory at each allocation.
#include "NyServer/listener/NotificationQueue.h"

#include "tests/listener/ListenerTest.h"
#include "tests/support/AllocationCount.h"

namespace {

std::string contentOf(CMemFile& file) {
    std::string content(static_cast<size_t>(file.GetLength()), '\0');
    file.SeekToBegin();
    file.Read(content.data(), static_cast<UINT>(content.size()));
    return content;
}

// What a receiver leaves to the end of its thread may use what the host destroys after the queue.
TEST(NotificationQueue, WaitsForTheThreadLocalObjectsOfItsReceiver) {
    static std::atomic<bool> isDestroyed = false;
    struct Slow {
        ~Slow() {
            port::sleep(300);
            isDestroyed = true;
        }
    };
    {
        const auto receive = [](NySe::ActionType, CMemFile&) { thread_local Slow slow; };
        NotificationQueue queue(receive, [](const NotificationQueue&) {});
        ASSERT_TRUE(queue.start());
        CMemFile file;
        file.Write("content", 7);
        ASSERT_TRUE(queue.put(file));
    }
    EXPECT_TRUE(isDestroyed);
}

TEST(NotificationQueue, HasOnlyWhatWasPutCountedByTheListener) {
    Gate gate;
    ProbeListener listener;
    listener.setReceiver([&](NySe::ActionType, CMemFile&) { gate.pass(); });
    int posted = 0;
    bool hasFailed = false;
    for (; !hasFailed && posted < 1000; posted += !hasFailed) {
        CMemFile file;
        file.Write("content", 7);
        {
            AllocationCount allocations;
            allocations.failAfter(0);
            listener.postMessageToMainFrame(NySe::_TM_NYSERVERMESSAGE, file);
            hasFailed = allocations.hasFailed();
        }
        EXPECT_EQ(contentOf(file), hasFailed ? "content" : "");
    }
    EXPECT_TRUE(hasFailed);
    EXPECT_EQ(listener.getPostMsgCount(), posted);
    listener.post("content");
    EXPECT_EQ(listener.getPostMsgCount(), posted + 1) << "there is memory again";
    gate.open();
    EXPECT_TRUE(listener.awaitNoMessages());
}

// Among the allocations are those for the thread.
TEST(NotificationQueue, LeavesTheReceiverUnchangedWhenThereIsNoMemoryForAnother) {
    ProbeListener listener;
    std::atomic<int> calls = 0;
    std::atomic<int> callsOfNext = 0;
    listener.setReceiver([&](NySe::ActionType, CMemFile&) { ++calls; });
    NyServerApp::Receiver next = [&](NySe::ActionType, CMemFile&) { ++callsOfNext; };
    const auto post = [&] {
        listener.post("content");
        EXPECT_TRUE(listener.awaitNoMessages());
    };
    const auto failsAfter = [&](size_t count) {
        NyServerApp::Receiver copy = next;
        AllocationCount allocations;
        allocations.failAfter(count);
        return !listener.setReceiver(std::move(copy));
    };
    size_t failures = 0;
    while (failures < 100 && failsAfter(failures)) {
        post();
        EXPECT_EQ(calls, static_cast<int>(++failures));
    }
    EXPECT_GE(failures, 3u);
    post();
    EXPECT_EQ(callsOfNext, 1);
    EXPECT_EQ(calls, static_cast<int>(failures));
}

}  // namespace
