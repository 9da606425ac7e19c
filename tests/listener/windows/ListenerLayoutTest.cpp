// The binary interface: the order of fields and of virtual functions.
#include <cstring>

#include "tests/listener/ListenerTest.h"
#include "tests/listener/windows/HostWindow.h"
#include "tests/support/SlotOrder.h"

namespace {

// Returns the offset of the value in the object, at `from` or after it; 0 if it has none.
template <class Object, class Value>
size_t placeOf(const Object& object, Value value, size_t from) {
    const auto* const bytes = reinterpret_cast<const char*>(&object);
    for (size_t i = from; i + sizeof value <= sizeof object; ++i)
        if (std::memcmp(bytes + i, &value, sizeof value) == 0) return i;
    return 0;
}

// A virtual function after the last one of its base.
struct NextListener : NyServerApp {
    virtual void next() {}
};
struct NextWorker : NyServerThreadApp {
    using NyServerThreadApp::NyServerThreadApp;
    virtual void next() {}
};

TEST(ListenerLayout, TheVirtualFunctionsAreThoseOfTheBases) {
    EXPECT_EQ(slotOf(&NextListener::next), 10u);
    EXPECT_EQ(slotOf(&NextWorker::next), 16u);
}

TEST(ListenerLayout, TheListenersFieldsAreInOrder) {
    NyServerApp listener;
    CWnd window;
    listener.setAppWnd(&window);
    listener.setPortNumber(0xA1B2);
    listener.setSessionNumber(0x13572468);
    for (int i = 0; i < 1234; ++i) listener.increasePostMsgCount();
    const size_t wnd = placeOf(listener, &window, sizeof(CUT_WSServer));
    const size_t port = placeOf(listener, static_cast<unsigned short>(0xA1B2), wnd);
    const size_t session = placeOf(listener, 0x13572468, port);
    const size_t count = placeOf(listener, 1234, session);
    EXPECT_EQ(wnd, sizeof(CUT_WSServer));
    EXPECT_EQ(port, wnd + 8);
    EXPECT_EQ(session, wnd + 12);
    EXPECT_EQ(count, wnd + 16);
    EXPECT_EQ(sizeof listener, wnd + 24 + 16);  // the limit, then what is not part of the interface
}

TEST(ListenerLayout, TheLimitIsNotReadAtFirst) {
    NyServerApp listener;
    EXPECT_EQ(placeOf(listener, -1L, sizeof(CUT_WSServer)), sizeof(CUT_WSServer) + 20);
}

TEST(ListenerLayout, TheWorkersFieldsAreInOrder) {
    NyServerApp listener;
    NyServerThreadApp worker(&listener);
    worker.setPaused(true);
    const size_t owner = placeOf(worker, &listener, sizeof(CUT_WSThread));
    EXPECT_EQ(owner, sizeof(CUT_WSThread));
    EXPECT_EQ(placeOf(worker, -1, owner), owner + 8);
    EXPECT_EQ(placeOf(worker, true, owner + 12), owner + 12);
}

}  // namespace
