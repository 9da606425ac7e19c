// Texts of the tests' data files, which are UTF-8.
#pragma once

#include <afx.h>

#include <string>
#include <string_view>

// REQUIRES: well-formed UTF-8.
inline CString fromUtf8(std::string_view text) {
    std::basic_string<WCHAR> units;
    for (size_t i = 0; i < text.size();) {
        const unsigned lead = static_cast<unsigned char>(text[i++]);
        const int more = lead < 0x80 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
        char32_t point = more == 0 ? lead : lead & (0x3Fu >> more);
        for (int k = 0; k < more; ++k) {
            point = point << 6 | (static_cast<unsigned char>(text[i++]) & 0x3F);
        }
        if (point >= 0x10000) {
            units += static_cast<WCHAR>(0xD800 + ((point - 0x10000) >> 10));
            point = 0xDC00 + (point & 0x3FF);
        }
        units += static_cast<WCHAR>(point);
    }
    return CString(units.data(), static_cast<int>(units.size()));
}
