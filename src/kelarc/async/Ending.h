#pragma once

// How requests end, and the clock that ends them when they are late. Part of kelarc/async.h.

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <future>
#include <map>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <utility>
#include <vector>

namespace kelarc::async {

/// Thrown instead of an answer that did not come within its limit.
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
    Ending() = default;
    Ending(const Ending&) = delete;
    Ending& operator=(const Ending&) = delete;
    virtual ~Ending() = default;

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

/// What a Timer and the requests that it limits share. The thread is the timer's.
class Clock
{
public:
    DeadlineKey add(TimePoint when, std::weak_ptr<Ending> ending)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        const DeadlineKey key{when, ++m_lastNumber};
        const auto place = m_deadlines.emplace(key, std::move(ending)).first;
        if (place == m_deadlines.begin())
            m_changed.notify_one();
        return key;
    }

    void remove(const DeadlineKey& key)
    {
        std::weak_ptr<Ending> removed;  // destroyed without the lock
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (const auto place = m_deadlines.find(key); place != m_deadlines.end()) {
            removed = std::move(place->second);
            m_deadlines.erase(place);
        }
    }

    /// Has the thread run `work`; false when it has ended or is about to.
    bool post(std::function<void()>&& work)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_stopping)
            return false;
        m_work.push_back(std::move(work));
        m_changed.notify_one();
        return true;
    }

    /// The thread. Whatever was posted before stop() still runs.
    void run()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        while (!m_stopping || !m_work.empty()) {
            const std::vector<std::function<void()>> work = std::exchange(m_work, {});
            std::shared_ptr<Ending> late = takeLate();
            if (work.empty() && !late) {
                waitForSomething(lock);
                continue;
            }
            lock.unlock();
            for (const std::function<void()>& each : work)
                each();
            if (late)
                late->fail(Failure::late);
            late.reset();
            lock.lock();
        }
    }

    void stop()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_stopping = true;
        m_changed.notify_one();
    }

    std::size_t pending() const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_deadlines.size();
    }

private:
    /// The first that is late and has not ended otherwise. Needs the lock, and a clock that is not stopping: afterwards
    /// no request is late any more.
    std::shared_ptr<Ending> takeLate()
    {
        std::shared_ptr<Ending> late;
        const TimePoint now = std::chrono::steady_clock::now();
        while (!m_stopping && !late && !m_deadlines.empty() && m_deadlines.begin()->first.first <= now) {
            late = m_deadlines.begin()->second.lock();
            m_deadlines.erase(m_deadlines.begin());
        }
        return late;
    }

    void waitForSomething(std::unique_lock<std::mutex>& lock)
    {
        Duration longest = std::chrono::hours(24);  // keeps the system's deadlines inside a 32-bit time_t
        if (!m_deadlines.empty())
            longest = std::min(longest, m_deadlines.begin()->first.first - std::chrono::steady_clock::now());
        m_changed.wait_for(lock, longest);
    }

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::map<DeadlineKey, std::weak_ptr<Ending>> m_deadlines;  ///< guarded by m_mutex, like all below
    std::vector<std::function<void()>> m_work;
    std::uint64_t m_lastNumber = 0;
    bool m_stopping = false;
};

void Ending::limit(const std::shared_ptr<Clock>& clock, Duration limit)
{
    const TimePoint now = std::chrono::steady_clock::now();
    m_clock = clock;
    m_key = clock->add(limit < TimePoint::max() - now ? now + limit : TimePoint::max(), weak_from_this());
}

bool Ending::isFirst()
{
    if (m_ended.exchange(true))
        return false;
    if (m_clock)
        m_clock->remove(m_key);
    return true;
}

/// A limit as Timer::within() makes it. Runs from the moment of the request.
struct Limit
{
    std::shared_ptr<Clock> clock;
    Duration duration;
};

}  // namespace detail
}  // namespace kelarc::async
