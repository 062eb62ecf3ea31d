#pragma once

// Futures, and in C++20 awaitables, for the operations of kelarc::KelArc. Header only: the code is compiled into the
// application, on top of the public class.

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
/// - **Answered**: the value holds the callback's arguments. One argument is plain, several are a std::tuple in the
///   callback's order, the result code first. A failure of the modem is an answer like any other; it is not thrown.
/// - **Dropped**: the library let go of the request without an answer. Then std::future_error with
///   std::future_errc::broken_promise is thrown instead of the value. This happens at once, before the call returns, if
///   the queue is full or the operation does nothing (open() of an object that is open or active, close() of a closed
///   one, a satellite system that does not exist); on the worker thread, when the task of a cancelled LSTA query ends;
///   and on the destroying thread for requests that still wait when the object is destroyed. If only the first of the
///   two tasks of open() found room in the queue, the request ends when that task has ended.
/// - **Late**: the given limit has passed. Then TimedOut is thrown. See Timer.
///
/// The compiler refuses two operations with a message: setNotificationCB(), which never answers, and
/// setLstaGnssStatus(), which answers failures only: its success looks like a drop. Use their callbacks.
///
/// Requests cannot be taken back: a request that is late, or whose future is discarded, stays in the queue and runs
/// when its turn comes. So do not repeat a late request: each repetition takes another place in the queue (open() two),
/// and with 128 waiting the queue drops everything, close() included. Make the request without a limit, keep its future
/// and wait for it again; for open() there is Opening. A callback, or a coroutine resumed on the worker, must not wait
/// there for another request: it would wait for itself.
namespace kelarc::async {

/// Ends requests that are late, with one thread for any number of them:
///
///     kelarc::async::Timer timer;
///     auto opened = kelarc::async::request(modem, timer.within(std::chrono::seconds(5)), &kelarc::KelArc::open);
///     opened.get();  // throws TimedOut when there was no answer within 5 s
///
/// A coroutine that awaits with a limit always resumes on this timer's thread, however its request ended. There, unlike
/// on the library's worker, it may wait for other requests, and may destroy the object. Its work there delays the other
/// deadlines.
///
/// Its thread takes no signal of the process, so that no handler of the application's runs there.
///
/// Construct the timer before the object, so that it is destroyed after the object. Its destructor resumes the
/// coroutines that are due, then ends the thread. Limits that have not passed by then have no effect, and a coroutine
/// whose request ends later resumes where the request ends. A timer must not be destroyed on its own thread: it would
/// wait for itself.
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
/// Exceptions of the operation are thrown here. The future's destructor does not wait; the outcome of a discarded
/// future is discarded.
template <typename... Parameters, typename... Arguments>
auto request(KelArc& modem, void (KelArc::*operation)(Parameters...), Arguments&&... arguments)
{
    return detail::requestWithin(nullptr, modem, operation, std::forward<Arguments>(arguments)...);
}

/// The same with a limit on the time until the answer, including the time in the queue.
template <typename... Parameters, typename... Arguments>
auto request(KelArc& modem, const Timer::Limit& limit, void (KelArc::*operation)(Parameters...),
             Arguments&&... arguments)
{
    return detail::requestWithin(&limit, modem, operation, std::forward<Arguments>(arguments)...);
}

#ifdef __cpp_impl_coroutine

/// The request as an awaitable, to be awaited once; co_await makes the request, not this call. C++20 only.
///
///     const auto [code, elevation] = co_await kelarc::async::answer(modem, &kelarc::KelArc::getMinElevation);
///
/// The coroutine resumes where its request ended: after an answer on the library's worker thread. There the rules for
/// callbacks apply up to its next suspension: it delays every other request, must not wait for one, must not destroy
/// the object, and must not let an exception out through a promise that rethrows. After an immediate end it continues
/// at once, without having been suspended.
///
/// A coroutine that still waits when the object is destroyed resumes inside the destructor, on the destroying thread
/// and with no lock held. std::future_error is thrown into it: it may end, but must not use the object any more. A
/// coroutine that would try again for ever must be told that the object is being destroyed.
///
/// A suspended coroutine must not be destroyed: the request would resume it.
///
/// Opening cannot be awaited: it blocks the waiting thread. Instead, a coroutine awaits open() once and without a
/// limit: then there is only one request, and the coroutine resumes when the object is open. Use another coroutine or
/// thread for work in the meantime.
template <typename... Parameters, typename... Arguments>
[[nodiscard]] auto answer(KelArc& modem, void (KelArc::*operation)(Parameters...), Arguments&&... arguments)
{
    static_assert(detail::OperationOf<Parameters...>::template Checked<sizeof...(Arguments)>::value);
    return detail::Awaitable<Parameters...>(modem, std::nullopt, operation, {std::forward<Arguments>(arguments)...});
}

/// The same with a limit. The coroutine always resumes on the timer's thread, also after an immediate end and after the
/// object's destruction: see Timer.
template <typename... Parameters, typename... Arguments>
[[nodiscard]] auto answer(KelArc& modem, const Timer::Limit& limit, void (KelArc::*operation)(Parameters...),
                          Arguments&&... arguments)
{
    static_assert(detail::OperationOf<Parameters...>::template Checked<sizeof...(Arguments)>::value);
    return detail::Awaitable<Parameters...>(modem, limit, operation, {std::forward<Arguments>(arguments)...});
}

#endif

}  // namespace kelarc::async
