// The machine's limits: without a queue, and with the simplest queue.

#include "peers/Peer.h"

#include <array>
#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <linux/futex.h>
#include <mutex>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

namespace bench {
namespace {

class ConditionVariable : public Peer
{
public:
    ConditionVariable() : m_worker([this] { run(); }) {}
    ~ConditionVariable() override
    {
        post([](void* self) { static_cast<ConditionVariable*>(self)->m_isEnding = true; }, this);
        m_worker.join();
    }

    void post(Work work, void* argument) override
    {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_work = work;
            m_argument = argument;
        }
        m_condition.notify_one();
    }

private:
    void run()
    {
        while (!m_isEnding) {
            std::unique_lock<std::mutex> lock(m_mutex);
            while (m_work == nullptr)
                m_condition.wait(lock);
            const Work work = m_work;
            m_work = nullptr;
            lock.unlock();
            work(m_argument);
        }
    }

    std::mutex m_mutex;
    std::condition_variable m_condition;
    Work m_work = nullptr;
    void* m_argument = nullptr;
    bool m_isEnding = false;
    std::thread m_worker;
};

class Futex : public Peer
{
public:
    Futex() : m_worker([this] { run(); }) {}
    ~Futex() override
    {
        post([](void* self) { static_cast<Futex*>(self)->m_isEnding = true; }, this);
        m_worker.join();
    }

    void post(Work work, void* argument) override
    {
        m_work = work;
        m_argument = argument;
        m_isFull.store(1, std::memory_order_release);
        syscall(SYS_futex, &m_isFull, FUTEX_WAKE_PRIVATE, 1, nullptr, nullptr, 0);
    }

private:
    void run()
    {
        while (!m_isEnding) {
            while (m_isFull.load(std::memory_order_acquire) == 0)
                syscall(SYS_futex, &m_isFull, FUTEX_WAIT_PRIVATE, 0, nullptr, nullptr, 0);
            m_isFull.store(0, std::memory_order_relaxed);
            m_work(m_argument);
        }
    }

    std::atomic<std::uint32_t> m_isFull{0};
    Work m_work = nullptr;
    void* m_argument = nullptr;
    bool m_isEnding = false;
    std::thread m_worker;
};

class Ring : public Peer
{
public:
    Ring() : m_worker([this] { run(); }) {}
    ~Ring() override
    {
        post([](void* self) { static_cast<Ring*>(self)->m_isEnding = true; }, this);
        m_worker.join();
    }

    void post(Work work, void* argument) override
    {
        bool wasEmpty;
        {
            std::unique_lock<std::mutex> lock(m_mutex);
            while (m_count == kSize)
                m_hasRoom.wait(lock);
            m_entries[(m_head + m_count) % kSize] = {work, argument};
            wasEmpty = m_count++ == 0;
        }
        if (wasEmpty)
            m_hasWork.notify_one();
    }

private:
    static constexpr std::size_t kSize = 128;
    struct Entry
    {
        Work work;
        void* argument;
    };

    void run()
    {
        while (!m_isEnding) {
            std::unique_lock<std::mutex> lock(m_mutex);
            while (m_count == 0)
                m_hasWork.wait(lock);
            const Entry entry = m_entries[m_head];
            m_head = (m_head + 1) % kSize;
            const bool wasFull = m_count-- == kSize;
            lock.unlock();
            if (wasFull)
                m_hasRoom.notify_one();
            entry.work(entry.argument);
        }
    }

    std::mutex m_mutex;
    std::condition_variable m_hasWork;
    std::condition_variable m_hasRoom;
    std::array<Entry, kSize> m_entries{};
    std::size_t m_head = 0;
    std::size_t m_count = 0;
    bool m_isEnding = false;
    std::thread m_worker;
};

}  // namespace

std::unique_ptr<Peer> makeConditionVariable()
{
    return std::make_unique<ConditionVariable>();
}

std::unique_ptr<Peer> makeFutex()
{
    return std::make_unique<Futex>();
}

std::unique_ptr<Peer> makeRing()
{
    return std::make_unique<Ring>();
}

}  // namespace bench
