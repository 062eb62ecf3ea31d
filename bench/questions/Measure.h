#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <vector>

namespace bench {

inline std::int64_t nowNs()
{
    return std::chrono::steady_clock::now().time_since_epoch().count();
}

/// While it lives, the calling thread and the threads that it starts stay on one processor.
class OneProcessor
{
public:
    OneProcessor();
    ~OneProcessor();
    OneProcessor(const OneProcessor&) = delete;
    OneProcessor& operator=(const OneProcessor&) = delete;
};

/// The caller sleeps on this until the worker has answered; the same for every peer.
class Reply
{
public:
    void give()
    {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_isGiven = true;
        }
        m_condition.notify_one();
    }
    void await()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        while (!m_isGiven)
            m_condition.wait(lock);
        m_isGiven = false;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_condition;
    bool m_isGiven = false;
};

/// Processor time of all threads of this process.
std::int64_t processorNs();

/// p50, p99 and p99.9 in microseconds.
std::vector<double> percentilesUs(const std::vector<double>& durationsNs);

}  // namespace bench
