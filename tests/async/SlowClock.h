#pragma once

#include <functional>

namespace slow {

/// While one lives, the steady clock of its thread is 25 hours behind the system's, from the second look on: a wait of
/// a day is over at once, as if the day had passed, and what was to end after more than a day has not. The first look,
/// with which limits are made, is right: on a machine that has just been started the late clock is below zero. The
/// executable supplies the clock.
class SlowClock
{
public:
    /// `onRead` runs at every look at the clock of this thread.
    explicit SlowClock(std::function<void()> onRead);
    SlowClock(const SlowClock&) = delete;
    SlowClock& operator=(const SlowClock&) = delete;
    ~SlowClock();
};

}  // namespace slow
