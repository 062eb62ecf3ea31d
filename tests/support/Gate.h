#pragma once

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>

namespace support {

/// Holds a thread until the test lets it go, at the latest when the gate is destroyed.
class Gate
{
public:
    Gate() = default;
    Gate(Gate&&) = default;
    Gate& operator=(Gate&&) = delete;
    ~Gate()
    {
        if (m_state)
            open();
    }

    /// The function that the held thread calls. It keeps no reference to the gate.
    auto holder() const
    {
        return [state = m_state] {
            std::unique_lock<std::mutex> lock(state->mutex);
            state->entered = true;
            state->changed.notify_all();
            state->changed.wait(lock, [&] { return state->open; });
        };
    }

    /// Waits until a thread is held; false when 30 seconds passed first.
    bool waitUntilEntered() const
    {
        std::unique_lock<std::mutex> lock(m_state->mutex);
        return m_state->changed.wait_for(lock, std::chrono::seconds(30), [this] { return m_state->entered; });
    }

    void open() const
    {
        const std::lock_guard<std::mutex> lock(m_state->mutex);
        m_state->open = true;
        m_state->changed.notify_all();
    }

private:
    struct State
    {
        std::mutex mutex;
        std::condition_variable changed;
        bool entered = false;
        bool open = false;
    };
    std::shared_ptr<State> m_state = std::make_shared<State>();
};

}  // namespace support
