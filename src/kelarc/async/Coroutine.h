#pragma once

// Requests as awaitables. Part of kelarc/async.h; empty for a compiler without coroutines.

#ifdef __cpp_impl_coroutine

#include "../KelArc.h"
#include "Clock.h"
#include "Ending.h"
#include "Operation.h"

#include <atomic>
#include <coroutine>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <thread>
#include <tuple>
#include <utility>

namespace kelarc::async::detail {

/// Ends by resuming a coroutine.
template <typename Value>
class CoroutineEnding : public Ending
{
public:
    void answer(Value&& value)
    {
        if (!isFirst())
            return;
        m_value.emplace(std::move(value));
        goOn();
    }

    /// To be called before the request is made, on the thread that makes it.
    void willResume(std::coroutine_handle<> coroutine)
    {
        m_coroutine = coroutine;
        m_requester = std::this_thread::get_id();
    }

    /// To be called when the request has been made. False: it ended while it was made, and nobody will resume.
    bool suspend()
    {
        Progress requested = Progress::requested;
        if (!m_progress.compare_exchange_strong(requested, Progress::suspended))
            return clock() && postResumption();
        m_progress.notify_one();
        return true;
    }

    /// To be called instead when making the request threw.
    void abandon()
    {
        m_progress = Progress::abandoned;
        m_progress.notify_one();
    }

    Value take()
    {
        if (!m_value)
            std::rethrow_exception(exceptionOf(m_failure));
        return std::move(*m_value);
    }

private:
    enum class Progress : int
    {
        requested,
        suspended,
        endedAtOnce,
        abandoned,
    };

    void tellFailure(Failure failure) override
    {
        m_failure = failure;
        goOn();
    }

    /// Resumes the coroutine, but only after the operation has returned, because the coroutine may destroy the object.
    /// An end that comes earlier waits a moment until the other thread has left the operation.
    void goOn()
    {
        if (m_progress == Progress::requested && m_requester == std::this_thread::get_id()) {
            m_progress = Progress::endedAtOnce;
            return;
        }
        m_progress.wait(Progress::requested);
        if (m_progress == Progress::abandoned)
            return;
        if (!clock() || !postResumption())
            m_coroutine.resume();
    }

    bool postResumption()
    {
        return clock()->post([coroutine = m_coroutine] { coroutine.resume(); });
    }

    std::atomic<Progress> m_progress{Progress::requested};
    std::coroutine_handle<> m_coroutine;  ///< constant once the request is made, like the next
    std::thread::id m_requester;
    std::optional<Value> m_value;  ///< the one end writes this or the next; read after it
    Failure m_failure = Failure::dropped;
};

template <typename... Parameters>
class Awaitable
{
    using Operation = OperationOf<Parameters...>;
    using Value = typename Operation::Value;
    using Arguments = typename Operation::Arguments;

public:
    Awaitable(KelArc& modem, std::optional<Limit> limit, void (KelArc::*operation)(Parameters...),
              Arguments&& arguments)
        : m_modem(&modem), m_limit(std::move(limit)), m_operation(operation), m_arguments(std::move(arguments))
    {
    }
    Awaitable(const Awaitable&) = delete;
    Awaitable& operator=(const Awaitable&) = delete;

    bool await_ready() const { return false; }

    bool await_suspend(std::coroutine_handle<> coroutine)
    {
        // A local copy: once the request is made, the coroutine and everything in it may be gone.
        const std::shared_ptr<CoroutineEnding<Value>> ending = m_ending;
        ending->willResume(coroutine);
        try {
            if (m_limit)
                ending->limit(m_limit->clock, m_limit->duration);
            std::apply(
                [&](auto&... arguments) {
                    (m_modem->*m_operation)(std::move(arguments)..., Operation::Callback::make(ending));
                },
                m_arguments);
        } catch (...) {
            ending->abandon();
            throw;
        }
        return ending->suspend();
    }

    Value await_resume() { return m_ending->take(); }

private:
    KelArc* m_modem;
    std::optional<Limit> m_limit;
    void (KelArc::*m_operation)(Parameters...);
    Arguments m_arguments;
    std::shared_ptr<CoroutineEnding<Value>> m_ending = std::make_shared<CoroutineEnding<Value>>();
};

}  // namespace kelarc::async::detail

#endif
