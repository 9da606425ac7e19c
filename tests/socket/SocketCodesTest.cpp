#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "NyServer/socket/SocketCodes.h"

namespace {

TEST(SocketCodes, KeepTheirNumbers) {
    EXPECT_THAT((std::vector{UTE_SUCCESS,
                             UTE_ERROR,
                             UTE_WORKER_SEND_FAILED,
                             UTE_CONNECT_TIMEOUT,
                             UTE_NAME_LOOKUP_FAILED,
                             UTE_SOCK_NOT_OPEN,
                             UTE_SOCK_ALREADY_OPEN,
                             UTE_SOCK_CREATE_FAILED,
                             UTE_SOCK_BIND_FAILED,
                             UTE_SOCK_CONNECT_FAILED,
                             UTE_SOCK_TIMEOUT,
                             UTE_SOCK_RECEIVE_ERROR,
                             UTE_SOCK_SEND_ERROR,
                             UTE_SOCK_LISTEN_ERROR,
                             UTE_INVALID_OPEN_TYPE,
                             UTE_BUFFER_TOO_SHORT,
                             UTE_DS_OPEN_FAILED,
                             UTE_DS_WRITE_FAILED,
                             UTE_ABORTED,
                             UTE_CONNECT_RESOLVE_FAILED}),
                testing::ElementsAre(0, 1, 4, 5, 7, 15, 16, 17, 18, 19, 20, 21, 22, 23, 26, 35, 79,
                                     81, 90, 92));
}

}  // namespace
