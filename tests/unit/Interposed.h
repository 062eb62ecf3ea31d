#pragma once

// The unit tests' own versions of what the queue asks of the system. They stand in for the originals because the
// executable's symbols come first; unless a test says otherwise they pass everything through.

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <pthread.h>
#include <string>
#include <vector>

namespace interposed {

/// The steady clock. Held, it stands still at a time of the test's choosing, and timed waits return after a moment
/// whatever their limit; the queue must cope with early returns anyway.
class HeldClock
{
public:
    explicit HeldClock(std::chrono::nanoseconds time);
    ~HeldClock();
    void set(std::chrono::nanoseconds time);
    void advance(std::chrono::nanoseconds step);
    /// Every reading moves the clock on by `step` afterwards.
    void advanceOnRead(std::chrono::nanoseconds step);
};

/// Readings of the clock by the calling thread since the program began.
std::uint64_t clockReads();
/// Readings of the clock by all threads.
std::uint64_t allClockReads();

/// What a timed wait asked for: its limit from the moment of the call.
struct WaitLog
{
    WaitLog();
    ~WaitLog();
    std::vector<std::chrono::nanoseconds> waits() const;
    /// False when `count` waits have not begun after a generous limit.
    bool awaitCount(std::size_t count) const;
};

/// Called at the beginning of every timed wait, by the waiting thread, which holds the mutex. Empty: nothing.
void onWait(std::function<void()> hook);
/// Called at the beginning of every notification of one waiter, by the notifying thread.
void onNotify(std::function<void()> hook);
/// Called before the lock of `mutex` is taken, by the locking thread.
void onLock(pthread_mutex_t* mutex, std::function<void()> hook);
/// Called before the lock of `mutex` is given up, by the thread that holds it; a wait that gives it up is not seen.
void onUnlock(pthread_mutex_t* mutex, std::function<void()> hook);

/// While true the system gives no new threads.
void refuseThreads(bool refuse);

/// Threads named through the system since the last call: native handle and name.
std::vector<std::pair<pthread_t, std::string>> takeThreadNames();

}  // namespace interposed
