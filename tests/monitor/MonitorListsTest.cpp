// What the lists and the log show of a central server.
#include "tests/monitor/MonitorTest.h"

namespace {

using ::testing::ElementsAre;

class MonitorLists : public MonitorTest {
  protected:
    void SetUp() override {
        startServer();
        anna = std::make_unique<OtherUser>(server->port(), "anna");
        bob = std::make_unique<OtherUser>(server->port(), "bob");
    }

    void clickHeader(int list, int column) const {
        const HWND header = ListView_GetHeader(control(list));
        RECT area{};
        ::SendMessageW(header, HDM_GETITEMRECT, static_cast<WPARAM>(column),
                       reinterpret_cast<LPARAM>(&area));
        POINT middle{(area.left + area.right) / 2, (area.top + area.bottom) / 2};
        ::ClientToScreen(header, &middle);
        keys::click(middle);
    }
    int sortMark(int list, int column) const {
        HDITEMW item{};
        item.mask = HDI_FORMAT;
        ::SendMessageW(ListView_GetHeader(control(list)), HDM_GETITEMW, static_cast<WPARAM>(column),
                       reinterpret_cast<LPARAM>(&item));
        return item.fmt & (HDF_SORTUP | HDF_SORTDOWN);
    }
    std::string titleOver(int list) const {
        return textOf(::GetWindow(control(list), GW_HWNDPREV));
    }

