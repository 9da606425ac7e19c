#pragma once

#include <gtest/gtest.h>

#include <vector>

#include "NyServer/base/WindowsPrelude.h"

// Expects that all parts lie in the room, none of them empty or over another.
inline void expectTidy(const std::vector<RECT>& parts, const RECT& room) {
    RECT common{};
    for (size_t i = 0; i < parts.size(); ++i) {
        EXPECT_FALSE(::IsRectEmpty(&parts[i])) << i;
        ::IntersectRect(&common, &parts[i], &room);
        EXPECT_TRUE(::EqualRect(&common, &parts[i])) << i << " lies outside";
        for (size_t j = 0; j < i; ++j)
            EXPECT_FALSE(::IntersectRect(&common, &parts[i], &parts[j])) << i << " over " << j;
    }
}
