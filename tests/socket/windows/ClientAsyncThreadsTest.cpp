// Look-ups of an object whose notification window belongs to another thread than the caller.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <future>
#include <memory>
#include <thread>

#include "NyServer/socket/CUT_WSClient.h"
#include "NyServer/socket/SocketCodes.h"
#include "NyServer/socket/windows/HostLookUps.h"
#include "tests/support/Gate.h"
#include "tests/support/Guarded.h"

namespace {

constexpr int kLookUps = 1000;

// Checks each notification on the window's thread.
class WatchedClient : public CUT_WSClient {
  public:
    std::atomic<int> announced = 0;
    std::atomic<int> wrong = 0;

    void clearHost() { std::memset(m_hostBuffer, 0, sizeof m_hostBuffer); }

  protected:
    void OnAsyncGetAddressNotify(int error) override {
        const auto& host = *reinterpret_cast<const hostent*>(m_hostBuffer);
        const bool isThere = host.h_addr_list && host.h_addr_list[0] &&
                             std::memcmp(host.h_addr_list[0], "\x7f\0\0\1", 4) == 0;
        if (error != 0 || !isThere) ++wrong;
        ++announced;
    }
};

// A thread that makes the objects' windows and dispatches their messages.
class WindowThread {
  public:
    WindowThread() : m_thread([this] { run(); }) {
        EXPECT_TRUE(eventually([this] { return m_id.load() != 0; }));
    }
    ~WindowThread() {
        ::PostThreadMessageW(m_id, WM_QUIT, 0, 0);
        m_thread.join();
    }

    int initAsync(CUT_WSClient& client) {
        m_result = -1;
        ::PostThreadMessageW(m_id, WM_APP, 0, reinterpret_cast<LPARAM>(&client));
        EXPECT_TRUE(eventually([this] { return m_result.load() != -1; }));
        return m_result;
    }

  private:
    void run() {
        MSG message;
        ::PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE);  // makes the queue
        m_id = ::GetCurrentThreadId();
        while (::GetMessageW(&message, nullptr, 0, 0) > 0) {
            if (message.message == WM_APP)
                m_result = reinterpret_cast<CUT_WSClient*>(message.lParam)
                               ->InitAsync(::GetModuleHandleW(nullptr));
            else
                ::DispatchMessageW(&message);
        }
    }

    std::atomic<DWORD> m_id = 0;
    std::atomic<int> m_result = -1;
    std::thread m_thread;
};

TEST(ClientAsyncThreads, NeverReportSuccessWithAnEmptyBuffer) {
    WindowThread thread;
    WatchedClient client;
    ASSERT_EQ(thread.initAsync(client), UTE_SUCCESS);
    for (int i = 1; i <= kLookUps; ++i) {
        client.clearHost();
        ASSERT_EQ(client.AsyncGetAddressFromName("localhost", nullptr, 0), UTE_SUCCESS);
        const auto isAnnounced = [&] { return client.announced.load() == i; };
        for (int spin = 0; spin < 1000 && !isAnnounced(); ++spin) std::this_thread::yield();
        ASSERT_TRUE(isAnnounced() || eventually(isAnnounced)) << i;
    }
    EXPECT_EQ(client.wrong, 0) << "failed, or without an address";
}

// Nothing may be written to the object's memory once it is destroyed, and the window's thread must
// have left it.
TEST(ClientAsyncThreads, MayBeDestroyedDuringALookUp) {
    WindowThread thread;
    std::vector<std::unique_ptr<Guarded<CUT_WSClient>>> clients;
    for (int i = 0; i < 100; ++i) {
        auto& client = *clients.emplace_back(std::make_unique<Guarded<CUT_WSClient>>());
        ASSERT_EQ(thread.initAsync(*client), UTE_SUCCESS);
        ASSERT_EQ(client->AsyncGetAddressFromName("localhost", nullptr, 0), UTE_SUCCESS);
        client.destroy();
    }
    ::Sleep(500);  // for look-ups that have not yet ended
}

const HANDLE kRequest = reinterpret_cast<HANDLE>(INT_PTR{0x1234});

TEST(HostLookUps, ArePendingFromTheirStartToTheirAnnouncement) {
    HostLookUps lookUps;
    EXPECT_FALSE(lookUps.arePending());
    EXPECT_TRUE(lookUps.start([] { return kRequest; }));
    EXPECT_TRUE(lookUps.arePending());
    lookUps.finish(nullptr);
    EXPECT_TRUE(lookUps.arePending()) << "another request";
    lookUps.finish(kRequest);
    EXPECT_FALSE(lookUps.arePending());
}

TEST(HostLookUps, AreNotPendingWhenTheSystemRefusesThem) {
    HostLookUps lookUps;
    EXPECT_FALSE(lookUps.start([]() -> HANDLE { return nullptr; }));
    EXPECT_FALSE(lookUps.arePending());
}

// As when a window of another thread gets the announcement while the request is being returned.
TEST(HostLookUps, MayBeAnnouncedBeforeTheirRequestIsReturned) {
    HostLookUps lookUps;
    std::thread announcing;
    lookUps.start([&] {
        std::promise<void> finished;
        auto isFinished = finished.get_future();
        announcing = std::thread([&lookUps, finished = std::move(finished)]() mutable {
            lookUps.finish(kRequest);
            finished.set_value();
        });
        EXPECT_EQ(isFinished.wait_for(std::chrono::milliseconds(200)), std::future_status::timeout)
            << "the announcement waits until the request is known";
        return kRequest;
    });
    announcing.join();
    EXPECT_FALSE(lookUps.arePending());
}

}  // namespace
