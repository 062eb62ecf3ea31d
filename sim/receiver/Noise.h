#pragma once

// Pseudo-random numbers that are the same on every machine for the same key. The distributions of <random> differ
// between standard libraries, so recorded expectations would hold on one machine only.

#include <cstdint>
#include <initializer_list>

namespace arcsim {

/// From 0 up to, not including, 1.
inline double noise(std::initializer_list<std::uint64_t> key)
{
    std::uint64_t state = 0;
    for (const std::uint64_t part : key) {
        state += part + 0x9E3779B97F4A7C15U;  // the splitmix64 step: increment, two multiply-shift rounds
        state = (state ^ (state >> 30U)) * 0xBF58476D1CE4E5B9U;
        state = (state ^ (state >> 27U)) * 0x94D049BB133111EBU;
        state ^= state >> 31U;
    }
    return static_cast<double>(state >> 11U) * 0x1.0p-53;
}

}  // namespace arcsim
