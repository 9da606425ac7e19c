#include <condition_variable>
#include <mutex>

#include "tests/listener/ListenerTest.h"
#include "tests/listener/MainWindow.h"

struct MainWindow::Receiver {
    explicit Receiver(NyServerApp* receivedFrom) : listener(receivedFrom) {}

    // A notification is consumed when this returns.
    void receive(NySe::ActionType action, CMemFile& payload) {
        std::string body(static_cast<size_t>(payload.GetLength()), '\0');
        payload.Read(body.data(), static_cast<UINT>(body.size()));
        std::unique_lock lock(mutex);
        messages.push_back({frame(action, body)});
        changed.wait_for(lock, kGenerously, [this] { return !isHolding || permits > 0; });
        if (isHolding) --permits;
    }
    void setHolding(bool holds) {
        const std::lock_guard lock(mutex);
        isHolding = holds;
        permits = 0;
        changed.notify_all();
    }

    NyServerApp* const listener;
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<PostedMessage> messages;
    bool isHolding = false;
    int permits = 0;  // to consume one each
};

MainWindow::MainWindow(NyServerApp* listener) : m_receiver(std::make_shared<Receiver>(listener)) {}

MainWindow::~MainWindow() = default;

void MainWindow::attachTo(NyServerApp& listener) {
    listener.setReceiver([receiver = m_receiver](NySe::ActionType action, CMemFile& payload) {
        receiver->receive(action, payload);
    });
}

void MainWindow::detachFrom(NyServerApp& listener) {
    m_receiver->setHolding(false);
    listener.setReceiver(nullptr);
}

void MainWindow::hold() {
    m_receiver->setHolding(true);
}

void MainWindow::consume(int count) {
    const std::lock_guard lock(m_receiver->mutex);
    m_receiver->permits += count;
    m_receiver->changed.notify_all();
}

std::vector<PostedMessage> MainWindow::messages() const {
    const std::lock_guard lock(m_receiver->mutex);
    return m_receiver->messages;
}

size_t MainWindow::count() const {
    const std::lock_guard lock(m_receiver->mutex);
    return m_receiver->messages.size();
}

void MainWindow::settle() {
    NyServerApp* const listener = m_receiver->listener;
    if (listener) eventually([&] { return listener->getPostMsgCount() == 0; }, kGenerously);
}

void MainWindow::forget() {
    settle();
    const std::lock_guard lock(m_receiver->mutex);
    m_receiver->messages.clear();
}
