// A host without a window: receiver ADDRESS PORT prints the numbers of three notifications.
#include <afx.h>

#include <cstdio>
#include <cstdlib>
#include <semaphore>

#include "NyServer/client/NySeClientApp.h"
#include "NyServer/listener/NyServerApp.h"

int main(int argc, char** argv) {
    NySeClientApp client;
    if (argc != 3 || client.connect(std::atoi(argv[2]), argv[1], -1) != 0) return 1;
    client.initializeSchema();

    std::counting_semaphore<> received(0);
    NyServerApp listener;
    const bool isReady = listener.setReceiver([&received](NySe::ActionType action, CMemFile&) {
        std::printf("notification %d\n", action);
        received.release();
    });
    NySeUser user;
    user.setStrUserName(_T("Receiver"));
    user.setSchema(client.getSchemaType());
    const int port = client.getPortClient(user);
    if (!isReady || port == 0) return 1;
    listener.setPortNumber(static_cast<unsigned short>(port));
    if (listener.Start() != 0) return 1;

    for (int i = 0; i < 3; ++i) received.acquire();
    client.disconnect();
}
