#pragma once

#include "client/CallBook.h"
#include "client/Notifier.h"
#include "host/RawOutput.h"
#include "modem/Modem.h"
#include "scenario/ScenarioFile.h"

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace arcsim {

/// The one simulated modem of the process with everything around it that the client library does: the record of calls,
/// scripted answers, faults and latencies of the scenario, and notifications.
///
/// Never destroyed: at exit threads of the application may still be inside it. All functions may be called from any
/// thread. The mutex is never held while a call waits, runs an Answer's `during` or the handler runs.
class Simulator
{
public:
    static Simulator& instance();

    /// What the modem answers to one call at `now`, asked while the simulator is locked.
    using Ask = std::function<modem::Reply(modem::Modem& modem, std::chrono::milliseconds now)>;
    struct Outcome
    {
        Answer answer{};
        bool scripted = false;  ///< then the code stays as it is, whether the texts fit or not
    };
    /// The whole life of one call: noted, delayed, answered by script, fault or modem.
    Outcome call(Function function, std::vector<std::string> arguments, const Ask& ask);

    void reset();
    void setRealisticLatency(bool on);
    /// Runs `use` with the locked modem at the present time. False when the raw output could not follow.
    bool withModem(const std::function<void(modem::Modem& modem, std::chrono::milliseconds now)>& use);
    /// The same text with a life as long as the process.
    const char* keepText(const std::string& text);

    CallBook& book() { return m_book; }
    Notifier& notifier() { return m_notifier; }

private:
    Simulator();

    void prepare();
    std::chrono::milliseconds now() const;
    bool followModem();
    void useLatency(bool realistic);
    Answer askModem(Function function, unsigned number, const Ask& ask);
    Notifier::Due takeDueEvents();
    void shutDown();

    CallBook m_book;
    Notifier m_notifier;

    // guarded by m_mutex
    mutable std::mutex m_mutex;
    modem::Scenario m_scenario;
    std::unique_ptr<modem::FaultPlan> m_faults;
    bool m_usable = false;                   ///< the scenario can be simulated
    std::unique_ptr<RawOutput> m_rawOutput;  ///< null while not usable
    std::unique_ptr<modem::Modem> m_modem;
    bool m_realisticLatency = true;
    std::optional<std::chrono::steady_clock::time_point> m_begin{};  ///< of the scenario: the first call
    std::set<std::string> m_keptTexts;
};

}  // namespace arcsim
