// What only Windows answers so.
#include "NyServer/base/detail/WindowsHandles.h"
#include "tests/socket/EndTest.h"
#include "tests/socket/ProbeServer.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Only a value of 8 readable bytes can be set: the one that ends at an inaccessible page.
TEST(OptionValue, IsReadFromAllEightBytes) {
    peers::SocketPair pair;
    ProbeClient client;
    client.attach(pair.nearEnd());
    const SIZE_T page = 4096;
    auto* pages = static_cast<char*>(::VirtualAlloc(nullptr, 2 * page, MEM_RESERVE, PAGE_NOACCESS));
    ASSERT_NE(::VirtualAlloc(pages, page, MEM_COMMIT, PAGE_READWRITE), nullptr);
    pages[page - 8] = 1;
    EXPECT_EQ(client.SetSocketOption(SO_KEEPALIVE, pages + page - 8), 0);
    EXPECT_NE(client.optionOf(SO_KEEPALIVE), 0);
    EXPECT_EQ(client.SetSocketOption(SO_RCVBUF, pages + page - 4), SOCKET_ERROR);
    EXPECT_THAT(client.codes, IsEmpty());
    client.attach(INVALID_SOCKET);
    ::VirtualFree(pages, 0, MEM_RELEASE);
}

// The peek of a socket that no longer receives fails as "shut down".
using SocketWithoutReceiving = Client;

TEST_F(SocketWithoutReceiving, IsNeitherConnectedNorBlocking) {
    ASSERT_EQ(::shutdown(m_pair.nearEnd(), SD_RECEIVE), 0);
    EXPECT_EQ(m_end.IsConnected(), 0);
    EXPECT_THAT(m_end.codes, ElementsAre(0));
    EXPECT_EQ(m_end.GetBlockingMode(), 1);
    char byte;
    EXPECT_EQ(m_end.Receive(&byte, 1, 0), -1);
}

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
