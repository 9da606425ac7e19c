// A read that fails: what has been opened is closed by another thread while the library waits for
// its first byte. No server can bring this about alone: WinINet reads what it has announced.
#include <gmock/gmock.h>

#include <algorithm>

#include "tests/online/OnlineTest.h"
#include "tests/online/windows/InternetHandles.h"
#include "tests/socket/LocalConnection.h"
#include "tests/support/MessageBoxWatch.h"

namespace {

// The handle appears while the answer is being opened, and waiting for the first byte begins at
// once after that; nothing tells when. A pause that was too short shows no box.
constexpr DWORD kPausesMs[] = {500, 2000, 8000};

// Closes the handle of the type whose address has `part` in it.
void closeOpened(DWORD type, const std::wstring& part, DWORD pauseMs) {
    ::Sleep(pauseMs);
    for (const OpenInternetHandle& open : openInternetHandles()) {
        if (open.type != type || urlOf(open.handle).find(part) == std::wstring::npos) continue;
        ::InternetCloseHandle(open.handle);
    }
}

// An FTP server with one file, the opening of which `serveFile` follows. Its last response is
// `lastResponse`.
class FtpScript {
  public:
    FtpScript(std::string lastResponse, std::function<void()> serveFile)
        : m_lastResponse(std::move(lastResponse)), m_serveFile(std::move(serveFile)) {}

    void operator()(peers::Connection& control) {
        control.send("220 ready\r\n");
        for (std::string command; !(command = control.receive()).empty();) answer(control, command);
    }

  private:
    void answer(peers::Connection& control, const std::string& command) {
        const std::string verb = command.substr(0, 4);
        if (verb == "PORT") m_dataPort = dataPort(command);
        if (verb == "RETR") return sendFile(control);
        control.send(verb == "USER"   ? "331 password\r\n"
                     : verb == "PASS" ? "230 in\r\n"
                                      : "200 fine\r\n");
    }

    // From "PORT h1,h2,h3,h4,p1,p2".
    static int dataPort(const std::string& command) {
        const size_t low = command.rfind(',');
        const size_t high = command.rfind(',', low - 1);
        return std::stoi(command.substr(high + 1)) * 256 + std::stoi(command.substr(low + 1));
    }

    void sendFile(peers::Connection& control) {
        NySe::UniqueSocket data = peers::connectTo(static_cast<unsigned int>(m_dataPort));
        EXPECT_TRUE(data);
        control.send("150 here: 100%s\r\n");
        m_serveFile();
        data.reset();
        control.send(m_lastResponse + "\r\n");
    }

    std::string m_lastResponse;
    std::function<void()> m_serveFile;
    int m_dataPort = 0;
};

// The text that the library puts before the server's last response.
const std::wstring kBefore = L"InternetReadFile return: ";

class OnlineReadError : public OnlineTest {
  protected:
    // The text of the box that one of the tries shows; `tryOnce` gives the version after a pause.
    template <class Try>
    std::wstring boxShownBy(Try tryOnce) {
        const size_t before = m_watch.boxes().size();
        for (const DWORD pauseMs : kPausesMs) {
            EXPECT_EQ(L"", tryOnce(pauseMs));
            if (m_watch.boxes().size() > before) return m_watch.boxes().back().text;
        }
        return L"no box";
    }

    std::wstring boxOfTheWebServer() {
        const std::string version = "<VERSION>2.1</VERSION>";
        return boxShownBy([&](DWORD pauseMs) {
            return versionBy([&, pauseMs](peers::Connection& connection) {
                connection.send(webAnswer("", "200 OK", static_cast<long long>(version.size())));
                closeOpened(INTERNET_HANDLE_TYPE_HTTP_REQUEST, L"Version.aspx", pauseMs);
                connection.send(version);
            });
        });
    }

    std::wstring boxOfTheFtpServer(const std::string& lastResponse) {
        return boxShownBy([&](DWORD pauseMs) {
            const peers::Peer ftp(FtpScript(lastResponse, [pauseMs] {
                closeOpened(INTERNET_HANDLE_TYPE_FTP_FILE, L"", pauseMs);
            }));
            return versionAt(
                CString(("ftp://127.0.0.1:" + std::to_string(ftp.port()) + "/").c_str()));
        });
    }

    MessageBoxWatch m_watch{IDOK};
};

// The session of the production service stays open meanwhile.
TEST_F(OnlineReadError, ShowsABoxAndReturnsNoVersionOnceTheDownloadIsClosed) {
    std::ptrdiff_t sessions = -1;
    m_watch.atBox = [&] {
        sessions = std::ranges::count(openInternetHandles(), DWORD{INTERNET_HANDLE_TYPE_INTERNET},
                                      &OpenInternetHandle::type);
    };
    // The last response is the thread's, and may be that of another test's server.
    EXPECT_THAT(boxOfTheWebServer(), ::testing::StartsWith(kBefore));
    ASSERT_EQ(1u, m_watch.boxes().size());
    EXPECT_EQ(::LoadIconW(nullptr, IDI_ERROR), m_watch.boxes()[0].icon);
    EXPECT_EQ(1, sessions);
}

std::string responseOfLength(size_t length) {
    const std::string code = "226 ";
    return code + std::string(length - code.size(), 'x');
}

std::wstring boxWith(const std::string& response) {
    return kBefore + std::wstring(response.begin(), response.end());
}

TEST_F(OnlineReadError, ShowsAResponseThatFitsInto1000Characters) {
    EXPECT_EQ(kBefore + L"226 sent: 100%s", boxOfTheFtpServer("226 sent: 100%s"));
    EXPECT_EQ(boxWith(responseOfLength(999)), boxOfTheFtpServer(responseOfLength(999)));
    EXPECT_EQ(kBefore, boxOfTheFtpServer(responseOfLength(1001)));
}

// Not every platform asks for room for the terminator.
TEST_F(OnlineReadError, ShowsNothingAfterAResponseOf1000Characters) {
    EXPECT_THAT(boxOfTheFtpServer(responseOfLength(1000)),
                ::testing::AnyOf(kBefore, boxWith(responseOfLength(1000))));
}

}  // namespace
