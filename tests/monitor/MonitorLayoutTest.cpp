// The window in several sizes and on screens of several densities.
#include "apps/monitor/Layout.h"
#include "tests/monitor/MonitorTest.h"
#include "tests/monitor/Tidy.h"

using namespace apps::monitor;

namespace {

constexpr int kControls[] = {ID_LOCK,         ID_UNLOCK, ID_OPEN,    ID_CLOSE,
                             ID_SEND,         ID_RENAME, IDC_FILTER, IDC_USERS,
                             IDC_CONNECTIONS, IDC_LOCKS, IDC_LOG,    IDC_STATUS};

class MonitorLayout : public MonitorTest {
  protected:
    void SetUp() override { openWindow(static_cast<int>(peers::RefusingPort().port())); }

    void resize(int width, int height) const {
        ::SetWindowPos(window, nullptr, 0, 0, width, height, SWP_NOZORDER);
    }
    static RECT areaOf(HWND control) {
        RECT area{};
        ::GetWindowRect(control, &area);
        return area;
    }
    static SIZE sizeOf(HWND control) {
        const RECT area = areaOf(control);
        return {area.right - area.left, area.bottom - area.top};
    }
    void expectTidyWindow() const {
        RECT client{};
        ::GetClientRect(window, &client);
        ::MapWindowPoints(window, nullptr, reinterpret_cast<POINT*>(&client), 2);
        std::vector<RECT> areas;
        for (const int id : kControls) areas.push_back(areaOf(control(id)));
        expectTidy(areas, client);
    }
    LONG fontHeight(int id) const {
        LOGFONTW font{};
        ::GetObjectW(reinterpret_cast<HFONT>(::SendMessageW(control(id), WM_GETFONT, 0, 0)),
                     sizeof font, &font);
        return std::abs(font.lfHeight);
    }
};

TEST_F(MonitorLayout, TheListsFillTheWindowWhichNeverGetsSmallerThanItsControls) {
    expectTidyWindow();
    resize(1000, 600);
    const SIZE small = sizeOf(control(IDC_LOCKS));
    resize(1300, 900);
    expectTidyWindow();
    const SIZE large = sizeOf(control(IDC_LOCKS));
    EXPECT_NEAR(small.cx + 300 * 44 / 100, large.cx, 3);
    EXPECT_NEAR(small.cy + 300 / 2, large.cy, 3);
    resize(10, 10);
    expectTidyWindow();
    EXPECT_GT(sizeOf(window).cx, 600);
}

TEST_F(MonitorLayout, ItGrowsWithTheDensityOfTheScreen) {
    resize(700, 400);
    const SIZE button = sizeOf(control(ID_LOCK));
    const LONG font = fontHeight(IDC_USERS);
    const RECT suggested{0, 0, 1400, 900};
    ::SendMessageW(window, WM_DPICHANGED, MAKEWPARAM(192, 192),
                   reinterpret_cast<LPARAM>(&suggested));
    EXPECT_EQ(2 * button.cx, sizeOf(control(ID_LOCK)).cx);
    EXPECT_NEAR(2 * font, fontHeight(IDC_USERS), 1);
    EXPECT_EQ(fontHeight(IDC_USERS), fontHeight(ID_LOCK));
    EXPECT_EQ(fontHeight(IDC_USERS), fontHeight(IDC_LOG));
    expectTidyWindow();
}

TEST_F(MonitorLayout, TheStatusBarHasSpaceForItsTexts) {
    const HWND bar = control(IDC_STATUS);
    const HDC dc = ::GetDC(bar);
    ::SelectObject(dc, reinterpret_cast<HFONT>(::SendMessageW(bar, WM_GETFONT, 0, 0)));
    const auto expectRoom = [&](StatusBar::Part part, const std::wstring& text) {
        RECT room{};
        ::SendMessageW(bar, SB_GETRECT, part, reinterpret_cast<LPARAM>(&room));
        SIZE needed{};
        ::GetTextExtentPoint32W(dc, text.c_str(), static_cast<int>(text.size()), &needed);
        EXPECT_LT(needed.cx, room.right - room.left);
    };
    expectRoom(StatusBar::connection, L"No connection to 127.0.0.1:42015. Trying again in 16 s");
    expectRoom(StatusBar::activity, L"Waiting: Lock deck (access1+access2+exclude1+exclude2)");
    expectRoom(StatusBar::posted, L"Posted 3240 of 3240");
    ::ReleaseDC(bar, dc);
}

TEST_F(MonitorLayout, TheTabKeyVisitsAllControls) {
    std::vector<int> seen;
    for (int i = 0; i < 6; ++i) {
        const HWND before = focus();
        seen.push_back(::GetDlgCtrlID(before));
        keys::press(VK_TAB);
        EXPECT_TRUE(soon([&] { return focus() != before; })) << seen.back();
    }
    // The buttons can do nothing without a connection.
    EXPECT_EQ(
        (std::vector<int>{IDC_USERS, IDC_CONNECTIONS, IDC_LOCKS, IDC_LOG, IDC_FILTER, IDC_USERS}),
        seen);
}

}  // namespace
