// The class library's windows as far as the listener uses them: an object that bears a handle.
#pragma once

#include "NyServer/base/mfc/afx.h"
#include "NyServer/base/WindowsPrelude.h"
// After windows.h.
#include "NyServer/base/mfc/CWnd.h"
