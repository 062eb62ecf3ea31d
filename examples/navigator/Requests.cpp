#include "navigator/Requests.h"

#include "navigator/ExitCode.h"
#include "navigator/LogOutput.h"

#include <algorithm>
#include <cerrno>
#include <poll.h>
#include <system_error>

namespace navigator {
namespace {

using std::chrono::milliseconds;

/// How long an answer may take before stderr names the waiting request, and how often stderr names it again.
constexpr milliseconds kPatience{5000};

double secondsOf(milliseconds duration)
{
    return static_cast<double>(duration.count()) / 1000;
}

int pollTimeout(Clock::time_point until)
{
    const auto left = std::chrono::ceil<milliseconds>(until - Clock::now()).count();
    return static_cast<int>(std::clamp<decltype(left)>(left, 0, 60'000));  // the caller comes back for the rest
}

}  // namespace

Requests::Requests(kelarc::KelArc& modem, const support::Interrupt& interrupt, milliseconds timeout,
                   std::function<void(const ModemEvent&)> onEvent)
    : m_modem(modem), m_interrupt(interrupt), m_timeout(timeout), m_onEvent(std::move(onEvent))
{
}

Ready Requests::wait(int device, Clock::time_point until)
{
    enum
    {
        kSignal,
        kInbox,
        kDevice,
    };
    pollfd watched[] = {{m_isEnding ? -1 : m_interrupt.descriptor(), POLLIN, 0},  // poll() passes over negative ones
                        {m_inbox->descriptor(), POLLIN, 0},
                        {device, POLLIN, 0}};
    if (::poll(watched, std::size(watched), pollTimeout(until)) < 0) {
        if (errno != EINTR)
            throw std::system_error(errno, std::generic_category(), "cannot wait");
        return {};
    }
    if (watched[kInbox].revents != 0)
        for (const ModemEvent& event : m_inbox->take())
            m_onEvent(event);
    return {watched[kSignal].revents != 0, watched[kDevice].revents != 0};
}

void Requests::waitFor(const std::string& what, const std::function<bool()>& isDone)
{
    const Clock::time_point begin = Clock::now();
    const Clock::time_point deadline = begin + m_timeout;
    Clock::time_point report = begin + kPatience;
    while (!isDone()) {
        const Clock::time_point now = Clock::now();
        if (now >= deadline)
            throw Failure(kExitDeadline, overdue(what));
        if (now >= report) {
            say("no answer to '%s' for %.0f s; giving up after %.0f s", what.c_str(),
                secondsOf(std::chrono::duration_cast<milliseconds>(now - begin)), secondsOf(m_timeout));
            report = now + kPatience;
        }
        if (wait(-1, std::min(deadline, report)).interrupt)
            throw Failure(kExitInterrupted, "interrupted while waiting for the answer to '" + what + "'");
    }
}

std::string Requests::overdue(const std::string& what) const
{
    return "no answer to '" + what + "' within " + std::to_string(m_timeout.count() / 1000) +
           " s. The library is at '" + m_modem.getRunningTaskName() +
           "', requests waiting: " + std::to_string(m_modem.getPendingTasks()) +
           ". Its lines above tell what the modem answered to each attempt; if there are none, the call does not "
           "return, and the modem's RIL daemon is where to look";
}

void Requests::beginEnd(milliseconds timeout)
{
    m_isEnding = true;
    m_timeout = timeout;
}

}  // namespace navigator
