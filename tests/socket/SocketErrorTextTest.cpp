#include <gtest/gtest.h>

#include "NyServer/socket/SocketCodes.h"
#include "NyServer/socket/SocketErrorTable.h"
#include "tests/socket/LocalConnection.h"
#include "tests/support/Gate.h"
#include "tests/support/WideText.h"

namespace {

// The FNV-1a hash of the codes that have a text of their own, and of these texts.
unsigned long long hashOfTexts(const WCHAR* (*textOf)(int), const WideText& ofOthers) {
    unsigned long long hash = 14695981039346656037u;
    const auto add = [&](unsigned int unit) { hash = (hash ^ unit) * 1099511628211u; };
    for (int code = 0; code < 12000; ++code) {
        const WideText text = textOf(code);
        if (text == ofOthers) continue;
        add(static_cast<unsigned int>(code));
        for (const WCHAR unit : text) add(unit);
    }
    return hash;
}

// Hosts show these texts, and may compare them.
TEST(SocketErrorTexts, NeverChange) {
    EXPECT_EQ(WideText(pendingErrorText(WSAECONNREFUSED)), _T("Connection refused."));
    EXPECT_EQ(hashOfTexts(pendingErrorText, _T("Unknown socket error.")), 0x57d7ce47db2224c0u);
    EXPECT_EQ(WideText(queryErrorText(WSAENOTSOCK)), _T("GetSockOpt error: WSAENOTSOCK"));
    EXPECT_EQ(hashOfTexts(queryErrorText, _T("GetSockOpt error.")), 0x523114f553fec4b1u);
    EXPECT_EQ(WideText(pendingErrorText(-1)), _T("Unknown socket error."));
    EXPECT_EQ(WideText(queryErrorText(-1)), _T("GetSockOpt error."));
}

// A connect that no thread has waited for. The text is the same whether or not the code is asked
// for.
TEST(SocketErrorText, NamesARefusedConnect) {
    const peers::WinsockSession winsock;
    const peers::RefusingPort nobody;
    for (const bool isAsked : {true, false}) {
        const NySe::UniqueSocket socket(port::createSocket(AF_INET, SOCK_STREAM, 0));
        port::setBlocking(socket.get(), false);
        port::connectTo(socket.get(), peers::loopbackAddress(nobody.port()));
        EXPECT_TRUE(eventually(
            [&] { return port::waitForConnect(socket.get(), 10000) == port::Readiness::failed; }));
        port::closeSocket(INVALID_SOCKET);  // the thread's own error is of no concern
        const SOCKET plain = socket.get();
        int code = -1;
        EXPECT_EQ(WideText(SocketErrorText(&plain, isAsked ? &code : nullptr)),
                  _T("Connection refused."));
        EXPECT_EQ(code, isAsked ? 10061 : -1);
    }
}

}  // namespace
