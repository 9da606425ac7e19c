// Notifications received by the listener, compared with a loop of the same calls: the time from the
// first byte sent until the window has all of a burst.
#include <cstdio>
#include <cstring>
#include <thread>

#include "bench/wire/RawCalls.h"
#include "bench/wire/RawServer.h"
#include "bench/wire/Samples.h"
#include "bench/wire/windows/Parts.h"
#include "NyServer/base/detail/WindowsHandles.h"
#include "NyServer/framing/NySeActions.h"
#include "NyServer/host/NyServerModule.h"
#include "NyServer/listener/NyServerApp.h"
#include "tests/listener/windows/HostWindow.h"
#include "tests/socket/LocalConnection.h"

namespace {

constexpr size_t kBurst = 100;  // fewer than what pauses the listener
constexpr int kBodyBytes = 120;

std::string burstOfNotifications() {
    const LONG header[2] = {50, kBodyBytes};
    std::string burst;
    for (size_t i = 0; i < kBurst; ++i) {
        burst.append(reinterpret_cast<const char*>(header), sizeof header);
        burst.append(kBodyBytes, 'x');
    }
    return burst;
}

// What the listener does for a notification, with system calls only.
class RawListener {
  public:
    explicit RawListener(HWND window) : m_window(window) {}

    void serve(peers::Connection& connection) const {
        const SOCKET socket = connection.socket();
        char message[2 * sizeof(LONG) + kBodyBytes];
        char length[sizeof(LONG)];
        const long timeOut = 15;
        while (bench::awaitReadable(socket, timeOut) &&
               ::recv(socket, message, sizeof(LONG), 0) == sizeof(LONG) &&
               bench::awaitReadable(socket, timeOut) &&
               ::recv(socket, length, sizeof length, 0) == sizeof length &&
               bench::awaitReadable(socket, timeOut) &&
               ::recv(socket, message + 2 * sizeof(LONG), kBodyBytes, 0) == kBodyBytes) {
            std::memcpy(message + sizeof(LONG), length, sizeof length);
            post(message, sizeof message);
        }
    }

  private:
    void post(const char* message, size_t size) const {
        if (!::IsWindow(m_window)) return;
        const HGLOBAL block = ::GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, size);
        void* const address = ::GlobalLock(block);
        std::memcpy(address, message, size);
        ::GlobalUnlock(block);
        ::PostMessageW(m_window, WM_APP, size, reinterpret_cast<LPARAM>(address));
    }

    const HWND m_window;
};

// The listener as it is, on a port of its own.
class BenchListener : public NyServerApp {
  public:
    BenchListener() { bench::require(Start() == 0, "the listener does not start"); }
    ~BenchListener() override { endConnections(); }
    unsigned int port() { return GetBoundPort(); }
};

void sendBurst(peers::Connection& connection, const std::string& burst, HostWindow& window) {
    window.forget();
    for (size_t sent = 0; sent < burst.size();) {
        const int count = ::send(connection.socket(), burst.data() + sent,
                                 static_cast<int>(burst.size() - sent), 0);
        bench::require(count > 0, "a notification was not sent");
        sent += static_cast<size_t>(count);
    }
    bench::require(eventually([&] { return window.count() == kBurst; }, kGenerously),
                   "a notification was lost");
}

void printRow(const char* name, const bench::Samples& bursts, const bench::Samples& floor) {
    std::printf("| %s | %.1f | %.0f | %.3f | %.0f |\n", name, bursts.median() / kBurst,
                1e6 * kBurst / bursts.median(), floor.median() / bursts.median(), bursts.spread());
}

}  // namespace

void bench::runNotifications(const WireOptions& options) {
    useOneCore();
    const std::string burst = burstOfNotifications();
    BenchListener listener;
    HostWindow window(&listener);
    listener.setAppWnd(window.wnd());
    const RawListener raw(window.wnd()->GetSafeHwnd());
    peers::Peer rawPeer([&](peers::Connection& connection) { raw.serve(connection); });
    peers::Connection toListener = peers::connectionTo(listener.port());
    peers::Connection toRaw = peers::connectionTo(rawPeer.port());

    Samples ofListener;
    Samples ofRaw;
    for (const auto end = Clock::now() + options.seconds; Clock::now() < end;) {
        ofRaw.time([&] { sendBurst(toRaw, burst, window); });
        ofListener.time([&] { sendBurst(toListener, burst, window); });
    }
    listener.setAppWnd(nullptr);
    std::printf(
        "| notifications of %d bytes | us each | a second | rate / floor | IQR %% |\n"
        "|---|---:|---:|---:|---:|\n",
        kBodyBytes);
    printRow("a loop of the same calls", ofRaw, ofRaw);
    printRow("`NyServerApp` (goal 0.9)", ofListener, ofRaw);
    std::printf("\n%zu bursts of %zu each, in turn.\n", ofListener.count(), kBurst);
}
