#pragma once

#include <chrono>
#include <cstdint>

namespace task {

/// `delay` after `now`, cut to the clock's range.
inline std::chrono::steady_clock::time_point plannedAfter(std::chrono::steady_clock::time_point now,
                                                          std::chrono::milliseconds delay)
{
    using TimePoint = std::chrono::steady_clock::time_point;
    // Compared in milliseconds, because nanoseconds could overflow.
    if (delay > std::chrono::duration_cast<std::chrono::milliseconds>(TimePoint::max() - now))
        return TimePoint::max();
    if (delay < std::chrono::duration_cast<std::chrono::milliseconds>(TimePoint::duration::min()))
        return TimePoint::min();
    return now + delay;
}

/// Time until `planned`; cut to the range of the type if a task was planned near the clock's beginning.
inline std::chrono::steady_clock::duration timeUntil(std::chrono::steady_clock::time_point planned)
{
    using Duration = std::chrono::steady_clock::duration;
    const auto now = std::chrono::steady_clock::now();
    if (planned.time_since_epoch() < Duration::min() + now.time_since_epoch())
        return Duration::min();
    return planned - now;
}

/// The same in whole milliseconds, truncated toward zero.
inline std::int64_t millisecondsUntil(std::chrono::steady_clock::time_point planned)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(timeUntil(planned)).count();
}

}  // namespace task
