#pragma once

// The clock that ends requests when they are late. Part of kelarc/async.h.

#include "Ending.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace kelarc::async::detail {

/// The time `limit` from now; at most the end of the clock's range.
inline TimePoint endOf(std::chrono::milliseconds limit)
{
    const TimePoint now = std::chrono::steady_clock::now();
    if (limit >= std::chrono::duration_cast<std::chrono::milliseconds>(TimePoint::max() - now))
        return TimePoint::max();
    return now + std::max(limit, std::chrono::milliseconds(0));
}

/// The longest single wait for `end`: keeps the system's deadlines inside a 32-bit time_t.
inline Duration untilEnd(TimePoint end)
{
    return std::min<Duration>(std::chrono::hours(24), end - std::chrono::steady_clock::now());
}

/// Shared by a Timer and the requests that it limits. The thread belongs to the timer.
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
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_deadlines.erase(key);
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

    /// Runs on the thread. Work posted before stop() still runs.
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
    /// The first late request that has not ended otherwise. Needs the lock, and a clock that is not stopping: once it
    /// stops, no request becomes late any more.
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
        m_changed.wait_for(lock, untilEnd(m_deadlines.empty() ? TimePoint::max() : m_deadlines.begin()->first.first));
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

/// A request that could not be made has not ended; its limit is removed here.
Ending::~Ending()
{
    if (m_clock && !m_ended)
        m_clock->remove(m_key);
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

}  // namespace kelarc::async::detail
