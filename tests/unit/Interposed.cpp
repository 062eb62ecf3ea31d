#include "unit/Interposed.h"

#include <cerrno>
#include <condition_variable>
#include <ctime>
#include <dlfcn.h>
#include <memory>
#include <mutex>
#include <thread>

// The order of events matters here, not speed: one small spin lock of our own guards the hooks, since the standard
// mutex is what is being observed.
namespace {

using std::chrono::nanoseconds;

class SpinLock
{
public:
    void lock()
    {
        while (m_flag.test_and_set(std::memory_order_acquire))
            sched_yield();
    }
    void unlock() { m_flag.clear(std::memory_order_release); }

private:
    std::atomic_flag m_flag = ATOMIC_FLAG_INIT;
};

SpinLock g_guard;
std::atomic<bool> g_held{false};
std::atomic<std::int64_t> g_now{0};
std::atomic<std::int64_t> g_stepOnRead{0};
std::atomic<std::uint64_t> g_reads{0};
thread_local std::uint64_t t_reads = 0;

std::atomic<bool> g_logWaits{false};
std::vector<nanoseconds> g_waits;
std::shared_ptr<std::function<void()>> g_onWait;
std::shared_ptr<std::function<void()>> g_onNotify;
std::shared_ptr<std::function<void()>> g_onLock;
std::shared_ptr<std::function<void()>> g_onUnlock;
std::atomic<pthread_mutex_t*> g_lockObserved{nullptr};
std::atomic<pthread_mutex_t*> g_unlockObserved{nullptr};
std::vector<std::pair<pthread_t, std::string>> g_names;
std::atomic<bool> g_refuseThreads{false};

std::int64_t realNow()
{
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

void run(std::shared_ptr<std::function<void()>>& slot)
{
    g_guard.lock();
    const auto hook = slot;
    g_guard.unlock();
    if (hook && *hook)
        (*hook)();
}

void replace(std::shared_ptr<std::function<void()>>& slot, std::function<void()> hook)
{
    auto next = std::make_shared<std::function<void()>>(std::move(hook));
    g_guard.lock();
    slot.swap(next);
    g_guard.unlock();
}

template <typename Function>
Function original(const char* name)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

}  // namespace

std::chrono::steady_clock::time_point std::chrono::steady_clock::now() noexcept
{
    ++t_reads;
    ++g_reads;
    if (!g_held)
        return time_point(nanoseconds(realNow()));
    return time_point(nanoseconds(g_now.fetch_add(g_stepOnRead)));
}

void std::condition_variable::notify_one() noexcept
{
    run(g_onNotify);
    pthread_cond_signal(native_handle());
}

extern "C" int pthread_cond_clockwait(pthread_cond_t* condition, pthread_mutex_t* mutex, clockid_t clock,
                                      const timespec* deadline)
{
    static const auto next =
        original<int (*)(pthread_cond_t*, pthread_mutex_t*, clockid_t, const timespec*)>("pthread_cond_clockwait");
    const std::int64_t now = g_held ? g_now.load() : realNow();
    if (g_logWaits) {
        g_guard.lock();
        g_waits.emplace_back(std::int64_t{deadline->tv_sec} * 1'000'000'000 + deadline->tv_nsec - now);
        g_guard.unlock();
    }
    run(g_onWait);
    if (!g_held)
        return next(condition, mutex, clock, deadline);
    const std::int64_t soon = realNow() + 1'000'000;
    const timespec moment{static_cast<time_t>(soon / 1'000'000'000), static_cast<long>(soon % 1'000'000'000)};
    return next(condition, mutex, CLOCK_MONOTONIC, &moment);
}

extern "C" int pthread_mutex_lock(pthread_mutex_t* mutex) noexcept
{
    static const auto next = original<int (*)(pthread_mutex_t*)>("pthread_mutex_lock");
    if (mutex == g_lockObserved)
        run(g_onLock);
    return next(mutex);
}

extern "C" int pthread_mutex_unlock(pthread_mutex_t* mutex) noexcept
{
    static const auto next = original<int (*)(pthread_mutex_t*)>("pthread_mutex_unlock");
    if (mutex == g_unlockObserved)
        run(g_onUnlock);
    return next(mutex);
}

extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*start)(void*),
                              void* argument) noexcept
{
    using Create = int (*)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
    static const auto next = original<Create>("pthread_create");
    return g_refuseThreads ? EAGAIN : next(thread, attributes, start, argument);
}

/// As the system's. A sanitizer that sees a thread wait for itself takes it for ended, and fails at the next join.
extern "C" int pthread_join(pthread_t thread, void** result)
{
    static const auto next = original<int (*)(pthread_t, void**)>("pthread_join");
    return pthread_equal(thread, pthread_self()) != 0 ? EDEADLK : next(thread, result);
}

extern "C" int pthread_setname_np(pthread_t thread, const char* name) noexcept
{
    static const auto next = original<int (*)(pthread_t, const char*)>("pthread_setname_np");
    g_guard.lock();
    g_names.emplace_back(thread, name);
    g_guard.unlock();
    return next(thread, name);
}

namespace interposed {

HeldClock::HeldClock(nanoseconds time)
{
    g_now = time.count();
    g_held = true;
}
HeldClock::~HeldClock()
{
    g_stepOnRead = 0;
    g_held = false;
}
void HeldClock::set(nanoseconds time)
{
    g_now = time.count();
}
void HeldClock::advance(nanoseconds step)
{
    g_now += step.count();
}
void HeldClock::advanceOnRead(nanoseconds step)
{
    g_stepOnRead = step.count();
}

std::uint64_t clockReads()
{
    return t_reads;
}
std::uint64_t allClockReads()
{
    return g_reads;
}

WaitLog::WaitLog()
{
    g_guard.lock();
    g_waits.clear();
    g_guard.unlock();
    g_logWaits = true;
}
WaitLog::~WaitLog()
{
    g_logWaits = false;
}

std::vector<nanoseconds> WaitLog::waits() const
{
    g_guard.lock();
    auto copy = g_waits;
    g_guard.unlock();
    return copy;
}

bool WaitLog::awaitCount(std::size_t count) const
{
    for (const std::int64_t limit = realNow() + 30'000'000'000; realNow() < limit; sched_yield())
        if (waits().size() >= count)
            return true;
    return false;
}

void onWait(std::function<void()> hook)
{
    replace(g_onWait, std::move(hook));
}
void onNotify(std::function<void()> hook)
{
    replace(g_onNotify, std::move(hook));
}
void onLock(pthread_mutex_t* mutex, std::function<void()> hook)
{
    replace(g_onLock, std::move(hook));
    g_lockObserved = mutex;
}

void onUnlock(pthread_mutex_t* mutex, std::function<void()> hook)
{
    replace(g_onUnlock, std::move(hook));
    g_unlockObserved = mutex;
}

void refuseThreads(bool refuse)
{
    g_refuseThreads = refuse;
}

std::vector<std::pair<pthread_t, std::string>> takeThreadNames()
{
    std::vector<std::pair<pthread_t, std::string>> names;
    g_guard.lock();
    names.swap(g_names);
    g_guard.unlock();
    return names;
}

}  // namespace interposed
