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

/// One simulated modem with its surroundings: latencies and faults of calls, connected clients, raw output, events, and
/// scenario time.
///
/// Clients share the engine, the settings and LSTA; each opens and closes a connection of its own. When the last open
/// connection is closed, or its client leaves without closing, raw output and LSTA reports end.
///
/// Knows nothing of sockets, nor of threads except that of the raw output; calls must not overlap.
class ModemHost
{
public:
    using Real = ScenarioClock::Real;
    using SessionId = unsigned;

    /// The end time of a condition that lasts until it is taken back; this time never comes.
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
    /// The client is cut off while the modem goes on: its connection is forgotten, not closed.
    void cutOff(SessionId id) { m_sessions.erase(id); }
    const std::map<SessionId, Session>& sessions() const { return m_sessions; }
    /// Reports a handler that was registered without asking the modem.
    void setHandler(SessionId id, bool isSet) { m_sessions.at(id).hasHandler = isSet; }

    /// The first half of a call: decides when the call finishes and what goes wrong with it.
    struct Begun
    {
        unsigned number = 0;                  ///< number of this call among those of its function, from 1
        std::chrono::milliseconds latency{};  ///< scenario time from now on; in virtual time finish() lets it pass
        std::chrono::milliseconds due{};
        modem::FaultEffect fault{};
    };
    Begun begin(SessionId id, Function function);
    /// The second half of a call: the modem's answer.
    modem::Reply finish(SessionId id, const Request& request, const Begun& begun);
    /// Replaces finish() for a call that nobody waits for any more.
    void abandon(SessionId id);
    /// Counts a call that is answered without the modem.
    void count(Function function);

    /// Events since the last call of takeEvents(), in order. They are for all clients with an open connection and a
    /// handler.
    std::vector<modem::Modem::Event> takeEvents();
    /// When to call takeEvents() next. In virtual time, those calls also let time go on while no client calls. Empty:
    /// after the next call.
    std::optional<Real::time_point> nextLook();
    /// Whether nextLook() would return a time, without calling it.
    bool wantsLook() const;

    std::chrono::milliseconds now() const { return m_clock.now(); }
    bool isVirtual() const { return m_clock.isVirtual(); }
    /// The next moment at which something happens without a call: an event, a change of reception, or in virtual time
    /// an epoch.
    std::optional<std::chrono::milliseconds> nextPlanned() const;
    /// Virtual time only: runs everything planned up to that time, in order.
    void advanceTo(std::chrono::milliseconds time);

    /// The RIL daemon is dead at present: the socket server must disconnect all clients.
    bool isOutage() const;

    // These do now what a scenario can plan, for a time or until taken back.
    void injectFault(modem::Fault fault);
    unsigned dropFaults(std::optional<std::size_t> request);
    std::vector<modem::Fault> injectedFaults() const { return m_faults.injected(); }
    /// The times of `events` count from now. Returns how many clients will receive them.
    unsigned injectEvents(std::vector<modem::TimedEvent> events);
    /// Injected events that are still to come.
    const std::deque<modem::TimedEvent>& injectedEvents() const { return m_injectedEvents; }
    void overrideLsta(modem::LstaSystem system, std::optional<modem::LstaLevel> level);
    void setNoFix(bool on, std::optional<std::chrono::milliseconds> duration);
    void setJammed(const BlockedSystems& systems, bool on, std::optional<std::chrono::milliseconds> duration);
    void injectOutage(std::chrono::milliseconds duration);
    void setRealisticLatency(bool on);
    void forceSetting(const std::string& key, const std::string& quoted);
    /// Sets the name that clients get for the raw output, for example that of a link.
    void setOutputName(const std::string& name) { m_modem.setRawOutput(name); }

    const modem::Modem& modem() const { return m_modem; }
    const RawOutput& output() const { return m_output; }
    /// Virtual time only: whether a reader has taken all raw output. Also writes more of it.
    bool isOutputTaken() { return m_output.feed().isReady(); }
    /// The present disturbances of reception, planned or injected.
    Interference interference() const;
    struct CallCount
    {
        unsigned count = 0;
        unsigned failed = 0;
    };
    const std::array<CallCount, kFunctions>& callCounts() const { return m_counts; }

    /// State that outlives the RIL daemon, since the modem goes on when the daemon dies.
    struct Memory
    {
        std::map<std::string, std::string> quotedSettings{};
        bool engineOn = false;
        std::array<std::optional<int>, modem::kLstaSystems> lstaPeriods{};  ///< in seconds, of enabled systems
        std::optional<std::chrono::milliseconds> time{};                    ///< empty before the first call
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
    std::vector<modem::Modem::Event> m_events{};       ///< events not fetched yet
    std::array<std::optional<Time>, kGnssSystemCount> m_jammedUntil{};
    std::optional<Time> m_noFixUntil{};
    std::optional<Time> m_outageUntil{};

    // virtual time only
    Real::time_point m_quietUntil{};               ///< virtual time stands still until then, unless a call comes
    std::optional<Real::time_point> m_failedAt{};  ///< when the last call was answered, if that was a failure
};

}  // namespace arcsim
