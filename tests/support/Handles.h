#pragma once

#include <array>

#include "NyServer/base/detail/UniqueHandle.h"

// A level that rises with the handles in use: a new handle takes the first free place.
inline size_t handleLevel() {
    std::array<NySe::UniqueKernelHandle, 64> probes;
    for (auto& probe : probes) probe.reset(::CreateEventW(nullptr, TRUE, FALSE, nullptr));
    return reinterpret_cast<size_t>(probes.back().get()) / 4;
}
