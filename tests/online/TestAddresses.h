// Stands in for the addresses that the library is built with. Tests link this instead, and set
// them.
#pragma once

#include <afx.h>

namespace addresses {

inline CString production;
inline CString test;
inline bool isMemoryLeft = true;  // without, asking for an address throws std::bad_alloc

}  // namespace addresses
