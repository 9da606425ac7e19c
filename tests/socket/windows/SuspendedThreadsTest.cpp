#include <gtest/gtest.h>

#include "NyServer/base/detail/WindowsHandles.h"
#include "tests/socket/ProbeServer.h"

namespace {

// A handle can stand where an identifier does: then, and only then, a thread really stops.
TEST(SuspendedThreads, AreTakenByIdentifiersAsHandles) {
    const NySe::UniqueKernelHandle thread(::CreateThread(
        nullptr, 0, [](void*) -> DWORD { return 0; }, nullptr, CREATE_SUSPENDED, nullptr));
    ProbeWorker worker;
    ProbeServer server;
    server.ending = ProbeServer::Ending::RunsDown;
    server.ThreadListAdd(&worker, HandleToUlong(thread.get()), 1);
    server.ThreadListSuspend();
    EXPECT_EQ(::ResumeThread(thread.get()), 2u);
    server.ThreadListResume();
    EXPECT_EQ(::WaitForSingleObject(thread.get(), 10000), WAIT_OBJECT_0);
}

}  // namespace
