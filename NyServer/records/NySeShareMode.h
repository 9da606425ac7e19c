// The share mode of a lock: what a session asks for, and what it excludes while it holds the lock.
// NySeLock::seekShareMode says which modes go together.
#pragma once

#include <string>

// The bits with a meaning: X(word, value). They travel and are stored: do not change a value.
// clang-format off
#define NYSE_SHARE_MODES(X) \
    X(access1, 0x01)  /* asks for access of the first kind */ \
    X(access2, 0x02)  /* asks for access of the second kind */ \
    X(exclude1, 0x08) /* refuses later requests for access, first kind */ \
    X(exclude2, 0x10) /* refuses later requests for access, second kind */
// clang-format on

namespace NySe {

// A share mode is any of them together; other bits travel and mean nothing.
enum ShareMode : unsigned int {
#define NYSE_ENUMERATOR(word, value) word = value,
    NYSE_SHARE_MODES(NYSE_ENUMERATOR)
#undef NYSE_ENUMERATOR
};

struct ShareModeBit {
    ShareMode bit;
    const char* word;
};

inline constexpr ShareModeBit kShareModeBits[] = {
#define NYSE_ROW(word, value) {word, #word},
    NYSE_SHARE_MODES(NYSE_ROW)
#undef NYSE_ROW
};

// The words of the bits that are set, as "exclude1+exclude2"; "none" when none has a meaning.
inline std::string shareModeWords(unsigned int mode) {
    std::string words;
    for (const auto& [bit, word] : kShareModeBits) {
        if ((mode & bit) == 0) continue;
        if (!words.empty()) words += '+';
        words += word;
    }
    return words.empty() ? "none" : words;
}

}  // namespace NySe
