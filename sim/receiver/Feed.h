#pragma once

// The receiver's output device: a pseudo-terminal on which epochs of sentences arrive at their pace.

#include "receiver/Delivery.h"
#include "receiver/EpochSource.h"
#include "receiver/ReceiverTypes.h"

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace arcsim {

/// Writes a receiver's sentences to a pseudo-terminal while started: on its own thread, or in steps for which the owner
/// gives the time.
///
/// The terminal lives as long as the object, so its path stays valid over any number of starts. A reader that opens it
/// receives whole epochs from the next one on. While nobody has it open, epochs are dropped and counted. No function
/// waits for a reader; the pace decides what happens to epochs while a reader is slow.
///
/// All functions may be called from any thread. Failures are std::runtime_error.
class Feed
{
public:
    enum class Pace
    {
        real,   ///< by the clock; whole epochs are dropped while a slow reader leaves no room
        steps,  ///< no thread and no clock: time passes in step(); nothing is dropped for lack of room
    };
    using Counters = Delivery::Counters;

    /// Opens the terminal; loads the recording when the scenario names one. Throws when the terminal cannot be opened,
    /// the recording cannot be replayed or the scenario makes no sense. Nothing is written before start().
    Feed(ReceiverScenario scenario, const ReceiverSettings& settings, Pace pace = Pace::real);
    ~Feed();

    Feed(const Feed&) = delete;
    Feed& operator=(const Feed&) = delete;

    /// The device that a reader opens; it is in raw mode.
    const std::string& path() const { return m_delivery.path(); }

    /// Starts the engine: acquisition begins anew, the first epoch comes at the next whole period of UTC. Does nothing
    /// while started. `scenarioTime` is how far the scenario has come: UTC and the route start there. A recording
    /// starts from its beginning, and waits for a reader of the terminal if ReceiverScenario says so. `timeToFirstFix`
    /// replaces that of the scenario, for warm starts.
    void start(std::chrono::milliseconds scenarioTime = std::chrono::milliseconds(0));
    void start(std::chrono::milliseconds scenarioTime, std::chrono::milliseconds timeToFirstFix);

    /// Stops the engine; no byte is written after the return, which takes no longer than making one epoch. If the
    /// reader had no room for all of the last epoch, the rest comes after the next start. In steps, isReady() still
    /// writes epochs made before. Does nothing while stopped.
    void stop();
    bool isStarted() const;

    /// Takes effect at the next epoch. Epochs stay on whole periods of UTC; missed epochs of a shorter period are not
    /// made up. A recording ignores settings. Throws std::invalid_argument for a period or minimum elevation that
    /// ReceiverSettings does not list.
    void apply(const ReceiverSettings& settings);

    /// From the next epoch on no satellite of the system is tracked, as if jammed; kept over stop() and start().
    void setBlocked(GnssSystem system, bool blocked);

    /// From the next epoch on satellites are tracked, but there is no fix; kept over stop() and start().
    void setNoFix(bool noFix);

    /// The status at the last epoch. While stopped and before the first epoch it has no fix and no satellites.
    ReceiverStatus status() const;

    /// Counts since construction.
    Counters counters() const;

    /// Whether somebody has the terminal open.
    bool hasReader() const;

    // The following functions are for feeds in steps. All times are scenario times; the engine starts at the time given
    // to start(). With the real pace there is no next epoch, step() does nothing, and isReady() equals hasReader().

    /// When the next epoch comes; empty while stopped, after the end of a recording, and while a recording waits for a
    /// reader. A waiting recording begins at the latest time known when start(), isReady() or step() first finds a
    /// reader.
    std::optional<std::chrono::milliseconds> nextEpoch() const;

    /// Whether a reader is there and has taken every byte of all epochs so far. Also writes data still kept for the
    /// reader, so ask again until the answer is true. Takes about ten microseconds.
    bool isReady();

    /// Makes all epochs due up to that time that were not made yet, in order, with the present settings and blocked
    /// systems. They go to the present reader; data without room is kept for isReady(). To change settings between two
    /// epochs, first step to the time of the change. A time before an earlier one changes nothing.
    void step(std::chrono::milliseconds scenarioTime);

private:
    void run();
    std::string take(std::chrono::milliseconds sinceEngineStart);
    std::optional<std::chrono::milliseconds> nextStep() const;
    void lookForReader();

    const ReceiverScenario m_scenario;
    const Pace m_pace;

    std::mutex m_lifecycle;  // serialises start() and stop(); taken before m_mutex

    // guarded by m_mutex
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    mutable Delivery m_delivery;  // except for its path; outlives every start. Mutable, since a look may find that the
                                  // reader has gone.
    std::unique_ptr<EpochSource> m_source;
    ReceiverSettings m_settings;
    Interference m_interference;
    ReceiverStatus m_status;
    bool m_started = false;
    bool m_awaitsReader = false;     // the recording has not begun
    bool m_settingsChanged = false;  // used with the real pace only

    // Guarded by m_mutex and used in steps only. Scenario times except for the last.
    std::chrono::milliseconds m_now{};
    std::chrono::milliseconds m_sourceStart{};
    std::optional<std::chrono::milliseconds> m_readerSince;  // when it was first seen
    std::chrono::milliseconds m_last{};                      // epoch made, from m_sourceStart on

    std::thread m_thread;  // guarded by m_lifecycle; last, since it uses all of the above
};

}  // namespace arcsim
