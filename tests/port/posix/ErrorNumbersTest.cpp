#include <gtest/gtest.h>

#include <cerrno>

#include "NyServer/base/port/Port.h"

namespace {

// Most of these cannot be provoked at will.
TEST(ErrorNumber, IsThatOfWinsock) {
    const std::pair<int, int> rows[] = {
        {EINTR, 10004},           {EACCES, 10013},
        {EPERM, 10013},           {EFAULT, 10014},
        {EINVAL, 10022},          {EMFILE, 10024},
        {ENFILE, 10024},          {EWOULDBLOCK, 10035},
        {EAGAIN, 10035},          {EINPROGRESS, 10035},
        {EALREADY, 10037},        {EBADF, 10038},
        {ENOTSOCK, 10038},        {EDESTADDRREQ, 10039},
        {EMSGSIZE, 10040},        {EPROTOTYPE, 10041},
        {ENOPROTOOPT, 10042},     {EPROTONOSUPPORT, 10043},
        {ESOCKTNOSUPPORT, 10044}, {EOPNOTSUPP, 10045},
        {EPFNOSUPPORT, 10046},    {EAFNOSUPPORT, 10047},
        {EADDRINUSE, 10048},      {EADDRNOTAVAIL, 10049},
        {ENETDOWN, 10050},        {ENETUNREACH, 10051},
        {ENETRESET, 10052},       {ECONNABORTED, 10053},
        {ECONNRESET, 10054},      {ENOBUFS, 10055},
        {ENOMEM, 10055},          {EISCONN, 10056},
        {ENOTCONN, 10057},        {EPIPE, 10054},
        {ESHUTDOWN, 10058},       {ETIMEDOUT, 10060},
        {ECONNREFUSED, 10061},    {EHOSTDOWN, 10064},
        {EHOSTUNREACH, 10065},    {0, 0},
        {ELOOP, 10107},  // any other
    };
    for (const auto& [system, winsock] : rows) {
        errno = system;
        EXPECT_EQ(port::lastSocketError(), winsock) << system;
    }
}

}  // namespace
