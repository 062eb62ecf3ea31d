#pragma once

#include <chrono>

namespace host_test {

/// While there is one, the steady clock stands for the thread that has made it and goes on when told.
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
