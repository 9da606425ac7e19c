// The share mode of a lock: what a session requests, and what it refuses while it holds the lock.
// NySeLock::seekShareMode defines which modes are compatible.
#pragma once

#include <string>

// The bits with a meaning: X(word, value). They are on the wire and stored: do not change a value.
// exclude1 and exclude2 have the same effect.
// clang-format off
#define NYSE_SHARE_MODES(X) \
    X(access1, 0x01)  /* requests access of the first kind */ \
    X(access2, 0x02)  /* requests access of the second kind */ \
    X(exclude1, 0x08) /* refuses later requests for access of either kind, by any session */ \
    X(exclude2, 0x10) /* refuses later requests for access of either kind, by any session */
// clang-format on

namespace NySe {

// A share mode is any combination of them; other bits are kept and have no meaning.
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

// Returns the words of the bits that are set, as "exclude1+exclude2"; "none" if none of them has a
// word.
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
