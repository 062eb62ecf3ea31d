#pragma once

#include "modem/Lsta.h"
#include "modem/Reply.h"
#include "modem/Scenario.h"
#include "modem/Settings.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace arcsim::modem {

enum class EngineState
{
    off,
    starting,
    running,
};

/// State of one simulated modem: the connection, the settings, the GNSS engine, LSTA and its reports.
///
/// Has no clock and no threads: the caller passes the scenario time with every request and must not overlap calls. A
/// request for a state that already holds succeeds and changes nothing. All requests except open() answer 1 while the
/// connection is closed.
class Modem
{
public:
    /// `receptionOf` gives the reception of the systems; called only while the engine is on.
    Modem(const Scenario& scenario, ReceptionOf receptionOf);

    Reply open();
    /// Also ends raw output and switches LSTA reports off.
    Reply close(std::chrono::milliseconds now);
    Reply versions() const;
    Reply enableLogging() const;
    Reply atCommand(const std::string& command) const;

    Reply readSetting(const std::string& key) const;
    /// Indicator 1: the value was changed; 0: it was the same. Refused with 15 while the engine starts.
    Reply writeSetting(const std::string& key, const std::string& quoted, std::chrono::milliseconds now);

    /// The text is the name of the raw output. Answers 15 while the engine is already starting.
    Reply startGnss(std::chrono::milliseconds now);
    Reply stopGnss(std::chrono::milliseconds now);
    /// Makes the next start a cold one, whatever the receiver learns until then. Answers 15 while the engine starts.
    Reply resetAssistance(std::chrono::milliseconds now);

    Reply currentLsta(int technologyId, std::chrono::milliseconds now) const;
    Reply enableLsta(int technologyId, bool enable, int periodSeconds, std::chrono::milliseconds now);

    /// Events and reports that are due up to `now`, in order; LSTA reports are events with the id 34.
    struct Event
    {
        int id = 0;
        std::vector<unsigned char> payload{};
        std::optional<Lsta> lsta{};
    };
    /// Events that become due while the connection is closed are lost.
    std::vector<Event> takeEvents(std::chrono::milliseconds now);
    /// When to take events next or when reception changes; empty while nothing is planned.
    std::optional<std::chrono::milliseconds> nextEvent(std::chrono::milliseconds now) const;

    bool isOpen() const { return m_isOpen; }
    EngineState engine(std::chrono::milliseconds now) const;
    /// Sets how long the engine stays in its starting state, from its next start on.
    void setEngineStart(std::chrono::milliseconds duration) { m_engineStart = duration; }
    void setRawOutput(std::string name) { m_rawOutput = std::move(name); }
    const std::string& rawOutput() const { return m_rawOutput; }
    /// The answer of currentLsta(), whether a connection is open or not.
    Lsta lsta(LstaSystem system, std::chrono::milliseconds now) const
    {
        return m_lstaMonitor.current(system, m_engineOn, now);
    }
    /// Scenario time of the first fix of the engine's present run.
    std::chrono::milliseconds firstFixAt() const { return m_runsSince + m_firstFix; }
    /// No satellite of the system is received at present.
    bool isBlocked(LstaSystem system, std::chrono::milliseconds now) const;
    void setLsta(LstaSystem system, std::optional<LstaLevel> level, std::chrono::milliseconds now)
    {
        m_lstaMonitor.setLevel(system, level, now);
    }
    /// When the engine that is starting will be running.
    std::optional<std::chrono::milliseconds> readyAt(std::chrono::milliseconds now) const;
    /// Puts the engine into its state after a long run with a fix.
    void keepRunning(std::chrono::milliseconds now);
    std::array<std::optional<int>, kLstaSystems> lstaPeriods() const { return m_lstaMonitor.periods(); }
    void keepLsta(LstaSystem system, int periodSeconds, std::chrono::milliseconds now)
    {
        m_lstaMonitor.enable(system, periodSeconds, now);
    }
    Settings& settings() { return m_settings; }
    const Settings& settings() const { return m_settings; }

private:
    Scenario m_scenario;
    Settings m_settings;
    LstaMonitor m_lstaMonitor;
    bool m_isOpen = false;
    bool m_engineOn = false;
    std::string m_rawOutput{};
    std::chrono::milliseconds m_engineStart;
    std::chrono::milliseconds m_runsSince{};  ///< until then the engine is starting
    std::chrono::milliseconds m_firstFix{};
    bool m_knowsOrbits = false;  ///< had a fix earlier, so the next start is a hot one
    bool m_assistanceReset = false;
    std::size_t m_eventsTaken = 0;
};

}  // namespace arcsim::modem
