// Text in lines.
#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

#include "NyServer/socket/CUT_WSClient.h"

int CUT_WSClient::SendAsLine(const char* data, int len, int lineLen) {
    if (len < 0) len = static_cast<int>(std::strlen(data));
    if (len < 1 || lineLen < 1) return 0;
    int total = 0;
    for (int position = 0; IsAborted() == 0; position += lineLen) {
        const int sent = Send(data + position, std::min(len - position, lineLen));
        if (sent < 1) break;
        total += sent;
        if (Send("\r\n", -1) < 1 || len - position <= lineLen) break;
    }
    return total;
}

int CUT_WSClient::ReceiveLine(char* buffer, int maxLen, int timeOut) {
    int space = maxLen - 1;
    if (space < 1) return 0;
    const std::unique_ptr<char[]> peeked(new (std::nothrow) char[static_cast<std::size_t>(maxLen)]);
    if (!peeked) return 0;

    int stored = 0;
    while (space > 0 && IsAborted() == 0) {
        if (timeOut > 0 && WaitForReceive(timeOut, 0) != UTE_SUCCESS) break;
        const int count = ::recv(m_socket, peeked.get(), space, MSG_PEEK);
        if (count < 1) break;
        const char* lineFeed = std::find(peeked.get(), peeked.get() + count, '\n');
        const bool isLine = lineFeed != peeked.get() + count;
        const int wanted = isLine ? static_cast<int>(lineFeed - peeked.get()) + 1 : count;
        const int taken = ::recv(m_socket, buffer + stored, wanted, 0);
        if (taken < 1) break;
        stored += taken;
        space -= taken;
        buffer[stored] = '\0';
        if (isLine) break;
    }
    return stored;
}
