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

/// A descriptor that is readable after wake(). Shared with callbacks, which may run late.
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

/// Runs a command's requests to the library, one after the other, each with a time limit. Main thread only.
class Session
{
public:
    using Clock = std::chrono::steady_clock;

    /// All waits together end `timeout` from now.
    Session(kelarc::KelArc& modem, const support::Interrupt& interrupt, Log& log, std::chrono::milliseconds timeout);

    kelarc::KelArc& modem() { return m_modem; }

    /// Throws Failure when the modem refuses or does not answer in time, or when the user interrupts.
    void open();
    /// The outcome of closing. Only after `done` can the library object be destroyed; otherwise the destructor waits
    /// for the running request.
    enum class Closing
    {
        done,
        unneeded,  ///< the modem keeps refusing to open: nothing is open, but the request goes on
        late,      ///< a call has not returned, or has been refused, for longestClose()
    };
    /// Closes the modem. First waits for an opening that is under way, since it cannot be cancelled.
    Closing close();
    /// The longest that close() takes.
    static std::chrono::milliseconds longestClose();

    /// Makes a request with `start`, which receives the callback, and waits for the answer. Throws Failure if no answer
    /// comes in time; the message names the request by `what`.
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

    /// Waits until all requests are done. For requests that are not answered on success; `what` names them.
    void settle(const std::string& what);
    /// Gives the following requests a separate time limit that the first Ctrl-C does not end: for restoring settings.
    void beginGrace(std::chrono::milliseconds time);
    /// Called on each request and every 100 ms during a wait.
    void observe(std::function<void()> observer) { m_observer = std::move(observer); }

    /// Throws Failure with the modem's answer and its count unless the code is 0; `what` names the request.
    void require(int code, const std::string& what) const;
    /// The exception of require() for a code that is not 0.
    Trouble refusal(int code, const std::string& what) const;
    /// What delays the running request, which has taken `since` so far.
    Trouble hindrance(const std::string& what, Clock::duration since) const;
    /// Suppresses messages on standard error during waits.
    void beQuiet() { m_isQuiet = true; }
    bool isInterrupted() const { return m_interrupt.isRequested(); }

    /// Waits until the bell rings or `until` has come. False at that time; throws Failure when the user interrupts.
    bool wait(const Bell& bell, Clock::time_point until, const std::string& what)
    {
        return waitFor(bell.descriptor(), until, what);
    }
    /// The same until a descriptor is readable.
    bool waitFor(int descriptor, Clock::time_point until, const std::string& what);
    /// Sets a limit for the following waits: `limit` from now, but never beyond the command's own limit.
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
    const std::shared_ptr<Bell> m_closed = std::make_shared<Bell>();  ///< first, since an open modem must be closed
    bool m_isInGrace = false;
    bool m_isQuiet = false;
    std::function<void()> m_observer;
};

}  // namespace kelarcctl
