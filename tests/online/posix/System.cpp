#include "tests/online/System.h"

#include "tests/support/Gate.h"
#include "tests/support/System.h"

struct NoMessageBoxes::Watch {};

// The test's servers close their ends of the connections a little later.
bool areAllPagesClosed() {
    return eventually([] {
        SOCKET socket = 0;
        while (socket < 1024 && peerPortOf(socket) == 0) ++socket;
        return socket == 1024;
    });
}

NoMessageBoxes::NoMessageBoxes() = default;

NoMessageBoxes::~NoMessageBoxes() = default;
