#include "modem/Modem.h"

#include "modem/AtInterpreter.h"

#include <algorithm>

namespace arcsim::modem {

namespace {

using std::chrono::milliseconds;

constexpr int kLstaEvent = 34;

}  // namespace

Modem::Modem(const Scenario& scenario, ReceptionOf receptionOf)
    : m_scenario(scenario), m_lstaMonitor(scenario.lstaChanges, std::move(receptionOf)),
      m_engineStart(scenario.engineStart)
{
    for (const auto& [key, plain] : scenario.settings)
        m_settings.force(key, Settings::quote(plain));
}

Reply Modem::open()
{
    m_isOpen = true;
    return answer(kSuccess);
}

Reply Modem::close(milliseconds now)
{
    if (!m_isOpen)
        return answer(kNotOpened);
    stopGnss(now);
    m_lstaMonitor.disableAll();
    m_isOpen = false;
    return answer(kSuccess);
}

Reply Modem::versions() const
{
    if (!m_isOpen)
        return answer(kNotOpened);
    return {kSuccess, "RIL 1.0 (simulated)", "Modem 1.0 (simulated)", {}, {}};
}

Reply Modem::enableLogging() const
{
    return answer(m_isOpen ? kSuccess : kNotOpened);
}

Reply Modem::atCommand(const std::string& command) const
{
    if (!m_isOpen)
        return answer(kNotOpened);
    const std::optional<std::string> text = atAnswer(command);
    if (!text)
        return answer(kNotSupported, "ERROR");
    return answer(kSuccess, text->empty() ? "OK" : *text + "\r\nOK");
}

Reply Modem::readSetting(const std::string& key) const
{
    if (!m_isOpen)
        return answer(kNotOpened);
    const std::optional<std::string> quoted = m_settings.read(key);
    return quoted ? answer(kSuccess, quoted) : answer(kNotFound);
}

Reply Modem::writeSetting(const std::string& key, const std::string& quoted, milliseconds now)
{
    if (!m_isOpen)
        return answer(kNotOpened);
    if (engine(now) == EngineState::starting)
        return answer(kTemporarilyUnavailable);
    switch (m_settings.write(key, quoted)) {
    case Settings::Write::changed:
        return {kSuccess, {}, {}, 1, {}};
    case Settings::Write::same:
        return {kSuccess, {}, {}, 0, {}};
    case Settings::Write::unknownKey:
        return answer(kNotFound);
    case Settings::Write::readOnly:
        return answer(kNotAllowed);
    case Settings::Write::wrongValue:
        break;
    }
    return answer(kWrongParameter);
}

EngineState Modem::engine(milliseconds now) const
{
    if (!m_engineOn)
        return EngineState::off;
    return now < m_runsSince ? EngineState::starting : EngineState::running;
}

std::optional<milliseconds> Modem::readyAt(milliseconds now) const
{
    return engine(now) == EngineState::starting ? std::optional(m_runsSince) : std::nullopt;
}

void Modem::keepRunning(milliseconds now)
{
    m_isOpen = true;
    m_engineOn = true;
    m_runsSince = now;
    m_firstFix = milliseconds(0);
    m_knowsOrbits = true;
}

Reply Modem::startGnss(milliseconds now)
{
    if (!m_isOpen)
        return answer(kNotOpened);
    if (engine(now) == EngineState::starting)
        return answer(kTemporarilyUnavailable);
    if (m_engineOn)
        return answer(kSuccess, m_rawOutput);
    m_engineOn = true;
    m_runsSince = now + m_engineStart;
    m_firstFix = m_knowsOrbits && !m_assistanceReset ? m_scenario.hotFirstFix : m_scenario.coldFirstFix;
    m_assistanceReset = false;
    return answer(kSuccess, m_rawOutput);
}

Reply Modem::stopGnss(milliseconds now)
{
    if (!m_isOpen)
        return answer(kNotOpened);
    if (m_engineOn && now >= firstFixAt())
        m_knowsOrbits = true;
    m_engineOn = false;
    return answer(kSuccess);
}

Reply Modem::resetAssistance(milliseconds now)
{
    if (!m_isOpen)
        return answer(kNotOpened);
    if (engine(now) == EngineState::starting)
        return answer(kTemporarilyUnavailable);
    m_assistanceReset = true;
    return answer(kSuccess);
}

Reply Modem::currentLsta(int technologyId, milliseconds now) const
{
    if (!m_isOpen)
        return answer(kNotOpened);
    const std::optional<LstaSystem> system = lstaSystemOf(technologyId);
    if (!system)
        return answer(kWrongParameter);
    return {kSuccess, {}, {}, {}, m_lstaMonitor.current(*system, m_engineOn, now)};
}

Reply Modem::enableLsta(int technologyId, bool enable, int periodSeconds, milliseconds now)
{
    if (!m_isOpen)
        return answer(kNotOpened);
    const std::optional<LstaSystem> system = lstaSystemOf(technologyId);
    if (!system)
        return answer(kWrongParameter);
    if (enable)
        m_lstaMonitor.enable(*system, periodSeconds, now);
    else
        m_lstaMonitor.disable(*system);
    return answer(kSuccess);
}

std::vector<Modem::Event> Modem::takeEvents(milliseconds now)
{
    std::vector<Event> events;
    for (; m_eventsTaken < m_scenario.events.size() && m_scenario.events[m_eventsTaken].at <= now; ++m_eventsTaken) {
        const TimedEvent& planned = m_scenario.events[m_eventsTaken];
        if (m_isOpen)
            events.push_back({planned.id, planned.payload, {}});
    }
    for (const Lsta& lsta : m_lstaMonitor.takeReports(m_engineOn, now))
        events.push_back({kLstaEvent, {}, lsta});
    return events;
}

std::optional<milliseconds> Modem::nextEvent(milliseconds now) const
{
    std::vector<milliseconds> times;
    if (m_eventsTaken < m_scenario.events.size())
        times.push_back(m_scenario.events[m_eventsTaken].at);
    for (const auto& time : {m_lstaMonitor.nextLook(), m_lstaMonitor.nextChange(now)})
        if (time)
            times.push_back(*time);
    const auto next = std::min_element(times.begin(), times.end());
    return next == times.end() ? std::nullopt : std::optional(*next);
}

bool Modem::isBlocked(LstaSystem system, milliseconds now) const
{
    return m_lstaMonitor.isBlocked(system, now);
}

}  // namespace arcsim::modem
