#include "host/ModemHost.h"

#include "host/Perform.h"
#include "modem/Requests.h"
#include "support/Printable.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <utility>

namespace arcsim {

namespace {

using std::chrono::milliseconds;

modem::Settings startSettings(const modem::Scenario& scenario)
{
    modem::Settings settings;
    for (const auto& [key, plain] : scenario.settings)
        settings.force(key, modem::Settings::quote(plain));
    return settings;
}

}  // namespace

ModemHost::ModemHost(const ScenarioFile& scenario, ScenarioClock::Mode mode)
    : m_clock(mode), m_scenario(scenario.modem), m_receiver(scenario.receiver),
      m_faults(m_scenario.seed, m_scenario.faults),
      m_output(scenario.receiver, startSettings(m_scenario),
               mode == ScenarioClock::Mode::virtualTime ? Feed::Pace::steps : Feed::Pace::real),
      m_modem(m_scenario, [this](modem::LstaSystem system) { return m_output.receptionOf(system); })
{
    m_modem.setRawOutput(m_output.feed().path());
    setRealisticLatency(m_scenario.realisticLatency);
}

ModemHost::~ModemHost() = default;

void ModemHost::setRealisticLatency(bool on)
{
    m_realisticLatency = on;
    m_modem.setEngineStart(on ? m_scenario.engineStart : milliseconds(0));
}

ModemHost::SessionId ModemHost::connect(Session session)
{
    const SessionId id = m_nextSession++;
    if (session.isOpen)
        m_modem.open();
    m_sessions[id] = std::move(session);
    return id;
}

void ModemHost::disconnect(SessionId id)
{
    closeFor(m_sessions.at(id));
    m_sessions.erase(id);
    tick();
}

bool ModemHost::anyOpen() const
{
    return std::any_of(m_sessions.begin(), m_sessions.end(), [](const auto& each) { return each.second.isOpen; });
}

void ModemHost::closeFor(Session& session)
{
    if (!session.isOpen)
        return;
    session.isOpen = false;
    if (!anyOpen())
        m_modem.close(now());
}

ModemHost::Begun ModemHost::begin(SessionId id, Function function)
{
    m_clock.begin();
    passPause();
    const std::size_t index = indexOf(function);
    Begun begun;
    begun.number = ++m_counts[index].count;
    if (m_realisticLatency)
        begun.latency = modem::realisticLatency(m_scenario.seed, index, begun.number);
    begun.fault = m_faults.take(index, begun.number, now());
    begun.latency = begun.fault.latency.value_or(begun.latency);
    if (isOutage())
        begun.latency = milliseconds(0);
    begun.due = now() + begun.latency;
    Session& session = m_sessions.at(id);
    ++session.calls;
    ++session.waiting;
    return begun;
}

modem::Reply ModemHost::finish(SessionId id, const Request& request, const Begun& begun)
{
    if (isVirtual())
        advanceTo(begun.due);
    Session& session = m_sessions.at(id);
    endCall(session);
    modem::Reply reply;
    // The version belongs to the client library, so it is available even while the RIL daemon is dead.
    if (isOutage() && request.function != Function::GetArcVersion)
        reply.code = modem::kNoConnection;
    else if (begun.fault.code)
        reply.code = *begun.fault.code;
    else
        reply = distorted(performFor(session, request), begun.fault);
    if (!followModem())
        reply = modem::answer(modem::kGenericError);
    if (reply.code != modem::kSuccess)
        ++m_counts[indexOf(request.function)].failed;
    noteAnswer(reply.code == modem::kSuccess);
    return reply;
}

modem::Reply ModemHost::performFor(Session& session, const Request& request)
{
    switch (request.function) {
    case Function::Open:
        session.isOpen = true;
        break;
    case Function::Close:
        if (!session.isOpen)
            return modem::answer(modem::kNotOpened);
        closeFor(session);
        return modem::answer(modem::kSuccess);
    case Function::RegisterNotification:
        session.hasHandler = request.arguments[0].set;
        break;
    default:
        break;
    }
    return perform(m_modem, request, session.isOpen, now());
}

void ModemHost::abandon(SessionId id)
{
    endCall(m_sessions.at(id));
}

void ModemHost::endCall(Session& session)
{
    if (session.waiting == 0)
        throw std::logic_error("a call of '" + session.name + "' ends that has not begun");
    --session.waiting;
}

void ModemHost::count(Function function)
{
    m_clock.begin();
    ++m_counts[indexOf(function)].count;
}

bool ModemHost::followModem()
{
    try {
        m_output.follow(m_modem, interference(), now());
        return true;
    } catch (const std::runtime_error& error) {  // the recording has disappeared since the scenario was read
        std::fprintf(stderr, "simulated modem: %s\n", support::printable(error.what()).c_str());
        m_modem.stopGnss(now());
        return false;
    }
}

void ModemHost::tick()
{
    if (!m_clock.hasBegun())
        return;
    followModem();
    if (isVirtual())
        m_output.feed().step(now());
    for (modem::Modem::Event& event : m_modem.takeEvents(now()))
        m_events.push_back(std::move(event));
    for (; !m_injectedEvents.empty() && m_injectedEvents.front().at <= now(); m_injectedEvents.pop_front())
        m_events.push_back({m_injectedEvents.front().id, std::move(m_injectedEvents.front().payload), {}});
    if (isOutage())
        m_events.clear();  // a dead daemon passes no events on
}

std::vector<modem::Modem::Event> ModemHost::takeEvents()
{
    tick();
    return std::exchange(m_events, {});
}

bool ModemHost::wantsLook() const
{
    return m_clock.hasBegun() && (isVirtual() || nextPlanned());
}

std::optional<ModemHost::Real::time_point> ModemHost::nextLook()
{
    if (!m_clock.hasBegun())
        return std::nullopt;
    if (isVirtual())
        return leapOrWait();
    const auto next = nextPlanned();
    return next ? std::optional(m_clock.realTimeOf(*next)) : std::nullopt;
}

std::optional<milliseconds> ModemHost::nextPlanned() const
{
    const auto next = nextEventOrEdge();
    const auto epoch = isVirtual() ? m_output.feed().nextEpoch() : std::nullopt;
    return next && epoch ? std::min(next, epoch) : next ? next : epoch;
}

std::optional<milliseconds> ModemHost::nextEventOrEdge() const
{
    std::optional<milliseconds> next = m_modem.nextEvent(now());
    const auto consider = [&](std::optional<milliseconds> time) {
        if (time && *time != kForever && (!next || *time < *next))
            next = time;
    };
    if (!m_injectedEvents.empty())
        consider(m_injectedEvents.front().at);
    for (const auto& until : m_jammedUntil)
        if (until > now())
            consider(until);
    for (const auto& until : {m_noFixUntil, m_outageUntil})
        if (until > now())
            consider(until);
    for (const modem::Outage& outage : m_scenario.outages)
        for (const milliseconds edge : {outage.from, outage.until})
            if (edge > now())
                consider(edge);
    return next;
}

bool ModemHost::isOutage() const
{
    if (!m_clock.hasBegun())
        return false;
    const auto within = [&](const modem::Outage& outage) { return now() >= outage.from && now() < outage.until; };
    return m_outageUntil > now() || std::any_of(m_scenario.outages.begin(), m_scenario.outages.end(), within);
}

ModemHost::Memory ModemHost::memory() const
{
    Memory memory;
    memory.quotedSettings = m_modem.settings().all();
    memory.engineOn = m_modem.engine(now()) != modem::EngineState::off;
    memory.lstaPeriods = m_modem.lstaPeriods();
    if (m_clock.hasBegun())
        memory.time = now();
    return memory;
}

void ModemHost::restore(const Memory& memory)
{
    if (memory.time)
        m_clock.resume(*memory.time);
    for (const auto& [key, quoted] : memory.quotedSettings)
        m_modem.settings().force(key, quoted);
    if (memory.engineOn)
        m_modem.keepRunning(now());
    for (std::size_t index = 0; index < modem::kLstaSystems; ++index)
        if (memory.lstaPeriods[index])
            m_modem.keepLsta(static_cast<modem::LstaSystem>(index), *memory.lstaPeriods[index], now());
    m_modem.takeEvents(now());  // events planned for an earlier time are lost
    followModem();
}

}  // namespace arcsim
