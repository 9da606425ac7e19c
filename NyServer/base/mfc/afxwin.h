// Windows.
#pragma once

#include "afx.h"

#include "CWnd.h"
