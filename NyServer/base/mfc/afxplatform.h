// The seam between the class library and the platform: integer types, characters and literals.
#pragma once

#include "NyServer/base/port/Platform.h"
#include "NyServer/base/support/NyBaseApi.h"
