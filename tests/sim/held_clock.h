#pragma once

#include <chrono>

namespace host_test {

/// While an object exists, the steady clock of its creating thread stands still and advances only on request.
class HeldClock
{
public:
    using Clock = std::chrono::steady_clock;

    HeldClock();
    ~HeldClock();
    HeldClock(const HeldClock&) = delete;
    HeldClock& operator=(const HeldClock&) = delete;

    void pass(Clock::duration time) { goTo(Clock::now() + time); }
    void goTo(Clock::time_point time);
};

}  // namespace host_test
