#pragma once

// Futures, and in C++20 awaitables, for the operations of kelarc::KelArc. Header only: what is here is compiled into
// the application, on top of the public class.

#ifndef __cpp_exceptions
#error "kelarc/async.h tells of dropped and late requests by exceptions: compile with -fexceptions, or use callbacks"
#endif

#include "KelArc.h"
#include "async/Clock.h"
#include "async/Coroutine.h"
#include "async/Ending.h"
#include "async/Future.h"
#include "async/Opening.h"
#include "async/Operation.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <thread>
#include <utility>

/// Requests as futures and awaitables instead of callbacks.
///
///     std::future<int> opened = kelarc::async::request(modem, &kelarc::KelArc::open);
///     if (opened.get() == 0) {
///         const auto [code, elevation] = kelarc::async::request(modem, &kelarc::KelArc::getMinElevation).get();
///         ...
///
/// A request ends exactly once, in one of three ways:
///
/// - **Answered**: the value is what the callback would have received. One argument is plain, several are a std::tuple
///   in the callback's order, the result code first. A failure of the modem is an answer like any other; it is not
///   thrown.
/// - **Dropped**: the library let go of the request without an answer. Then std::future_error with
///   std::future_errc::broken_promise is thrown where the value would have been. That is so at once, before the call
///   returns, where the queue is full or where the operation does nothing (open() of an object that is open or active,
///   close() of a closed one, a satellite system that does not exist); on the worker thread, when the task of a
///   cancelled LSTA query ends; and on the destroying thread for what still waits when the object is destroyed. An
///   open() of which only the first of its two tasks found room ends when that task has ended.
/// - **Late**: the limit that was given has passed. Then TimedOut is thrown. See Timer.
///
/// Two operations cannot be asked for, which the compiler says in words: setNotificationCB(), which never answers, and
/// setLstaGnssStatus(), which answers failures only: its success looks like being dropped. Use their callbacks.
///
/// As ever, nothing takes a request back: one whose future is thrown away, or that is late, stays in the queue and is
/// done when its turn comes. So do not ask anew for what is late: each time it would be in the queue once more (open()
/// twice), and with 128 in it the queue drops everything, close() included. Keep the future of a request without a
/// limit and wait for it again; for open() there is Opening. And as ever, a callback, a coroutine resumed on the worker
/// included, must not wait there for another request: it would wait for itself.
namespace kelarc::async {

/// Ends requests that are late, with one thread for any number of them:
///
///     kelarc::async::Timer timer;
///     auto opened = kelarc::async::request(modem, timer.within(std::chrono::seconds(5)), &kelarc::KelArc::open);
///     opened.get();  // throws TimedOut when there was no answer within 5 s
///
/// A coroutine that awaits with a limit always goes on on this timer's thread, however its request ended: there, unlike
/// on the library's worker, it may wait for other requests, and may let go of the object. What it does there delays the
/// other deadlines.
///
/// Its thread takes no signal of the process, so that no handler of the application's runs there.
///
/// Construct it before the object, so that it is destroyed after it. Its destructor runs the coroutines that are to go
/// on, then ends the thread; limits that have not passed yet are void from then on, and a coroutine whose request ends
/// later goes on where it ends. A timer must not be destroyed on its own thread: it would wait for itself.
class Timer
{
public:
    using Limit = detail::Limit;

    /// Throws std::system_error when no thread can be started.
    Timer() : m_thread(started(m_clock)) {}
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;
    ~Timer()
    {
        m_clock->stop();
        m_thread.join();
    }

    /// A limit for one request or for many: each has `duration` from the moment it is made. Zero and less: late at
    /// once, unless it ends before the timer's thread comes to it.
    Limit within(std::chrono::milliseconds duration) const
    {
        constexpr auto longest = std::chrono::duration_cast<std::chrono::milliseconds>(detail::Duration::max());
        constexpr auto shortest = std::chrono::duration_cast<std::chrono::milliseconds>(detail::Duration::min());
        return {m_clock, std::max(shortest, std::min(duration, longest))};
    }

    /// How many requests have a limit that may still pass.
    std::size_t pending() const { return m_clock->pending(); }

private:
    static std::thread started(std::shared_ptr<detail::Clock> clock)
    {
        const ::thread::SignalsBlocked inherited;
        return std::thread([clock = std::move(clock)] { clock->run(); });
    }

    std::shared_ptr<detail::Clock> m_clock = std::make_shared<detail::Clock>();
    std::thread m_thread;  ///< last: it uses the clock
};

/// Makes a request and answers its std::future. `arguments` are the operation's, all but its callback.
///
/// What the operation throws is thrown here. The future's destructor does not wait; the outcome of a future that was
/// thrown away is thrown away.
template <typename... Parameters, typename... Arguments>
auto request(KelArc& modem, void (KelArc::*operation)(Parameters...), Arguments&&... arguments)
{
    return detail::requestWithin(nullptr, modem, operation, std::forward<Arguments>(arguments)...);
}

/// The same with a limit on the time until the answer, waiting in the queue included.
template <typename... Parameters, typename... Arguments>
auto request(KelArc& modem, const Timer::Limit& limit, void (KelArc::*operation)(Parameters...),
             Arguments&&... arguments)
{
    return detail::requestWithin(&limit, modem, operation, std::forward<Arguments>(arguments)...);
}

#ifdef __cpp_impl_coroutine

/// The request as something to co_await, once; it is made then, not before. C++20 only.
///
///     const auto [code, elevation] = co_await kelarc::async::answer(modem, &kelarc::KelArc::getMinElevation);
///
/// The coroutine goes on where its request ended: after an answer on the library's worker thread, where all that holds
/// for callbacks holds for it up to its next suspension (it delays every other request, must not wait for one, must not
/// destroy the object, and must not let an exception out through a promise that rethrows). After an immediate end it
/// goes on at once, without having been suspended.
///
/// A coroutine that still waits when the object is destroyed goes on inside the destructor, on the destroying thread
/// and with no lock held, with std::future_error thrown into it: it may end, but must not use the object any more. One
/// that would try again for ever must be told that the object is going.
///
/// A suspended coroutine must not be destroyed: the request would resume it.
///
/// There is no Opening to await, which blocks the thread that waits. A coroutine that is to wait for open() again and
/// again awaits it once and without a limit: then nothing is asked for twice, and it goes on when the object is open.
/// What is to happen while it waits is another coroutine's affair, or another thread's.
template <typename... Parameters, typename... Arguments>
[[nodiscard]] auto answer(KelArc& modem, void (KelArc::*operation)(Parameters...), Arguments&&... arguments)
{
    static_assert(detail::OperationOf<Parameters...>::template Checked<sizeof...(Arguments)>::value);
    return detail::Awaitable<Parameters...>(modem, std::nullopt, operation, {std::forward<Arguments>(arguments)...});
}

/// The same with a limit. The coroutine always goes on on the timer's thread, after an immediate end, too, and after
/// the object's destruction: see Timer.
template <typename... Parameters, typename... Arguments>
[[nodiscard]] auto answer(KelArc& modem, const Timer::Limit& limit, void (KelArc::*operation)(Parameters...),
                          Arguments&&... arguments)
{
    static_assert(detail::OperationOf<Parameters...>::template Checked<sizeof...(Arguments)>::value);
    return detail::Awaitable<Parameters...>(modem, limit, operation, {std::forward<Arguments>(arguments)...});
}

#endif

}  // namespace kelarc::async
