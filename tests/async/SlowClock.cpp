#include "async/SlowClock.h"

#include <chrono>
#include <ctime>
#include <utility>

namespace slow {
namespace {

thread_local std::function<void()> t_onRead;  ///< empty while the thread's clock is right
thread_local bool t_isLate = false;

}  // namespace

SlowClock::SlowClock(std::function<void()> onRead)
{
    t_onRead = std::move(onRead);
    t_isLate = false;
}

SlowClock::~SlowClock()
{
    t_onRead = nullptr;
}

}  // namespace slow

std::chrono::steady_clock::time_point std::chrono::steady_clock::now() noexcept
{
    timespec time{};
    ::clock_gettime(CLOCK_MONOTONIC, &time);
    const time_point right(seconds(time.tv_sec) + nanoseconds(time.tv_nsec));
    if (!slow::t_onRead)
        return right;
    slow::t_onRead();
    return std::exchange(slow::t_isLate, true) ? right - hours(25) : right;
}
