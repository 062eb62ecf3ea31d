#include "receiver/Feed.h"

#include "receiver/Receiver.h"
#include "receiver/Replay.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace arcsim {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

// How soon a reader that has made room gets the rest of its epoch.
constexpr milliseconds kPendingRetry{5};

std::unique_ptr<EpochSource> sourceFor(const ReceiverScenario& scenario, milliseconds scenarioTime)
{
    if (!scenario.replayFile.empty())
        return std::make_unique<Replay>(scenario.replayFile, scenario.replaySpeed, scenario.replayLoop);
    return std::make_unique<Receiver>(scenario, scenarioTime);
}

}  // namespace

Feed::Feed(ReceiverScenario scenario, const ReceiverSettings& settings)
    : m_scenario(std::move(scenario)), m_settings(settings)
{
    requireAccepted(settings);
    m_source = sourceFor(m_scenario, milliseconds(0));  // now, so that a bad scenario fails here and not in start()
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
    if (m_thread.joinable())
        return;
    ReceiverScenario scenario = m_scenario;
    scenario.timeToFirstFix = timeToFirstFix;
    std::unique_ptr<EpochSource> source = sourceFor(scenario, scenarioTime);
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_source = std::move(source);
        m_started = true;
        m_settingsChanged = false;
    }
    try {
        m_thread = std::thread([this] { run(); });
    } catch (...) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_started = false;
        throw;
    }
}

void Feed::stop()
{
    const std::lock_guard<std::mutex> lifecycle(m_lifecycle);
    if (!m_thread.joinable())
        return;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_started = false;
    }
    m_changed.notify_all();
    m_thread.join();
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
    }
    m_changed.notify_all();
}

void Feed::setBlocked(GnssSystem system, bool blocked)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_blocked[indexOf(system)] = blocked;
}

ReceiverStatus Feed::status() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_status;
}

Feed::Counters Feed::counters() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_counters;
}

void Feed::run()
{
    const Clock::time_point start = Clock::now();
    milliseconds last(-1);
    std::unique_lock<std::mutex> lock(m_mutex);
    while (m_started) {
        if (std::exchange(m_settingsChanged, false))  // epochs that a shorter period would have had are not made up
            last = std::max(last, std::chrono::duration_cast<milliseconds>(Clock::now() - start) - milliseconds(1));
        const std::optional<milliseconds> due = m_source->next(m_settings, last);
        const auto interrupted = [this] { return !m_started || m_settingsChanged; };
        if (!due && m_pending.empty()) {
            m_changed.wait(lock, interrupted);
            continue;
        }
        Clock::time_point until = due ? start + *due : Clock::time_point::max();
        if (!m_pending.empty())
            until = std::min(until, Clock::now() + kPendingRetry);
        m_changed.wait_until(lock, until, interrupted);
        if (!m_started)
            return;
        m_terminal.discardInput();
        sendPending();
        if (due && Clock::now() >= start + *due) {
            last = *due;
            EpochSource::Epoch epoch = m_source->take(m_settings, m_blocked, last);
            m_status = epoch.status;
            send(std::move(epoch.bytes));
        }
    }
}

void Feed::send(std::string epoch)
{
    if (!m_terminal.hasReader()) {
        ++m_counters.unheard;
        return;
    }
    if (!m_pending.empty()) {
        ++m_counters.dropped;
        return;
    }
    m_pending = std::move(epoch);
    m_pendingBegun = false;
    sendPending();
    if (!m_pending.empty() && !m_pendingBegun) {  // not a byte fitted: it may go as a whole
        m_pending.clear();
        ++m_counters.dropped;
    }
}

void Feed::sendPending()
{
    if (!m_terminal.hasReader()) {
        forgetReader();
        return;
    }
    m_hadReader = true;
    if (m_pending.empty())
        return;
    const std::size_t count = m_terminal.write(m_pending);
    m_pendingBegun = m_pendingBegun || count > 0;
    m_pending.erase(0, count);
    m_counters.written += m_pending.empty() ? 1 : 0;
}

void Feed::forgetReader()
{
    if (!std::exchange(m_hadReader, false))
        return;
    m_counters.unheard += m_pending.empty() ? 0 : 1;
    m_pending.clear();
    try {
        m_terminal.reset();
    } catch (const std::runtime_error&) {
        m_hadReader = true;  // no descriptor to be had now; the next epoch tries again
    }
}

}  // namespace arcsim
