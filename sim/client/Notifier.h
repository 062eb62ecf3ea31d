#pragma once

#include "arc/ArcRilD.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace arcsim {

/// The client library's notification thread: hands events to the registered handler, one at a time and in order.
///
/// The thread starts with the first event or wake() and lives until the process exits. If the system cannot start a
/// thread, events wait for the next event or wake(). No lock is held while the handler runs. All functions may be
/// called from any thread, also from the handler.
class Notifier
{
public:
    using Clock = std::chrono::steady_clock;
    struct Event
    {
        int id = 0;
        std::vector<unsigned char> payload{};
    };
    /// Returns the events that are due now, and when to ask again. Called on the notification thread without a lock.
    struct Due
    {
        std::vector<Event> events{};
        std::optional<Clock::time_point> next{};
    };

    /// Limit of what waits for a handler that does not return: enough for two of the largest storms that a modem plans.
    /// Further events are dropped, with one message on stderr.
    static constexpr std::size_t kMostWaiting = 400'000;
    static constexpr std::size_t kMostWaitingBytes = 16UL << 20U;

    explicit Notifier(std::function<Due()> takeDue) : m_takeDue(std::move(takeDue)) {}

    void setHandler(ArcNotificationHandler handler);

    /// False when no handler is registered at the event's turn, or no thread can be started.
    bool deliver(int id, void* data, int length);
    void queue(Event event);
    /// Makes the thread look for due events again.
    void wake();
    std::thread::id threadId();

    /// Forgets the handler and the waiting events, and returns when no handler is running (at once if called from the
    /// handler).
    void reset();
    /// For the exit of the process: like reset(), but gives up on a handler that does not return. The thread calls
    /// nothing from then on.
    void shutDown(std::chrono::milliseconds limit);

private:
    struct Delivery
    {
        int id = 0;
        std::vector<unsigned char> payload{};
        void* data = nullptr;
        int length = 0;
        bool* handled = nullptr;  ///< not null if the sender waits; written under the lock
        bool* finished = nullptr;
    };

    bool append(Event event);
    static void sayDropped();
    bool ensureThread();
    void startOrSay(std::unique_lock<std::mutex>& lock);
    void run();
    void handOver(std::unique_lock<std::mutex>& lock, Delivery delivery);
    void forget();
    bool onOwnThread() const { return std::this_thread::get_id() == m_threadId; }

    const std::function<Due()> m_takeDue;

    // guarded by m_mutex
    std::mutex m_mutex;
    std::condition_variable m_wake;    ///< for the thread
    std::condition_variable m_change;  ///< for those who wait for the thread
    ArcNotificationHandler m_handler = nullptr;
    std::deque<Delivery> m_waiting;
    std::size_t m_waitingBytes = 0;  ///< of payload
    bool m_hasDropped = false;
    bool m_hasSaidNoThread = false;
    std::thread::id m_threadId{};
    unsigned m_generation = 0;  ///< grows with every reset; events taken before one are void
    bool m_delivering = false;
    bool m_lookAgain = false;
    bool m_shutDown = false;
};

}  // namespace arcsim
