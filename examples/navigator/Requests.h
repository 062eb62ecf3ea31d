#pragma once

#include "navigator/Inbox.h"
#include "support/Interrupt.h"

#include "kelarc/KelArc.h"
#include "support/Await.h"
#include "support/Failure.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <tuple>
#include <utility>

namespace navigator {

using Clock = std::chrono::steady_clock;
using support::Failure;

/// The result of wait().
struct Ready
{
    bool interrupt = false;
    bool device = false;
};

/// Makes the library's requests one after the other and waits for each answer on the main thread, which meanwhile
/// handles events of the modem and signals. Every wait has a limit.
class Requests
{
public:
    Requests(kelarc::KelArc& modem, const support::Interrupt& interrupt, std::chrono::milliseconds timeout,
             std::function<void(const ModemEvent&)> onEvent);

    kelarc::KelArc& modem() { return m_modem; }
    const std::shared_ptr<Inbox>& inbox() const { return m_inbox; }

    /// Makes a request with `start(callback)` and returns the values of its answer. `what` names it in messages.
    /// Throws Failure when the answer does not come in time or a signal does.
    template <typename... Values, typename Start>
    std::tuple<Values...> ask(const std::string& what, const Start& start)
    {
        support::Await<Values...> answer;
        start([received = answer.callback(), inbox = m_inbox](Values... values) {
            received(std::forward<Values>(values)...);
            inbox->wake();
        });
        waitFor(what, [&answer] { return answer.wait(std::chrono::milliseconds(0)); });
        return answer.values();
    }

    /// Waits at most until `until` for a signal, for events, which it handles, or for a device if not negative.
    Ready wait(int device, Clock::time_point until);

    /// The run is ending: from now on signals end no wait, and this is the limit of each wait.
    void beginEnd(std::chrono::milliseconds timeout);

private:
    void waitFor(const std::string& what, const std::function<bool()>& isDone);
    std::string overdue(const std::string& what) const;

    kelarc::KelArc& m_modem;
    const support::Interrupt& m_interrupt;
    std::chrono::milliseconds m_timeout;
    const std::function<void(const ModemEvent&)> m_onEvent;
    const std::shared_ptr<Inbox> m_inbox = std::make_shared<Inbox>();  ///< callbacks keep it alive for late answers
    bool m_isEnding = false;
};

}  // namespace navigator
