// Bytes written as text: pairs of hex digits, with 'quoted' characters standing for themselves.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

using Bytes = std::vector<unsigned char>;

inline Bytes fromHex(std::string_view text) {
    Bytes bytes;
    bool quoted = false;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\'') {
            quoted = !quoted;
        } else if (quoted) {
            bytes.push_back(static_cast<unsigned char>(text[i]));
        } else if (text[i] != ' ') {
            if (i + 1 == text.size()) throw std::invalid_argument("half a byte");
            bytes.push_back(
                static_cast<unsigned char>(std::stoi(std::string(text.substr(i, 2)), nullptr, 16)));
            ++i;
        }
    }
    return bytes;
}

inline std::string toHex(const Bytes& bytes) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text;
    for (const unsigned char byte : bytes) {
        if (!text.empty()) text += ' ';
        text += kDigits[byte >> 4];
        text += kDigits[byte & 15];
    }
    return text;
}

// The plain form of such a text, to compare with toHex: a failure then shows both in hex.
inline std::string hex(std::string_view text) {
    return toHex(fromHex(text));
}

inline Bytes operator+(Bytes left, const Bytes& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

inline Bytes repeated(const Bytes& part, size_t times) {
    Bytes bytes;
    bytes.reserve(part.size() * times);
    for (size_t i = 0; i < times; ++i) bytes.insert(bytes.end(), part.begin(), part.end());
    return bytes;
}
