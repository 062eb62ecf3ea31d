#pragma once

// One open() for many waits. Part of kelarc/async.h.

#include "../KelArc.h"
#include "Clock.h"
#include "Future.h"

#include <algorithm>
#include <chrono>
#include <future>
#include <thread>

namespace kelarc::async {

/// Opens the object for somebody who waits with a limit again and again, and asks only once:
///
///     kelarc::async::Opening opening(modem);
///     while (!opening.waitFor(std::chrono::seconds(10)))
///         ...  // not open yet: tell somebody, look whether it is still wanted
///
/// It makes no second open() while the first has been neither answered nor dropped, so the queue holds at most two
/// requests for it. Keep one Opening for an object while the object is to be opened; for one thread at a time. It may
/// be destroyed before and after the object; its open() stays in the queue.
class Opening
{
public:
    explicit Opening(KelArc& modem) : m_modem(&modem) {}

    /// Waits at most `limit` until the object is open: true when it is. Calls open() unless one is outstanding. When
    /// the request is dropped, because the queue is full or stopGNSS() has left the closed object active, there is no
    /// answer: then this function checks repeatedly until the limit has passed, and the next call asks again. Throws
    /// the exceptions of open(). Not for callbacks: the request would wait for them.
    bool waitFor(std::chrono::milliseconds limit)
    {
        const detail::TimePoint end = detail::endOf(limit);
        if (!m_answer.valid())
            m_answer = detail::requestWithin(nullptr, *m_modem, &KelArc::open);
        while (m_answer.wait_for(detail::untilEnd(end)) != std::future_status::ready)
            if (std::chrono::steady_clock::now() >= end)
                return false;
        try {
            m_answer.get();  // 0; or 32 when it was open already
        } catch (const std::future_error&) {
            while (!m_modem->isOpen() && std::chrono::steady_clock::now() < end)
                std::this_thread::sleep_for(std::min<detail::Duration>(kBetweenLooks, detail::untilEnd(end)));
        }
        return m_modem->isOpen();
    }

private:
    static constexpr std::chrono::milliseconds kBetweenLooks{10};

    KelArc* m_modem;
    std::future<int> m_answer;  ///< of the outstanding open(); otherwise invalid
};

}  // namespace kelarc::async
