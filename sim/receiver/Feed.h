#pragma once

// The receiver's output device: a pseudo-terminal on which epochs of sentences arrive at their own pace.

#include "receiver/EpochSource.h"
#include "receiver/PseudoTerminal.h"
#include "receiver/ReceiverTypes.h"

#include <array>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace arcsim {

/// Writes what a receiver says to a pseudo-terminal, on a thread of its own while it is started.
///
/// The terminal lives as long as the object, so its path stays valid over any number of starts. A reader that opens it
/// receives whole epochs from the next one on. While nobody has it open, or while the reader is so slow that an epoch
/// does not fit, epochs are dropped whole and counted; nothing here ever waits for a reader.
///
/// All functions may be called from any thread. Failures are std::runtime_error.
class Feed
{
public:
    struct Counters
    {
        std::uint64_t written = 0;  ///< epochs handed over completely
        std::uint64_t unheard = 0;  ///< epochs dropped because nobody had the terminal open
        std::uint64_t dropped = 0;  ///< epochs dropped because the reader had not made room
    };

    /// Opens the terminal; loads the recording when the scenario names one. Throws when the terminal cannot be opened,
    /// the recording cannot be replayed or the scenario makes no sense. Nothing is written before start().
    Feed(ReceiverScenario scenario, const ReceiverSettings& settings);
    ~Feed();

    Feed(const Feed&) = delete;
    Feed& operator=(const Feed&) = delete;

    /// The device that a reader opens; it is in raw mode.
    const std::string& path() const { return m_terminal.path(); }

    /// Starts the engine: acquisition begins anew, the first epoch comes at the next whole period of UTC. Does nothing
    /// while started.
    /// `scenarioTime` is how far the scenario has come: UTC and the route start there. A recording starts from its
    /// beginning. `timeToFirstFix` replaces that of the scenario, for warm starts.
    void start(std::chrono::milliseconds scenarioTime = std::chrono::milliseconds(0));
    void start(std::chrono::milliseconds scenarioTime, std::chrono::milliseconds timeToFirstFix);

    /// Stops the engine; no byte is written after the return, which takes no longer than making one epoch. When the
    /// reader had made no room for all of the last epoch, the rest comes after the next start. Does nothing while
    /// stopped.
    void stop();
    bool isStarted() const;

    /// Takes effect at the next epoch; epochs stay on whole periods of UTC. A recording heeds no settings.
    /// Throws std::invalid_argument for a period or minimum elevation that ReceiverSettings does not name.
    void apply(const ReceiverSettings& settings);

    /// From the next epoch on no satellite of the system is tracked, as if jammed; kept over stop() and start().
    void setBlocked(GnssSystem system, bool blocked);

    /// As of the last epoch; without a fix and without satellites while stopped and before the first epoch.
    ReceiverStatus status() const;

    /// Since construction.
    Counters counters() const;

private:
    void run();
    void send(std::string epoch);
    void sendPending();
    void forgetReader();

    const ReceiverScenario m_scenario;
    PseudoTerminal m_terminal;  // used by m_thread only, except for its path; outlives every start

    std::mutex m_lifecycle;  // serialises start() and stop(); taken before m_mutex

    // guarded by m_mutex
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::unique_ptr<EpochSource> m_source;
    ReceiverSettings m_settings;
    std::array<bool, kGnssSystemCount> m_blocked{};
    ReceiverStatus m_status;
    Counters m_counters;
    std::string m_pending;        // rest of an epoch that the reader has not made room for yet
    bool m_pendingBegun = false;  // some of that epoch is out, so the rest must follow before anything else
    bool m_hadReader = false;     // since the terminal was last reset
    bool m_started = false;
    bool m_settingsChanged = false;

    std::thread m_thread;  // guarded by m_lifecycle; last, since it uses all of the above
};

}  // namespace arcsim
