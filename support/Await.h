#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <tuple>
#include <type_traits>

namespace support {

/// Waits for the one answer of an asynchronous request:
///
///     Await<int> answer;
///     modem.open(answer.callback());
///     if (!answer.wait(std::chrono::seconds(5))) ...   // the answer did not come in time
///     const auto [code] = answer.values();
///
/// The callback may outlive the object: a late answer is then dropped. A second answer replaces the first; count()
/// tells how many have come.
template <typename... Values>
class Await
{
public:
    /// A callback to pass to the request. May be called several times; all callbacks answer here.
    std::function<void(Values...)> callback()
    {
        return [state = m_state](Values... values) {
            const std::lock_guard<std::mutex> lock(state->mutex);
            state->values.emplace(std::forward<Values>(values)...);
            ++state->count;
            state->changed.notify_all();
        };
    }

    /// True when an answer has come before `limit` has passed.
    bool wait(std::chrono::milliseconds limit) const
    {
        std::unique_lock<std::mutex> lock(m_state->mutex);
        return m_state->changed.wait_for(lock, limit, [this] { return m_state->values.has_value(); });
    }

    /// The last answer. Throws std::bad_optional_access when none has come.
    std::tuple<std::decay_t<Values>...> values() const
    {
        const std::lock_guard<std::mutex> lock(m_state->mutex);
        return m_state->values.value();
    }

    /// How many answers have come.
    unsigned count() const
    {
        const std::lock_guard<std::mutex> lock(m_state->mutex);
        return m_state->count;
    }

private:
    struct State
    {
        std::mutex mutex;
        std::condition_variable changed;
        std::optional<std::tuple<std::decay_t<Values>...>> values;
        unsigned count = 0;
    };
    std::shared_ptr<State> m_state = std::make_shared<State>();
};

}  // namespace support
