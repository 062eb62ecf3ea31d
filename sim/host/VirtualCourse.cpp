// The course of virtual time.
//
// Two things move time: the latency of calls, and a reader of the raw output taking epochs. When neither happens, time
// leaps to the next planned event. Before a leap, the modem waits one of the stretches of real time below, so that an
// application that is about to call does not come too late. These stretches never show in the output; they only decide
// whether a planned event comes before or after a call.

#include "host/ModemHost.h"

#include <algorithm>
#include <utility>

namespace arcsim {

namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;

constexpr milliseconds kAfterCall{100};     // for the next call of an application that has got its answer
constexpr milliseconds kAfterFailure{400};  // for a repetition: applications pause before they try again
constexpr milliseconds kAfterLeap{5};       // for a call that an event causes
constexpr milliseconds kLookForReader{5};
constexpr microseconds kReaderPoll{100};

// A call that comes this late after a failure followed a pause of the application. In virtual time this pause has a
// fixed length, so that busy machines give the same result.
constexpr milliseconds kPauseRecognised{200};
constexpr milliseconds kPauseCounted{250};

}  // namespace

void ModemHost::passPause()
{
    if (!isVirtual())
        return;
    const auto failedAt = std::exchange(m_failedAt, std::nullopt);
    if (failedAt && Real::now() - *failedAt >= kPauseRecognised)
        advanceTo(now() + kPauseCounted);
}

void ModemHost::noteAnswer(bool success)
{
    const auto answeredAt = Real::now();
    m_quietUntil = answeredAt + (success ? kAfterCall : kAfterFailure);
    if (!success)
        m_failedAt = answeredAt;
}

void ModemHost::advanceTo(milliseconds time)
{
    m_clock.begin();
    for (auto next = nextPlanned(); next; next = nextPlanned()) {
        const milliseconds at = std::max(*next, now() + milliseconds(1));
        if (at > time)
            break;
        m_clock.advanceTo(at);
        tick();
    }
    m_clock.advanceTo(time);
    tick();
}

ModemHost::Real::time_point ModemHost::afterLeapTo(milliseconds time, milliseconds quiet)
{
    advanceTo(time);
    const auto realNow = Real::now();
    m_quietUntil = std::max(m_quietUntil, realNow + quiet);
    return realNow;
}

std::optional<ModemHost::Real::time_point> ModemHost::leapOrWait()
{
    const auto realNow = Real::now();
    if (!m_events.empty())
        return realNow;
    const bool isOn = m_modem.engine(now()) != modem::EngineState::off;
    const bool hasReader = m_output.feed().hasReader();
    if (hasReader && !m_output.feed().isReady())  // also after a stop: the reader still gets earlier output
        return realNow + kReaderPoll;
    if (isOn && hasReader) {
        const auto next = nextPlanned();
        return next ? std::optional(afterLeapTo(*next, milliseconds(0))) : std::nullopt;
    }
    const auto leap = nextLeap();
    if (leap && realNow >= m_quietUntil)
        return afterLeapTo(*leap, kAfterLeap);
    if (isOn)
        return realNow + kLookForReader;
    return leap ? std::optional(m_quietUntil) : std::nullopt;
}

/// The next planned moment, ignoring epochs that nobody reads.
std::optional<milliseconds> ModemHost::nextLeap() const
{
    std::optional<milliseconds> next;
    for (const auto& time : {nextEventOrEdge(), m_faults.nextEdge(now()), m_modem.readyAt(now())})
        if (time && (!next || *time < *next))
            next = time;
    return next;
}

}  // namespace arcsim
