#include "apps/common/ShareMode.h"

#include <cstdio>

namespace apps {

std::string shareModeDigits(unsigned mode) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%02X", mode);
    return text;
}

std::string shareModeWords(unsigned mode) {
    static constexpr struct {
        unsigned bit;
        const char* word;
    } kWords[] = {{0x01, "access1"}, {0x02, "access2"}, {0x08, "exclude1"}, {0x10, "exclude2"}};
    std::string text;
    for (const auto& [bit, word] : kWords) {
        if ((mode & bit) == 0) continue;
        if (!text.empty()) text += '+';
        text += word;
    }
    return text.empty() ? "none" : text;
}

}  // namespace apps
