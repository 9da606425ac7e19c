// Converts text between the programs' UTF-8 and the library's UTF-16.
#pragma once

#include <afx.h>

#include <string>

namespace apps {

std::string toUtf8(const CString& text);
CString fromUtf8(const std::string& text);

}  // namespace apps
