#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace seeds {

/// Numbers that follow from a seed alone, the same on every machine. (The distributions of the standard library are
/// not.) The generator is splitmix64.
class Random
{
public:
    explicit Random(std::uint64_t seed) : m_state(seed) {}

    std::uint64_t next()
    {
        m_state += 0x9e3779b97f4a7c15U;
        std::uint64_t value = m_state;
        value = (value ^ (value >> 30U)) * 0xbf58476d1ce4e5b9U;
        value = (value ^ (value >> 27U)) * 0x94d049bb133111ebU;
        return value ^ (value >> 31U);
    }
    /// Both included.
    int between(int lowest, int highest)
    {
        return lowest + static_cast<int>(next() % static_cast<std::uint64_t>(highest - lowest + 1));
    }
    bool happens(int percent) { return between(1, 100) <= percent; }
    template <typename Value>
    const Value& oneOf(const std::vector<Value>& values)
    {
        return values[next() % values.size()];
    }

private:
    std::uint64_t m_state;
};

}  // namespace seeds
