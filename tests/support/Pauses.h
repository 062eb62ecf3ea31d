#pragma once

#include <cstddef>
#include <functional>
#include <thread>
#include <vector>

// The executable supplies its own nanosleep, which the library under test finds first: a pause between attempts is
// recorded and takes no time, so a test of fifteen failures lasts only as long as its fifteen calls.

namespace support::pauses {

struct Pause
{
    long seconds;
    long nanoseconds;
    std::thread::id thread;
};

/// Forgets all pauses and the observer; pauses take no time afterwards.
void reset();

/// All pauses since reset(), in order.
std::vector<Pause> all();
std::size_t count();

/// Runs on the pausing thread at every pause, with its number (1 is the first since reset()), while nothing is locked.
void observe(std::function<void(const Pause&, std::size_t number)> observer);

/// From now on pauses last their full time.
void takeTime();

}  // namespace support::pauses
