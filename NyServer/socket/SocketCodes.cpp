#include "NyServer/socket/SocketCodes.h"

const int NY_UTE_SUCCESS = UTE_SUCCESS;
const int NY_UTE_ERROR = UTE_ERROR;
const int NY_UTE_SOCK_BIND_FAILED = UTE_SOCK_BIND_FAILED;
