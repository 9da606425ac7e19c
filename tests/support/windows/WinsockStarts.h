// Starts of Windows Sockets by the test itself.
#pragma once

#include "NyServer/base/WindowsPrelude.h"

class WinsockStarts {
  public:
    explicit WinsockStarts(int starts) : m_starts(starts) { start(starts); }
    ~WinsockStarts() {
        for (int i = 0; i < m_starts; ++i) ::WSACleanup();
    }
    WinsockStarts(const WinsockStarts&) = delete;
    WinsockStarts& operator=(const WinsockStarts&) = delete;

    // How many the process has at present.
    static int count() {
        int starts = 0;
        while (::WSACleanup() == 0) ++starts;
        start(starts);
        return starts;
    }

  private:
    static void start(int times) {
        WSADATA data;
        for (int i = 0; i < times; ++i) ::WSAStartup(MAKEWORD(2, 0), &data);
    }

    int m_starts;
};
