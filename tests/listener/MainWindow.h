// The part of a host that receives notifications: a window on Windows, a function on other systems.
#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "NyServer/listener/NyServerApp.h"
#include "tests/support/Gate.h"

// How long to wait for what must come; a crowded machine takes its time.
inline constexpr std::chrono::seconds kGenerously{120};

// A notification as the host received it: a message file.
struct PostedMessage {
    std::string bytes;

    int action() const;
    std::string payload() const;
};

// Keeps the notifications that it receives.
class MainWindow {
  public:
    // Consumes each notification of the listener at once; the listener must live as long. Without
    // one, what listeners count is not defined.
    explicit MainWindow(NyServerApp* listener = nullptr);
    ~MainWindow();
    MainWindow(const MainWindow&) = delete;
    MainWindow& operator=(const MainWindow&) = delete;

    // The listener notifies this window from now on, and none.
    void attachTo(NyServerApp& listener);
    // Ends a hold, too.
    void detachFrom(NyServerApp& listener);

    // From now on consumes only as many notifications as `consume` is told. Until then, those that
    // it has received may be fewer than the listener counts.
    void hold();
    // REQUIRES: it holds, and was created with the listener.
    void consume(int count = 1);

    std::vector<PostedMessage> messages() const;
    // The messages there are once they are `count`, or when none has come for kGenerously.
    std::vector<PostedMessage> awaitMessages(size_t count) const;
    size_t count() const;
    // Once the window has received all that was posted so far. REQUIRES: it was created with the
    // listener, and does not hold.
    void settle();
    // Forgets its messages once settled.
    void forget();

  private:
    struct Receiver;  // the system's

    const std::shared_ptr<Receiver> m_receiver;
};
