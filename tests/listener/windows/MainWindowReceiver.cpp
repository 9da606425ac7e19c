#include "tests/listener/MainWindow.h"
#include "tests/listener/windows/HostWindow.h"

struct MainWindow::Receiver {
    explicit Receiver(NyServerApp* receivedFrom) : listener(receivedFrom), window(receivedFrom) {}

    NyServerApp* const listener;
    HostWindow window;
};

MainWindow::MainWindow(NyServerApp* listener) : m_receiver(std::make_shared<Receiver>(listener)) {}

MainWindow::~MainWindow() = default;

void MainWindow::attachTo(NyServerApp& listener) {
    listener.setAppWnd(m_receiver->window.wnd());
}

void MainWindow::detachFrom(NyServerApp& listener) {
    listener.setAppWnd(nullptr);
}

void MainWindow::hold() {
    m_receiver->window.hold();
}

void MainWindow::consume(int count) {
    for (int i = 0; i < count; ++i) m_receiver->listener->decreasePostMsgCount();
}

std::vector<PostedMessage> MainWindow::messages() const {
    std::vector<PostedMessage> all;
    for (PostedBlock& block : m_receiver->window.messages())
        all.push_back({std::move(block.bytes)});
    return all;
}

size_t MainWindow::count() const {
    return m_receiver->window.count();
}

void MainWindow::settle() {
    m_receiver->window.settle();
}

void MainWindow::forget() {
    m_receiver->window.forget();
}
