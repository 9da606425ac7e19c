// The cursor during a request.
#include "NyServer/base/WindowsPrelude.h"
#include "tests/online/OnlineTest.h"

namespace {

using OnlineWaitCursor = OnlineTest;

// Answers, and adds the cursor that the thread shows meanwhile.
peers::Script keepingCursor(DWORD thread, std::vector<HCURSOR>& cursors) {
    return [thread, &cursors](peers::Connection& connection) {
        ::AttachThreadInput(::GetCurrentThreadId(), thread, TRUE);
        cursors.push_back(::GetCursor());
        ::AttachThreadInput(::GetCurrentThreadId(), thread, FALSE);
        connection.send(webAnswer("<VERSION>2.1</VERSION>"));
    };
}

TEST_F(OnlineWaitCursor, ShowsTheWaitCursorDuringARequest) {
    const HCURSOR wait = ::LoadCursorW(nullptr, IDC_WAIT);
    const HCURSOR cross = ::LoadCursorW(nullptr, IDC_CROSS);
    ::SetCursor(cross);
    std::vector<HCURSOR> cursors;
    const WebServer server(keepingCursor(::GetCurrentThreadId(), cursors));
    addresses::production = server.address();
    NyFctWebService::pingWebServer();
    EXPECT_EQ(cross, ::GetCursor());
    version();
    EXPECT_EQ(cross, ::GetCursor());
    EXPECT_EQ(std::vector<HCURSOR>(3, wait), cursors);
}

}  // namespace
