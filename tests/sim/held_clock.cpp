#include "sim/held_clock.h"

#include <ctime>
#include <optional>

namespace {

thread_local std::optional<std::chrono::steady_clock::time_point> t_held;

}  // namespace

// Goes before the C++ library's.
std::chrono::steady_clock::time_point std::chrono::steady_clock::now() noexcept
{
    if (t_held)
        return *t_held;
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return time_point(seconds(time.tv_sec) + nanoseconds(time.tv_nsec));
}

namespace host_test {

HeldClock::HeldClock()
{
    t_held = Clock::now();
}

HeldClock::~HeldClock()
{
    t_held.reset();
}

void HeldClock::goTo(Clock::time_point time)
{
    t_held = time;
}

}  // namespace host_test
