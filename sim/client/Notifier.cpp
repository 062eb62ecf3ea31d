#include "client/Notifier.h"

#include "receiver/BackgroundThread.h"

#include <cstdio>
#include <pthread.h>
#include <system_error>
#include <utility>

namespace arcsim {

void Notifier::setHandler(ArcNotificationHandler handler)
{
    const std::scoped_lock lock(m_mutex);
    m_handler = handler;
}

bool Notifier::deliver(int id, void* data, int length)
{
    std::unique_lock lock(m_mutex);
    if (m_handler == nullptr || m_shutDown)
        return false;
    bool handled = false;
    bool finished = false;
    const Delivery delivery{id, {}, data, length, &handled, &finished};
    if (onOwnThread()) {  // waiting for its own thread would never end
        handOver(lock, delivery);
        return handled;
    }
    if (!ensureThread())
        return false;
    m_waiting.push_back(delivery);
    m_wake.notify_all();
    m_change.wait(lock, [&] { return finished; });
    return handled;
}

void Notifier::queue(Event event)
{
    std::unique_lock lock(m_mutex);
    const bool fits = append(std::move(event));
    startOrSay(lock);
    if (!fits)
        sayDropped();
}

/// False for the first event that is dropped.
bool Notifier::append(Event event)
{
    if (m_waiting.size() >= kMostWaiting || m_waitingBytes + event.payload.size() > kMostWaitingBytes)
        return std::exchange(m_hasDropped, true);
    m_waitingBytes += event.payload.size();
    m_waiting.push_back({event.id, std::move(event.payload), nullptr, 0, nullptr, nullptr});
    return true;
}

void Notifier::sayDropped()
{
    std::fprintf(stderr, "simulated modem: a notification handler does not come back; events are dropped\n");
}

void Notifier::wake()
{
    std::unique_lock lock(m_mutex);
    m_lookAgain = true;
    startOrSay(lock);
}

/// Returns with the lock released.
void Notifier::startOrSay(std::unique_lock<std::mutex>& lock)
{
    const bool isToSay = !ensureThread() && !std::exchange(m_hasSaidNoThread, true);
    m_wake.notify_all();
    lock.unlock();
    if (isToSay)
        std::fprintf(stderr, "simulated modem: there can be no thread for notifications now; they come late\n");
}

std::thread::id Notifier::threadId()
{
    const std::scoped_lock lock(m_mutex);
    ensureThread();
    return m_threadId;
}

void Notifier::forget()
{
    ++m_generation;
    m_handler = nullptr;
    for (const Delivery& delivery : m_waiting)
        if (delivery.finished != nullptr)
            *delivery.finished = true;
    m_waiting.clear();
    m_waitingBytes = 0;
    m_change.notify_all();
}

void Notifier::reset()
{
    std::unique_lock lock(m_mutex);
    forget();
    if (!onOwnThread())
        m_change.wait(lock, [&] { return !m_delivering; });
}

void Notifier::shutDown(std::chrono::milliseconds limit)
{
    std::unique_lock lock(m_mutex);
    m_shutDown = true;
    forget();
    if (!onOwnThread())
        m_change.wait_for(lock, limit, [&] { return !m_delivering; });
}

/// False when no thread can be started now. Waiting events are delivered once a later call has started one.
bool Notifier::ensureThread()
{
    if (m_threadId != std::thread::id{} || m_shutDown)
        return true;
    try {
        std::thread thread = backgroundThread([this] { run(); });
        m_threadId = thread.get_id();
        pthread_setname_np(thread.native_handle(), "arcsim notify");
        // Detached, since it cannot be joined safely: the process may exit from within a handler.
        thread.detach();
        return true;
    } catch (const std::system_error&) {
        return false;
    }
}

void Notifier::run()
{
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_lookAgain = false;
        const unsigned generation = m_generation;
        lock.unlock();
        Due due = m_takeDue();
        lock.lock();
        if (generation != m_generation)
            continue;
        bool fits = true;
        for (Event& event : due.events)
            fits = append(std::move(event)) && fits;
        if (!fits) {
            lock.unlock();
            sayDropped();
            lock.lock();
        }
        const auto somethingToDo = [&] { return !m_waiting.empty() || m_lookAgain; };
        if (due.next)
            m_wake.wait_until(lock, *due.next, somethingToDo);
        else
            m_wake.wait(lock, somethingToDo);
        if (m_waiting.empty())
            continue;
        Delivery delivery = std::move(m_waiting.front());
        m_waiting.pop_front();
        m_waitingBytes -= delivery.payload.size();
        handOver(lock, std::move(delivery));
    }
}

void Notifier::handOver(std::unique_lock<std::mutex>& lock, Delivery delivery)
{
    const ArcNotificationHandler handler = m_shutDown ? nullptr : m_handler;
    if (handler != nullptr) {
        const bool nested = m_delivering;
        m_delivering = true;
        lock.unlock();
        if (delivery.finished != nullptr)
            handler(delivery.id, delivery.data, delivery.length);
        else
            handler(delivery.id, delivery.payload.data(), static_cast<int>(delivery.payload.size()));
        lock.lock();
        m_delivering = nested;
    }
    if (delivery.finished != nullptr) {
        *delivery.handled = handler != nullptr;
        *delivery.finished = true;
    }
    m_change.notify_all();
}

}  // namespace arcsim
