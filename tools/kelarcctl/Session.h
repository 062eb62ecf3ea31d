#pragma once

#include "kelarcctl/Log.h"
#include "kelarcctl/Trouble.h"

#include "kelarc/KelArc.h"

#include "support/Failure.h"
#include "support/Interrupt.h"

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>

namespace kelarcctl {

using support::Failure;

/// A descriptor that is readable from wake() on. Shared with callbacks, which may come late.
class Bell
{
public:
    Bell();
    ~Bell();
    Bell(const Bell&) = delete;
    Bell& operator=(const Bell&) = delete;

    void wake();
    void quiet();
    int descriptor() const { return m_descriptor; }

private:
    const int m_descriptor;
};

/// The library as a command uses it: one request after the other, each with an end. Main thread only.
class Session
{
public:
    using Clock = std::chrono::steady_clock;

    /// Nothing is waited for longer than `timeout` from now.
    Session(kelarc::KelArc& modem, const support::Interrupt& interrupt, Log& log, std::chrono::milliseconds timeout);

    kelarc::KelArc& modem() { return m_modem; }

    /// Throws Failure when the modem refuses, does not answer in time, or the user does not want to wait any more.
    void open();
    /// How a closing has ended. The library can be destroyed after `done` only: otherwise it waits for what runs.
    enum class Closing
    {
        done,
        unneeded,  ///< the modem refuses to open, over and over: nothing is open, but the request goes on
        late,      ///< a call has not come back, or is refused, for longestClose()
    };
    /// Closes the modem. An opening that is under way is waited for first, since it cannot be taken back.
    Closing close();
    /// The longest that close() takes.
    static std::chrono::milliseconds longestClose();

    /// Makes a request with `start`, which is handed the callback, and waits for the answer. Throws Failure when there
    /// is none in time; `what` names the request then.
    template <typename... Values, typename Start>
    std::tuple<std::decay_t<Values>...> ask(const std::string& what, const Start& start)
    {
        struct Answer
        {
            Bell bell{};
            std::mutex mutex{};
            std::optional<std::tuple<std::decay_t<Values>...>> values{};
        };
        const auto answer = std::make_shared<Answer>();
        start(std::function<void(Values...)>([answer](Values... values) {
            const std::lock_guard<std::mutex> lock(answer->mutex);
            answer->values.emplace(std::forward<Values>(values)...);
            answer->bell.wake();
        }));
        await(answer->bell, what);
        const std::lock_guard<std::mutex> lock(answer->mutex);
        return *answer->values;
    }

    /// Until all that has been requested is done. For what is not answered when it succeeds; `what` names that.
    void settle(const std::string& what);
    /// Gives what follows a time of its own, which no first Ctrl-C ends: for putting things back.
    void beginGrace(std::chrono::milliseconds time);
    /// Called on each request and every 100 ms while one is waited for.
    void observe(std::function<void()> observer) { m_observer = std::move(observer); }

    /// Throws Failure, with what the modem said and how often, unless the code is 0; `what` names the request.
    void require(int code, const std::string& what) const;
    /// What require() would throw, for a code that is not 0.
    Trouble refusal(int code, const std::string& what) const;
    /// What keeps the request that runs from ending, once it has taken `since`.
    Trouble hindrance(const std::string& what, Clock::duration since) const;
    /// Says nothing on standard error while it waits.
    void beQuiet() { m_isQuiet = true; }
    bool isInterrupted() const { return m_interrupt.isRequested(); }

    /// Until the bell rings or `until` has come. False at the time; throws Failure when the user does not want to wait.
    bool wait(const Bell& bell, Clock::time_point until, const std::string& what)
    {
        return waitFor(bell.descriptor(), until, what);
    }
    /// The same until a descriptor is readable.
    bool waitFor(int descriptor, Clock::time_point until, const std::string& what);
    /// Nothing is waited for longer than `limit` from now, nor beyond the command's own end.
    void limit(std::chrono::milliseconds limit);
    Clock::time_point deadline() const { return m_deadline; }
    const support::Interrupt& interrupt() const { return m_interrupt; }

private:
    bool isRung(int descriptor, Clock::time_point until) const;
    void await(const Bell& bell, const std::string& what);
    bool isInVain() const;
    std::optional<Closing> awaitOpening(Clock::time_point until) const;

    kelarc::KelArc& m_modem;
    const support::Interrupt& m_interrupt;
    Log& m_log;
    std::chrono::milliseconds m_timeout;
    Clock::time_point m_end;
    Clock::time_point m_deadline;
    const std::shared_ptr<Bell> m_closed = std::make_shared<Bell>();  ///< made first: what was opened must be closed
    bool m_isInGrace = false;
    bool m_isQuiet = false;
    std::function<void()> m_observer;
};

}  // namespace kelarcctl
