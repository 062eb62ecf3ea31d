#pragma once

#include "modem/Modem.h"
#include "receiver/Feed.h"
#include "scenario/ScenarioFile.h"

#include <chrono>
#include <string>

namespace arcsim {

/// Settings as the receiver takes them. A value that no receiver knows (forced past the modem's checks) counts as the
/// factory's.
ReceiverSettings receiverSettingsOf(const modem::Settings& settings);

/// The receiver's feed, kept in step with the modem's state. Calls must not overlap.
class RawOutput
{
public:
    /// Throws std::runtime_error when there can be no output for this scenario.
    RawOutput(const ReceiverScenario& scenario, const modem::Settings& settings, Feed::Pace pace)
        : m_feed(scenario, receiverSettingsOf(settings), pace), m_appliedChanges(settings.changes())
    {
    }

    modem::Reception receptionOf(modem::LstaSystem system) const;

    /// Starts or stops the feed, hands it changed settings and interference, all as the modem is at `now`. Throws
    /// std::runtime_error when the feed cannot start.
    void follow(const modem::Modem& modem, const Interference& interference, std::chrono::milliseconds now);
    void stop() { m_feed.stop(); }

    Feed& feed() { return m_feed; }
    const Feed& feed() const { return m_feed; }

private:
    Feed m_feed;
    unsigned m_appliedChanges;  ///< what of the settings the feed knows
};

}  // namespace arcsim
