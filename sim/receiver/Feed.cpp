#include "receiver/Feed.h"

#include "receiver/BackgroundThread.h"
#include "receiver/Receiver.h"
#include "receiver/Replay.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace arcsim {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

// How often to check whether a reader has made room for the rest of its epoch.
constexpr milliseconds kPendingRetry{5};

// How often to look for a reader that a recording waits for; nothing reports the opening of the terminal.
constexpr milliseconds kReaderRetry{10};

std::unique_ptr<EpochSource> sourceFor(const ReceiverScenario& scenario, milliseconds scenarioTime)
{
    if (!scenario.replayFile.empty())
        return std::make_unique<Replay>(scenario.replayFile, scenario.replaySpeed, scenario.replayLoop);
    return std::make_unique<Receiver>(scenario, scenarioTime);
}

}  // namespace

Feed::Feed(ReceiverScenario scenario, const ReceiverSettings& settings, Pace pace)
    : m_scenario(std::move(scenario)), m_pace(pace), m_settings(settings)
{
    requireAccepted(settings);
    m_source = sourceFor(m_scenario, milliseconds(0));  // here, so that a bad scenario fails before start()
}

Feed::~Feed()
{
    stop();
}

void Feed::start(milliseconds scenarioTime)
{
    start(scenarioTime, m_scenario.timeToFirstFix);
}

void Feed::start(milliseconds scenarioTime, milliseconds timeToFirstFix)
{
    const std::lock_guard<std::mutex> lifecycle(m_lifecycle);
    if (isStarted())
        return;
    ReceiverScenario scenario = m_scenario;
    scenario.timeToFirstFix = timeToFirstFix;
    std::unique_ptr<EpochSource> source = sourceFor(scenario, scenarioTime);
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_source = std::move(source);
        m_started = true;
        m_settingsChanged = false;
        m_last = milliseconds(-1);
        m_sourceStart = scenarioTime;
        m_now = scenarioTime;
        m_awaitsReader = !scenario.replayFile.empty() && scenario.replayWaitsForReader;
        m_readerSince.reset();
        lookForReader();
    }
    if (m_pace == Pace::steps)
        return;
    try {
        m_thread = backgroundThread([this] { run(); });
    } catch (...) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_started = false;
        throw;
    }
}

void Feed::stop()
{
    const std::lock_guard<std::mutex> lifecycle(m_lifecycle);
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_started = false;
    }
    if (m_thread.joinable()) {
        m_changed.notify_all();
        m_thread.join();
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_status = {};
}

bool Feed::isStarted() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_started;
}

void Feed::apply(const ReceiverSettings& settings)
{
    requireAccepted(settings);
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_settings = settings;
        m_settingsChanged = true;
        m_last = std::max(m_last, m_now - m_sourceStart - milliseconds(1));
    }
    m_changed.notify_all();
}

void Feed::setBlocked(GnssSystem system, bool blocked)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_interference.blocked[indexOf(system)] = blocked;
}

void Feed::setNoFix(bool noFix)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_interference.noFix = noFix;
}

ReceiverStatus Feed::status() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_status;
}

Feed::Counters Feed::counters() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_delivery.counters();
}

bool Feed::hasReader() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_delivery.hasReader();
}

std::optional<milliseconds> Feed::nextEpoch() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return nextStep();
}

bool Feed::isReady()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_pace == Pace::real)
        return m_delivery.hasReader();
    lookForReader();
    return m_delivery.advance();
}

void Feed::step(milliseconds scenarioTime)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_now = std::max(m_now, scenarioTime);
    lookForReader();
    for (std::optional<milliseconds> due; (due = nextStep()) && *due <= scenarioTime;) {
        if (std::exchange(m_awaitsReader, false))
            m_sourceStart = *due;
        m_last = *due - m_sourceStart;
        m_delivery.keep(take(m_last));
    }
    if (m_pace == Pace::steps)
        m_delivery.advance();
}

std::optional<milliseconds> Feed::nextStep() const
{
    if (m_pace != Pace::steps || !m_started)
        return std::nullopt;
    if (m_awaitsReader)
        return m_delivery.hasReader() ? std::optional(m_readerSince.value_or(m_now)) : std::nullopt;
    const std::optional<milliseconds> next = m_source->next(m_settings, m_last);
    return next ? std::optional(m_sourceStart + *next) : std::nullopt;
}

void Feed::lookForReader()
{
    if (!m_delivery.hasReader())
        m_readerSince.reset();
    else if (!m_readerSince)
        m_readerSince = m_now;
}

std::string Feed::take(milliseconds sinceEngineStart)
{
    EpochSource::Epoch epoch = m_source->take(m_settings, m_interference, sinceEngineStart);
    m_status = epoch.status;
    return std::move(epoch.bytes);
}

void Feed::run()
{
    Clock::time_point start = Clock::now();
    milliseconds last(-1);
    std::unique_lock<std::mutex> lock(m_mutex);
    while (m_started) {
        if (m_awaitsReader && !m_delivery.hasReader()) {
            m_changed.wait_for(lock, kReaderRetry, [this] { return !m_started; });
            continue;
        }
        if (std::exchange(m_awaitsReader, false))
            start = Clock::now();
        if (std::exchange(m_settingsChanged, false))  // missed epochs of a shorter period are not made up
            last = std::max(last, std::chrono::duration_cast<milliseconds>(Clock::now() - start) - milliseconds(1));
        const std::optional<milliseconds> due = m_source->next(m_settings, last);
        const auto interrupted = [this] { return !m_started || m_settingsChanged; };
        if (!due && !m_delivery.hasRest()) {
            m_changed.wait(lock, interrupted);
            continue;
        }
        Clock::time_point until = due ? start + *due : Clock::time_point::max();
        if (m_delivery.hasRest())
            until = std::min(until, Clock::now() + kPendingRetry);
        m_changed.wait_until(lock, until, interrupted);
        if (!m_started)
            return;
        m_delivery.sendRest();
        if (due && Clock::now() >= start + *due) {
            last = *due;
            m_delivery.sendOrDrop(take(last));
        }
    }
}

}  // namespace arcsim
