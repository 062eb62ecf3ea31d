#pragma once

// How requests end. Part of kelarc/async.h.

#include <atomic>
#include <chrono>
#include <cstdint>
#include <exception>
#include <future>
#include <memory>
#include <stdexcept>
#include <utility>

namespace kelarc::async {

/// Thrown instead of an answer that did not come within its limit. The request stays in the queue.
class TimedOut : public std::runtime_error
{
public:
    TimedOut() : std::runtime_error("no answer from the modem within the limit") {}
};

/// Implementation of request() and answer(); not for users.
namespace detail {

class Clock;

using TimePoint = std::chrono::steady_clock::time_point;
using Duration = std::chrono::steady_clock::duration;

/// A place in the order of deadlines: the time, and a number to distinguish equal times.
using DeadlineKey = std::pair<TimePoint, std::uint64_t>;

/// Why there is no answer.
enum class Failure
{
    dropped,
    late,
};

/// The exception for a failure: one of each kind for the whole process, so that ending a request takes no memory. The
/// first call needs some.
inline const std::exception_ptr& exceptionOf(Failure failure)
{
    // Never destroyed: a long-lived object may drop requests after the destruction of statics.
    static const auto& dropped =
        *new std::exception_ptr(std::make_exception_ptr(std::future_error(std::future_errc::broken_promise)));
    static const auto& late = *new std::exception_ptr(std::make_exception_ptr(TimedOut()));
    return failure == Failure::late ? late : dropped;
}

/// The end of one request: it happens once, by the first caller.
class Ending : public std::enable_shared_from_this<Ending>
{
public:
    /// Creates the exceptions now, while a request can still be refused when memory has run out.
    Ending() { exceptionOf(Failure::dropped); }
    Ending(const Ending&) = delete;
    Ending& operator=(const Ending&) = delete;
    inline virtual ~Ending();

    /// Does nothing when the request has ended already.
    void fail(Failure failure)
    {
        if (isFirst())
            tellFailure(failure);
    }

    /// To be called before the request is made: afterwards it may end at any time.
    inline void limit(const std::shared_ptr<Clock>& clock, Duration limit);

protected:
    /// True for the first caller only, which then delivers the outcome.
    inline bool isFirst();
    virtual void tellFailure(Failure failure) = 0;

    /// Constant after limit(); null without one.
    const std::shared_ptr<Clock>& clock() const { return m_clock; }

private:
    std::atomic<bool> m_ended{false};
    std::shared_ptr<Clock> m_clock;
    DeadlineKey m_key{};  ///< constant after limit()
};

}  // namespace detail
}  // namespace kelarc::async

#include "Clock.h"  // defines the inline functions above, and needs the class
