// Nothing beyond <winsock2.h> is used of it.
#pragma once
