// A host in fifty lines: small ADDRESS PORT prints the numbers of three notifications.
#include <afxwin.h>

#include <cstdio>
#include <cstdlib>

#include "NyServer/client/NySeClientApp.h"
#include "NyServer/host/NyServerModule.h"
#include "NyServer/listener/NyServerApp.h"
#include "NyServer/listener/NyServerNotification.h"

class MainWnd : public CWnd {
  public:
    explicit MainWnd(NyServerApp& listener) : m_listener(listener) {
        CreateEx(0, AfxRegisterWndClass(0), _T("Small"), 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr);
        m_listener.setAppWnd(this);
    }
    ~MainWnd() override { m_listener.setAppWnd(nullptr); }

  protected:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
        if (message != NySe::_TM_NYSERVERMESSAGE) return CWnd::WindowProc(message, wParam, lParam);
        const NyServerNotification notification(wParam, lParam, &m_listener);
        std::printf("notification %d\n", notification.getActionType());
        if (--m_wanted == 0) ::PostQuitMessage(0);
        return 0;
    }

  private:
    NyServerApp& m_listener;
    int m_wanted = 3;
};

int main(int argc, char** argv) {
    NySeClientApp client;
    if (argc != 3 || client.connect(std::atoi(argv[2]), argv[1], -1) != 0) return 1;
    client.initializeSchema();

    NyServerApp listener;
    MainWnd window(listener);
    NySeUser user;
    user.setStrUserName(_T("Small"));
    user.setSchema(client.getSchemaType());
    listener.setPortNumber(static_cast<unsigned short>(client.getPortClient(user)));
    if (listener.Start() != 0) return 1;

    for (MSG message; ::GetMessage(&message, nullptr, 0, 0) > 0;) ::DispatchMessage(&message);
    client.disconnect();
}
