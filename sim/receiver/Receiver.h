#pragma once

#include "receiver/Constellation.h"
#include "receiver/Dop.h"
#include "receiver/EpochSource.h"
#include "receiver/Route.h"

#include <optional>
#include <vector>

namespace arcsim {

/// A satellite above the minimum elevation of an enabled system.
struct Observation
{
    SatelliteId id;
    LookAngle look;
    double rangeRateMps = 0;           ///< positive while it moves away
    std::optional<int> carrierDbHz{};  ///< C/N0; empty until it is tracked
    bool used = false;                 ///< in the fix
};

/// All that a receiver knows at one moment.
struct Solution
{
    std::chrono::system_clock::time_point utc{};
    bool timeKnown = false;  ///< from the first tracked satellite on
    FixState fix = FixState::None;
    Motion motion;  ///< with measurement error; all 0 without a fix
    double geoidSeparationM = 0;
    Dop dop;
    std::vector<Observation> observations;  ///< by system, then by number
};

/// Simulates a receiver's measurements and sentences. A pure function of scenario and time: the same seed gives the
/// same bytes, in whatever order epochs are requested.
///
/// From a cold start satellites are acquired one by one, all of GPS before the time to first fix; then the fix is
/// two-dimensional for a tenth of that time, two seconds at most, and three-dimensional from there on. Fewer than four
/// tracked satellites make it two-dimensional, fewer than three end it. The scenario's planned jamming and lost fixes
/// are added to those that the caller gives.
class Receiver : public EpochSource
{
public:
    /// The engine starts at scenario time `engineStart`. UTC and the route count from the scenario's start; acquisition
    /// and all times given to the functions below count from the engine's start. Throws like Route, and for a time to
    /// first fix or a carrier offset that ReceiverScenario does not allow.
    explicit Receiver(const ReceiverScenario& scenario,
                      std::chrono::milliseconds engineStart = std::chrono::milliseconds(0));

    Solution solve(const ReceiverSettings& settings, const Interference& interference,
                   std::chrono::milliseconds sinceEngineStart) const;

    /// The sentences of one epoch, with CR LF after each.
    std::string epoch(const ReceiverSettings& settings, std::chrono::milliseconds sinceEngineStart,
                      const BlockedSystems& blocked = {}) const;

    /// Epochs lie on whole periods of UTC.
    std::optional<std::chrono::milliseconds> next(const ReceiverSettings& settings,
                                                  std::chrono::milliseconds last) override;
    Epoch take(const ReceiverSettings& settings, const Interference& interference,
               std::chrono::milliseconds at) override;

private:
    std::vector<Observation> observe(const ReceiverSettings& settings, const BlockedSystems& blocked,
                                     const Motion& truth, std::chrono::milliseconds sinceEngineStart) const;
    std::chrono::milliseconds acquisitionTime(SatelliteId id) const;
    int carrierDbHz(SatelliteId id, double elevationDeg, std::chrono::system_clock::time_point utc) const;
    Motion measured(const Motion& truth, std::chrono::system_clock::time_point utc) const;
    std::chrono::system_clock::time_point utcAt(std::chrono::milliseconds sinceEngineStart) const;

    ReceiverScenario m_scenario;
    std::chrono::milliseconds m_engineStart;
    Route m_route;
    Constellation m_constellation;
};

/// Throws std::invalid_argument for a period or minimum elevation that a receiver does not know.
void requireAccepted(const ReceiverSettings& settings);

/// The interference that the scenario itself plans for that moment.
Interference interferenceAt(const ReceiverScenario& scenario, std::chrono::milliseconds scenarioTime);

ReceiverStatus statusOf(const Solution& solution);

}  // namespace arcsim