    std::unique_ptr<OtherUser> anna;
    std::unique_ptr<OtherUser> bob;
};

TEST_F(MonitorLists, ShowUsersConnectionsAndLocks) {
    anna->client.openConnection("Server=a");
    anna->client.openConnection("Server=a");
    anna->client.lock("part/1", 0x01);
    bob->client.lock("part/1", 0x13);
    openConnected();
    EXPECT_TRUE(becomes(IDC_USERS, 0, {"anna", "bob", "dora"}));
    EXPECT_THAT(column(IDC_CONNECTIONS, 0), ElementsAre("0"));
    EXPECT_THAT(column(IDC_CONNECTIONS, 1), ElementsAre("Server=a"));
    EXPECT_THAT(column(IDC_CONNECTIONS, 2), ElementsAre("2"));
    EXPECT_THAT(column(IDC_LOCKS, 0), ElementsAre("part/1"));
    EXPECT_THAT(column(IDC_LOCKS, 1), ElementsAre("anna, bob"));
    EXPECT_THAT(column(IDC_LOCKS, 2), ElementsAre("access1, access1+access2+exclude2"));
    EXPECT_EQ("Users (3)", titleOver(IDC_USERS));
    EXPECT_EQ("Locks (1)", titleOver(IDC_LOCKS));
}

TEST_F(MonitorLists, FollowWhatTheOthersDo) {
    openConnected();
    anna->client.lock("part/2", 0x18);
    EXPECT_TRUE(becomes(IDC_LOCKS, 0, {"part/2"}));
    EXPECT_TRUE(hasLogged("50 a lock was granted",
                          "NySeLock: part/2, held by session 1 (exclude1+exclude2)"));
    anna->client.unLock("part/2");
    EXPECT_TRUE(becomes(IDC_LOCKS, 0, {}));
    bob.reset();
    EXPECT_TRUE(becomes(IDC_USERS, 0, {"anna", "dora"}));
    NySeMessage saved;
    saved.setStrMessage("saved");
    anna->client.sendAllUserData(saved);
    EXPECT_TRUE(hasLogged("58 data for all", "NySeMessage: saved"));
}

TEST_F(MonitorLists, AreSortedByAClickOnAColumn) {
    const Texts up{"0", "1", "2", "3", "4", "5", "6", "7", "8", "9"};
    for (WCHAR name = L'j'; name >= L'a'; --name) anna->client.openConnection(CString(name));
    openConnected();
    EXPECT_EQ(up, column(IDC_CONNECTIONS, 0));
    EXPECT_EQ(HDF_SORTUP, sortMark(IDC_CONNECTIONS, 0));
    clickHeader(IDC_CONNECTIONS, 1);
    EXPECT_TRUE(becomes(IDC_CONNECTIONS, 0, {up.rbegin(), up.rend()}));
    EXPECT_EQ(0, sortMark(IDC_CONNECTIONS, 0));
    EXPECT_EQ(HDF_SORTUP, sortMark(IDC_CONNECTIONS, 1));
    ::Sleep(::GetDoubleClickTime() + 100);
    clickHeader(IDC_CONNECTIONS, 1);
    EXPECT_TRUE(becomes(IDC_CONNECTIONS, 0, up));
    EXPECT_TRUE(soon([this] { return sortMark(IDC_CONNECTIONS, 1) == HDF_SORTDOWN; }));
}

TEST_F(MonitorLists, AreFilteredByTyping) {
    anna->client.lock("part/7", 0x01);
    bob->client.lock("part/8", 0x01);
    openConnected();
    typeFilter("bob");
    EXPECT_TRUE(becomes(IDC_USERS, 0, {"bob"}));
    EXPECT_TRUE(becomes(IDC_LOCKS, 0, {"part/8"}));
    EXPECT_EQ("Users (1 of 3)", titleOver(IDC_USERS));
    keys::press(VK_ESCAPE);
    EXPECT_TRUE(becomes(IDC_USERS, 0, {"anna", "bob", "dora"}));
    EXPECT_EQ("Users (3)", titleOver(IDC_USERS));
}

TEST_F(MonitorLists, KeepTheChosenRowAndTheWidthOfAColumn) {
    openConnected();
    ::SendMessageW(control(IDC_USERS), LVM_SETCOLUMNWIDTH, 0, 222);
    keys::press(VK_DOWN);
    keys::press(VK_DOWN);
    const auto chosen = [this] {
        const LRESULT row = ::SendMessageW(control(IDC_USERS), LVM_GETNEXTITEM,
                                           static_cast<WPARAM>(-1), LVNI_SELECTED);
        return row < 0 ? std::string() : cell(IDC_USERS, static_cast<int>(row), 0);
    };
    EXPECT_TRUE(soon([&] { return chosen() == "bob"; })) << chosen();
    anna.reset();
    EXPECT_TRUE(becomes(IDC_USERS, 0, {"bob", "dora"}));
    EXPECT_EQ("bob", chosen());
    EXPECT_EQ(222, ::SendMessageW(control(IDC_USERS), LVM_GETCOLUMNWIDTH, 0, 0));
    bob.reset();
    EXPECT_TRUE(becomes(IDC_USERS, 0, {"dora"}));
    EXPECT_EQ("", chosen());
}

TEST_F(MonitorLists, TheLogStaysWhereTheUserReads) {
    openConnected();
    const auto top = [this] { return ::SendMessageW(control(IDC_LOG), LVM_GETTOPINDEX, 0, 0); };
    for (int i = 0; i < 30; ++i) anna->client.lock(CString(static_cast<WCHAR>(L'a' + i)), 0x01);
    EXPECT_TRUE(soon([&] { return rows(IDC_LOG) > 30 && top() > 0; }));
    ::SendMessageW(control(IDC_LOG), LVM_ENSUREVISIBLE, 0, FALSE);
    anna->client.lock("part/5", 0x01);
    EXPECT_TRUE(
        hasLogged("50 a lock was granted", "NySeLock: part/5, held by session 1 (access1)"));
    EXPECT_EQ(0, top());
}

// Nobody is told of another name.
TEST_F(MonitorLists, AreReadAgainByF5) {
    openConnected();
    anna->client.updateUserName("anne");
    keys::press(VK_F5);
    EXPECT_TRUE(becomes(IDC_USERS, 0, {"anne", "bob", "dora"}));
}

TEST_F(MonitorLists, IgnoreMessagesWithoutANotification) {
    openConnected();
    const int lines = rows(IDC_LOG);
    ::SendMessageW(window, NySe::_TM_NYSERVERMESSAGE, 100, 0);
    ::SendMessageW(window, WindowQueue::kMessage, 0, 0);
    anna->client.lock("part/9", 0x01);
    EXPECT_TRUE(soon([&] { return rows(IDC_LOG) == lines + 1; }));
}

}  // namespace
