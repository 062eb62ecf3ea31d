#pragma once

#include "task/TaskQueue.h"
#include "unit/Interposed.h"

#include <condition_variable>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace unit {

using namespace std::chrono_literals;
using task::ExecutionReason;
using Queue = task::TaskQueue<128, task::TaskContainer>;

constexpr auto kLimit = 30s;

/// Waits, with a generous limit, for something that happens on another thread.
template <typename Condition>
bool eventually(Condition condition)
{
    for (int turn = 0; turn < 3'000'000; ++turn) {
        if (condition())
            return true;
        sched_yield();
        if (turn > 1000) {
            timespec pause{0, 100'000};
            clock_nanosleep(CLOCK_MONOTONIC, 0, &pause, nullptr);
        }
        if (turn > 300'000)
            break;
    }
    return condition();
}

/// A door that a body waits at until the test opens it.
class Gate
{
public:
    void open()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_open = true;
        m_changed.notify_all();
    }
    void pass()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_reached = true;
        m_changed.notify_all();
        m_changed.wait(lock, [this] { return m_open; });
    }
    bool awaitReached()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        return m_changed.wait_for(lock, kLimit, [this] { return m_reached; });
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_open = false;
    bool m_reached = false;
};

/// A queue whose first task can be held in its body, so that what is added after it waits.
class QueueTest : public testing::Test
{
protected:
    ~QueueTest() override
    {
        interposed::onWait({});
        interposed::onNotify({});
        interposed::onLock(nullptr, {});
        interposed::onUnlock(nullptr, {});
        // First the order to stop, then the way free: what still waits must not run, it may refer to the test's locals.
        std::thread stopper([this] { queue.stop(); });
        eventually([this] { return !queue.running; });
        gate.open();
        stopper.join();
    }

    std::uint32_t add(const std::string& name, std::chrono::milliseconds delay = 0ms)
    {
        return queue.addTask(
            std::string(name), [this, name](ExecutionReason reason) { record(name, reason); }, delay);
    }

    /// Adds a task that stays in its body until the gate is opened, and waits for it to be there.
    void holdWorker()
    {
        queue.addTask(
            "held", [this](ExecutionReason) { gate.pass(); }, 0ms);
        ASSERT_TRUE(gate.awaitReached());
    }

    void record(const std::string& name, ExecutionReason reason)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_runs.push_back(name);
        m_reasons.push_back(static_cast<int>(reason));
    }
    std::vector<std::string> runs()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_runs;
    }
    std::vector<int> reasons()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_reasons;
    }
    bool awaitRuns(std::size_t count)
    {
        return eventually([&] { return runs().size() >= count; });
    }

    /// Names of the waiting tasks, front to back.
    std::vector<std::string> waiting()
    {
        const std::lock_guard<std::mutex> lock(queue.mutex);
        std::vector<std::string> names;
        for (const task::TaskContainer& record : queue.tasks)
            names.push_back(record.name);
        return names;
    }

private:
    std::mutex m_mutex;
    std::vector<std::string> m_runs;
    std::vector<int> m_reasons;

protected:
    Gate gate;
    Queue queue{"Task Queue"};  // last: its worker uses the others
};

/// Tells when, in which order and where it is destroyed.
struct Tombstone
{
    Tombstone(std::string label, std::function<void(const std::string&)> onDeath)
        : name(std::move(label)), tell(std::move(onDeath))
    {
    }
    ~Tombstone() { tell(name); }
    Tombstone(const Tombstone&) = delete;
    Tombstone& operator=(const Tombstone&) = delete;
    std::string name;
    std::function<void(const std::string&)> tell;
};

}  // namespace unit
