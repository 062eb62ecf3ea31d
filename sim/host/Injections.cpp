// Actions that a scenario can plan, carried out now instead.

#include "host/ModemHost.h"
#include "receiver/Receiver.h"

#include <algorithm>
#include <iterator>

namespace arcsim {

namespace {

using std::chrono::milliseconds;

milliseconds endOf(milliseconds now, std::optional<milliseconds> duration)
{
    return duration ? now + *duration : ModemHost::kForever;
}

}  // namespace

void ModemHost::injectFault(modem::Fault fault)
{
    const unsigned callsSoFar = m_counts[fault.request].count;
    m_faults.inject(fault, callsSoFar);
}

unsigned ModemHost::dropFaults(std::optional<std::size_t> request)
{
    const std::size_t before = m_faults.injected().size();
    m_faults.clearInjected(request);
    return static_cast<unsigned>(before - m_faults.injected().size());
}

unsigned ModemHost::injectEvents(std::vector<modem::TimedEvent> events)
{
    const auto earlier = [](const modem::TimedEvent& a, const modem::TimedEvent& b) { return a.at < b.at; };
    std::stable_sort(events.begin(), events.end(), earlier);
    for (modem::TimedEvent& event : events)
        event.at += now();
    const auto added = m_injectedEvents.insert(m_injectedEvents.end(), std::make_move_iterator(events.begin()),
                                               std::make_move_iterator(events.end()));
    std::inplace_merge(m_injectedEvents.begin(), added, m_injectedEvents.end(), earlier);
    m_clock.begin();
    return static_cast<unsigned>(std::count_if(m_sessions.begin(), m_sessions.end(), [](const auto& each) {
        return each.second.isOpen && each.second.hasHandler;
    }));
}

void ModemHost::overrideLsta(modem::LstaSystem system, std::optional<modem::LstaLevel> level)
{
    m_modem.setLsta(system, level, now());
    tick();
}

void ModemHost::setNoFix(bool on, std::optional<milliseconds> duration)
{
    m_noFixUntil = on ? std::optional(endOf(now(), duration)) : std::nullopt;
    tick();
}

void ModemHost::setJammed(const BlockedSystems& systems, bool on, std::optional<milliseconds> duration)
{
    for (std::size_t index = 0; index < systems.size(); ++index)
        if (systems[index])
            m_jammedUntil[index] = on ? std::optional(endOf(now(), duration)) : std::nullopt;
    tick();
}

void ModemHost::injectOutage(milliseconds duration)
{
    m_clock.begin();
    m_outageUntil = now() + duration;
}

void ModemHost::forceSetting(const std::string& key, const std::string& quoted)
{
    m_modem.settings().force(key, quoted);
    tick();
}

Interference ModemHost::interference() const
{
    Interference interference = interferenceAt(m_receiver, now());
    for (std::size_t index = 0; index < m_jammedUntil.size(); ++index)
        if (m_jammedUntil[index] > now())
            interference.blocked[index] = true;
    interference.noFix = interference.noFix || m_noFixUntil > now();
    return interference;
}

}  // namespace arcsim
