#pragma once

#include "host/RawOutput.h"
#include "host/Request.h"
#include "host/ScenarioClock.h"
#include "modem/Faults.h"
#include "modem/Modem.h"
#include "scenario/ScenarioFile.h"

#include <array>
#include <chrono>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace arcsim {

/// One simulated modem with everything around it that a scenario decides: when calls are answered and what goes wrong
/// with them, which clients are connected, raw output, events, and the course of scenario time.
///
/// Clients share the engine, the settings and LSTA; each opens and closes a connection of its own. When the last open
/// one is closed, or its client leaves without closing, raw output and LSTA reports end.
///
/// Knows neither sockets nor threads (but the raw output's); calls must not overlap.
class ModemHost
{
public:
    using Real = ScenarioClock::Real;
    using SessionId = unsigned;

    /// The end of what goes on until it is taken back; a time that never comes.
    static constexpr std::chrono::milliseconds kForever = std::chrono::milliseconds::max();

    /// Throws std::runtime_error when the scenario cannot be simulated.
    ModemHost(const ScenarioFile& scenario, ScenarioClock::Mode mode);
    ~ModemHost();

    struct Session
    {
        std::string name{};
        int pid = 0;
        bool isOpen = false;
        bool hasHandler = false;
        unsigned calls = 0;
        unsigned waiting = 0;  ///< calls begun and not finished
    };
    SessionId connect(Session session);
    void disconnect(SessionId id);
    /// The client is cut off from a modem that goes on: its connection is forgotten, not closed.
    void cutOff(SessionId id) { m_sessions.erase(id); }
    const std::map<SessionId, Session>& sessions() const { return m_sessions; }
    /// For a handler that was registered without the modem being asked.
    void setHandler(SessionId id, bool isSet) { m_sessions.at(id).hasHandler = isSet; }

    /// The first half of a call: when it is to be finished, and what will go wrong with it.
    struct Begun
    {
        unsigned number = 0;                  ///< of this function, from 1
        std::chrono::milliseconds latency{};  ///< scenario time from now on; in virtual time finish() sees to it
        std::chrono::milliseconds due{};
        modem::FaultEffect fault{};
    };
    Begun begin(SessionId id, Function function);
    /// The second half: what the modem answers.
    modem::Reply finish(SessionId id, const Request& request, const Begun& begun);
    /// Instead of finish() for a call that nobody waits for any more.
    void abandon(SessionId id);
    /// Counts a call that is answered without the modem.
    void count(Function function);

    /// Events that have come since the last time, in order. For all clients with an open connection and a handler.
    std::vector<modem::Modem::Event> takeEvents();
    /// When to call takeEvents() next; in virtual time that is also what lets time go on while nobody calls. Empty:
    /// after the next call.
    std::optional<Real::time_point> nextLook();
    /// Without calling nextLook(): whether it has something to say.
    bool wantsLook() const;

    std::chrono::milliseconds now() const { return m_clock.now(); }
    bool isVirtual() const { return m_clock.isVirtual(); }
    /// The next moment at which something happens without a call: an event, a change of reception, in virtual time also
    /// an epoch.
    std::optional<std::chrono::milliseconds> nextPlanned() const;
    /// Virtual time only: lets everything planned until then happen, in order.
    void advanceTo(std::chrono::milliseconds time);

    /// The RIL daemon is dead at present: the socket server must disconnect all clients.
    bool isOutage() const;

    // What a scenario plans can also be done now, for a time or until it is taken back.
    void injectFault(modem::Fault fault);
    unsigned dropFaults(std::optional<std::size_t> request);
    std::vector<modem::Fault> injectedFaults() const { return m_faults.injected(); }
    /// The times of `events` count from now. Returns how many clients will be told.
    unsigned injectEvents(std::vector<modem::TimedEvent> events);
    /// Those of them that are still to come.
    const std::deque<modem::TimedEvent>& injectedEvents() const { return m_injectedEvents; }
    void overrideLsta(modem::LstaSystem system, std::optional<modem::LstaLevel> level);
    void setNoFix(bool on, std::optional<std::chrono::milliseconds> duration);
    void setJammed(const BlockedSystems& systems, bool on, std::optional<std::chrono::milliseconds> duration);
    void injectOutage(std::chrono::milliseconds duration);
    void setRealisticLatency(bool on);
    void forceSetting(const std::string& key, const std::string& quoted);
    /// Raw output goes under this name, for example of a link to it.
    void setOutputName(const std::string& name) { m_modem.setRawOutput(name); }

    const modem::Modem& modem() const { return m_modem; }
    const RawOutput& output() const { return m_output; }
    /// Virtual time only: a reader of the raw output has taken all of it. Hands over more.
    bool isOutputTaken() { return m_output.feed().isReady(); }
    /// What keeps the receiver from hearing at present, planned or injected.
    Interference interference() const;
    struct CallCount
    {
        unsigned count = 0;
        unsigned failed = 0;
    };
    const std::array<CallCount, kFunctions>& callCounts() const { return m_counts; }

    /// What outlives the RIL daemon, for a modem goes on when the daemon dies.
    struct Memory
    {
        std::map<std::string, std::string> quotedSettings{};
        bool engineOn = false;
        std::array<std::optional<int>, modem::kLstaSystems> lstaPeriods{};  ///< in seconds, of enabled systems
        std::optional<std::chrono::milliseconds> time{};                    ///< empty: no call has come yet
    };
    Memory memory() const;
    void restore(const Memory& memory);
    /// Ends raw output for good.
    void stopOutput() { m_output.stop(); }

private:
    using Time = std::chrono::milliseconds;

    modem::Reply performFor(Session& session, const Request& request);
    static void endCall(Session& session);
    bool anyOpen() const;
    void closeFor(Session& session);
    void tick();
    bool followModem();
    std::optional<Time> nextEventOrEdge() const;

    // virtual time only
    void passPause();
    void noteAnswer(bool success);
    std::optional<Time> nextLeap() const;
    std::optional<Real::time_point> leapOrWait();
    Real::time_point afterLeapTo(Time time, Time quiet);

    ScenarioClock m_clock;
    const modem::Scenario m_scenario;
    const ReceiverScenario m_receiver;
    modem::FaultPlan m_faults;
    RawOutput m_output;
    modem::Modem m_modem;
    bool m_realisticLatency = true;

    std::map<SessionId, Session> m_sessions{};
    SessionId m_nextSession = 1;
    std::array<CallCount, kFunctions> m_counts{};

    std::deque<modem::TimedEvent> m_injectedEvents{};  ///< in order of time, which is scenario time
    std::vector<modem::Modem::Event> m_events{};       ///< not taken yet
    std::array<std::optional<Time>, kGnssSystemCount> m_jammedUntil{};
    std::optional<Time> m_noFixUntil{};
    std::optional<Time> m_outageUntil{};

    // virtual time only
    Real::time_point m_quietUntil{};               ///< time stands until then, unless somebody calls
    std::optional<Real::time_point> m_failedAt{};  ///< when the last call was answered, if that was a failure
};

}  // namespace arcsim
