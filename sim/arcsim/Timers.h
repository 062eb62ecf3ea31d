#pragma once

#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <utility>

namespace arcsim {

/// Actions that run later, each once. A cancelled action, or one whose Timers object is gone, never runs, even if its
/// time has come. A timer whose handler is already queued cannot be cancelled, so the handler holds a number and looks
/// the action up.
class Timers
{
public:
    using Clock = std::chrono::steady_clock;
    using Number = std::uint64_t;  ///< from 1, never used twice

    explicit Timers(asio::io_context& context) : m_context(context) {}

    Number at(Clock::time_point time, std::function<void()> action)
    {
        const Number number = ++m_lastNumber;
        auto& timer = m_waiting->try_emplace(number, m_context, std::move(action)).first->second.timer;
        timer.expires_at(time);
        timer.async_wait([waiting = std::weak_ptr(m_waiting), number](const asio::error_code&) {
            const auto still = waiting.lock();
            if (const auto due = still ? still->extract(number) : Waiting::node_type(); !due.empty())
                due.mapped().action();
        });
        return number;
    }
    Number after(Clock::duration delay, std::function<void()> action)
    {
        return at(Clock::now() + delay, std::move(action));
    }

    /// Does nothing if the action has run or was cancelled.
    void cancel(Number number) { m_waiting->erase(number); }
    std::size_t waiting() const { return m_waiting->size(); }

private:
    struct Entry
    {
        Entry(asio::io_context& context, std::function<void()> what) : timer(context), action(std::move(what)) {}
        asio::steady_timer timer;
        std::function<void()> action;
    };
    using Waiting = std::map<Number, Entry>;

    asio::io_context& m_context;
    Number m_lastNumber = 0;
    const std::shared_ptr<Waiting> m_waiting = std::make_shared<Waiting>();
};

}  // namespace arcsim
