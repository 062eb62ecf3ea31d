#pragma once

#include "modem/Modem.h"
#include "receiver/Feed.h"
#include "scenario/ScenarioFile.h"

#include <chrono>
#include <string>

namespace arcsim {

/// The receiver's form of the settings. A value that the receiver does not know (forced past the modem's checks) is
/// replaced by the factory value.
ReceiverSettings receiverSettingsOf(const modem::Settings& settings);

/// The receiver's feed, kept in step with the modem's state. Calls must not overlap.
class RawOutput
{
public:
    /// Throws std::runtime_error when this scenario's output cannot be created.
    RawOutput(const ReceiverScenario& scenario, const modem::Settings& settings, Feed::Pace pace)
        : m_feed(scenario, receiverSettingsOf(settings), pace), m_appliedChanges(settings.changes())
    {
    }

    modem::Reception receptionOf(modem::LstaSystem system) const;

    /// Brings the feed in line with the modem's state at `now`: starts or stops it and passes changed settings and
    /// interference. Throws std::runtime_error when the feed cannot start.
    void follow(const modem::Modem& modem, const Interference& interference, std::chrono::milliseconds now);
    void stop() { m_feed.stop(); }

    Feed& feed() { return m_feed; }
    const Feed& feed() const { return m_feed; }

private:
    Feed m_feed;
    unsigned m_appliedChanges;  ///< count of setting changes that the feed has received
};

}  // namespace arcsim
