#pragma once

// Whether everything that was requested has ended. Header only: what is here is compiled into the application, on top
// of the public class.

#include "KelArc.h"

#include <chrono>
#include <poll.h>

namespace kelarc {

/// True when every request that was made before this call has ended: its callback has returned, or it has ended without
/// an answer. That its answer has come is not enough: it comes while its request still runs.
///
/// A request that another thread or a callback makes meanwhile may count or not. The callbacks themselves, with what
/// they hold, are destroyed a moment after their request has ended. False in every answer callback: its own request
/// runs. A failure to lock is thrown as std::system_error.
inline bool isIdle(const KelArc& modem)
{
    // What waits, before what runs. The worker takes a request from the one to the other in one step, so a request that
    // the first question misses is met by the second. Asked the other way round, both could miss it.
    return modem.getPendingTasks() == 0 && modem.getRunningTaskId() == 0;
}

/// Waits until isIdle(), `limit` at the longest: true when it was. Zero and less: one look. Not for answer callbacks,
/// whose own request would be waited for.
///
///     modem.close(...);                              // and the answer has come
///     if (!kelarc::waitUntilIdle(modem, std::chrono::seconds(1)))
///         std::_Exit(EXIT_FAILURE);                  // the destructor would wait for what is repeated for ever
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
