// Lets GoogleTest show a CString, zero characters included.
#pragma once

#include <afx.h>

#include <gtest/gtest.h>

#include <ostream>
#include <string>

// All units of a text. CString's own == ends at a zero character; this does not.
inline std::basic_string<WCHAR> unitsOf(const CString& text) {
    return {text.GetString(), static_cast<size_t>(text.GetLength())};
}

inline void PrintTo(const CString& text, std::ostream* out) {
    *out << ::testing::PrintToString(unitsOf(text));
}
