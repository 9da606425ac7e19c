// What tests ask the system that the library never does.
#pragma once

#include <cstddef>
#include <thread>

#include "NyServer/socket/SocketCalls.h"

// The threads of this process.
int countThreads();

// The same, once the detached threads of earlier tests have ended. The first thread of a program
// may start others of the run time.
inline int countThreadsAtRest() {
    std::thread([] {}).join();
    int count = countThreads();
    for (int sameLooks = 0; sameLooks < 5;) {
        port::sleep(10);
        const int now = countThreads();
        sameLooks = now == count ? sameLooks + 1 : 0;
        count = now;
    }
    return count;
}

// The time in milliseconds for which the threads of this process have run.
ULONGLONG processorTime();

// A level that rises with the handles, or descriptors, in use: a new one takes the first free
// place.
std::size_t handleLevel();

// Whether a server ends a thread by force that does not stop.
bool endsThreadsByForce();

// The port of the socket's peer; 0 if it has none.
inline int peerPortOf(SOCKET socket) {
    return ntohs(port::peerAddress(socket).sin_port);
}

// This process's socket that is connected to the port; INVALID_SOCKET if there is none.
SOCKET socketConnectedTo(int port);

// Another handle of the socket, which keeps it open past the close of the first and shows whether
// it was shut down.
NySe::UniqueSocket otherHandleOf(SOCKET socket);

// Pages of memory of their own. After forbidAccess, whoever touches them ends the program.
void* allocatePages(std::size_t size);
void forbidAccess(void* pages, std::size_t size);
void freePages(void* pages, std::size_t size);
