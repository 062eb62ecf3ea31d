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

/// What stands behind request() and answer(); not for users.
namespace detail {

class Clock;

using TimePoint = std::chrono::steady_clock::time_point;
using Duration = std::chrono::steady_clock::duration;

/// A place in the order of deadlines: when, and a number that tells equal times apart.
using DeadlineKey = std::pair<TimePoint, std::uint64_t>;

/// Why there is no answer.
enum class Failure
{
    dropped,
    late,
};

/// What is thrown for it: one exception of each kind for the whole process, so that ending a request takes no memory.
/// The first call needs some.
inline const std::exception_ptr& exceptionOf(Failure failure)
{
    // Never destroyed: an object that lives until the end of the process may drop requests after that of statics.
    static const auto& dropped =
        *new std::exception_ptr(std::make_exception_ptr(std::future_error(std::future_errc::broken_promise)));
    static const auto& late = *new std::exception_ptr(std::make_exception_ptr(TimedOut()));
    return failure == Failure::late ? late : dropped;
}

/// How one request ends: once, by whoever comes first.
class Ending : public std::enable_shared_from_this<Ending>
{
public:
    /// What may be thrown later is made now, when a request can still be refused for want of memory.
    Ending() { exceptionOf(Failure::dropped); }
    Ending(const Ending&) = delete;
    Ending& operator=(const Ending&) = delete;
    inline virtual ~Ending();

    /// Nothing, when it has ended already.
    void fail(Failure failure)
    {
        if (isFirst())
            tellFailure(failure);
    }

    /// To be called before the request is made: afterwards it may end at any time.
    inline void limit(const std::shared_ptr<Clock>& clock, Duration limit);

protected:
    /// True for the first caller only, who then tells the outcome.
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

#include "Clock.h"  // which has the ends of the functions above, and needs the class
