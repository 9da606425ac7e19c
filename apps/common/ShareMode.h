// A lock's share mode in digits and in words.
#pragma once

#include <string>

namespace apps {

// In hex, as "0x18".
std::string shareModeDigits(unsigned mode);

// Which of the four bits that have a meaning are set, as "exclude1+exclude2"; "none" for none.
std::string shareModeWords(unsigned mode);

}  // namespace apps
