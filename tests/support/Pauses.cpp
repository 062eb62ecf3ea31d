#include "support/Pauses.h"

#include <cerrno>
#include <ctime>
#include <mutex>
#include <utility>

namespace support::pauses {
namespace {

using Observer = std::function<void(const Pause&, std::size_t)>;

struct State
{
    std::mutex mutex;
    // guarded by mutex
    std::vector<Pause> pauses;
    Observer observer;
    bool takesTime = false;
};

/// Never destroyed: a thread may pause while the process ends.
State& state()
{
    static State* const theState = new State;
    return *theState;
}

/// Records the pause; true when it is to last its full time.
bool note(const timespec& duration)
{
    const Pause pause{duration.tv_sec, duration.tv_nsec, std::this_thread::get_id()};
    Observer observer;
    std::size_t number = 0;
    bool takesTime = false;
    {
        const std::lock_guard<std::mutex> lock(state().mutex);
        state().pauses.push_back(pause);
        number = state().pauses.size();
        observer = state().observer;
        takesTime = state().takesTime;
    }
    if (observer)
        observer(pause, number);
    return takesTime;
}

}  // namespace

void reset()
{
    Observer dropped;
    const std::lock_guard<std::mutex> lock(state().mutex);
    state().pauses.clear();
    state().takesTime = false;
    std::swap(dropped, state().observer);
}

std::vector<Pause> all()
{
    const std::lock_guard<std::mutex> lock(state().mutex);
    return state().pauses;
}

std::size_t count()
{
    const std::lock_guard<std::mutex> lock(state().mutex);
    return state().pauses.size();
}

void observe(Observer observer)
{
    const std::lock_guard<std::mutex> lock(state().mutex);
    std::swap(observer, state().observer);
}

void takeTime()
{
    const std::lock_guard<std::mutex> lock(state().mutex);
    state().takesTime = true;
}

}  // namespace support::pauses

extern "C" int nanosleep(const timespec* duration, timespec* remaining)
{
    if (!support::pauses::note(*duration))
        return 0;
    const int error = clock_nanosleep(CLOCK_MONOTONIC, 0, duration, remaining);
    if (error == 0)
        return 0;
    errno = error;
    return -1;
}
