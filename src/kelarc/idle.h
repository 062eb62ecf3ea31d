#pragma once

// Tells whether all requests have ended. Header only: the code is compiled into the application, on top of the public
// class.

#include "KelArc.h"

#include <chrono>
#include <poll.h>

namespace kelarc {

/// True when every request made before this call has ended: its callback has returned, or it has ended without an
/// answer. An answer alone is not enough: it comes while its request still runs.
///
/// A request that another thread or a callback makes meanwhile may count or not. Callbacks and their captures are
/// destroyed a moment after their request has ended. False in every answer callback: its own request runs. A failure to
/// lock is thrown as std::system_error.
inline bool isIdle(const KelArc& modem)
{
    // Waiting requests first, then the running one. The worker moves a request from waiting to running in one step, so
    // a request that the first check misses is seen by the second. In the other order both could miss it.
    return modem.getPendingTasks() == 0 && modem.getRunningTaskId() == 0;
}

/// Waits at most `limit` until isIdle() is true, and returns whether it was. Zero and less: checks once. Not for answer
/// callbacks: their own request still runs.
///
///     modem.close(...);                              // and the answer has come
///     if (!kelarc::waitUntilIdle(modem, std::chrono::seconds(1)))
///         std::_Exit(EXIT_FAILURE);                  // the destructor would wait for a request repeated for ever
inline bool waitUntilIdle(const KelArc& modem, std::chrono::milliseconds limit)
{
    using Clock = std::chrono::steady_clock;
    constexpr int kBetweenLooksMs = 1;
    const Clock::time_point begin = Clock::now();
    for (;;) {
        const bool isLastLook = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - begin) >= limit;
        if (isIdle(modem))
            return true;
        if (isLastLook)
            return false;
        ::poll(nullptr, 0, kBetweenLooksMs);
    }
}

}  // namespace kelarc
