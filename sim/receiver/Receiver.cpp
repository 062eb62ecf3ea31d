#include "receiver/Receiver.h"

#include "receiver/Nmea.h"
#include "receiver/NmeaOutput.h"
#include "receiver/Noise.h"
#include "receiver/RawOutput.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace arcsim {

namespace {

using std::chrono::milliseconds;

constexpr double kGeoidSeparationM = 36.7;      // right near the default route; elsewhere merely plausible
constexpr std::size_t kMostUsedPerSystem = 12;  // the room in a GSA sentence
constexpr milliseconds kLongest2D = std::chrono::seconds(2);

std::uint64_t keyOf(SatelliteId id)
{
    return indexOf(id.system) * 1000 + static_cast<std::uint64_t>(id.number);
}

bool byHeight(const Observation* left, const Observation* right)
{
    return left->look.elevationDeg > right->look.elevationDeg;
}

/// Satellites good for a fix, highest first; SBAS brings corrections but no ranges.
std::vector<Observation*> candidates(std::vector<Observation>& observations)
{
    std::vector<Observation*> all;
    for (const GnssSystem system : kGnssSystems) {
        std::vector<Observation*> own;
        for (Observation& observation : observations)
            if (observation.id.system == system && system != GnssSystem::Sbas && observation.carrierDbHz)
                own.push_back(&observation);
        std::sort(own.begin(), own.end(), byHeight);
        own.resize(std::min(own.size(), kMostUsedPerSystem));
        all.insert(all.end(), own.begin(), own.end());
    }
    std::stable_sort(all.begin(), all.end(), byHeight);
    return all;
}

/// Marks the satellites of the fix and fills in its state and geometry.
void fixPosition(Solution& solution, bool only2D)
{
    std::vector<Observation*> fixing = candidates(solution.observations);
    if (fixing.size() < 3)
        return;
    if (only2D)
        fixing.resize(3);
    std::vector<LookAngle> looks;
    for (Observation* observation : fixing) {
        observation->used = true;
        looks.push_back(observation->look);
    }
    solution.fix = fixing.size() < 4 ? FixState::Fix2D : FixState::Fix3D;
    solution.dop = solution.fix == FixState::Fix2D ? dopAtKnownHeight(looks) : dopOf(looks);
}

}  // namespace

void requireAccepted(const ReceiverSettings& settings)
{
    const auto period = settings.period.count();
    if (period != 1000 && period != 500 && period != 200 && period != 100)
        throw std::invalid_argument("output period " + std::to_string(period) +
                                    " ms; accepted are 1000, 500, 200 and 100");
    if (settings.minElevationDeg < 5 || settings.minElevationDeg > 45)
        throw std::invalid_argument("minimum elevation " + std::to_string(settings.minElevationDeg) +
                                    " degrees; accepted are 5 to 45");
}

Receiver::Receiver(const ReceiverScenario& scenario, milliseconds engineStart)
    : m_scenario(scenario), m_engineStart(engineStart), m_route(scenario.route), m_constellation(scenario.seed)
{
    if (scenario.timeToFirstFix < milliseconds(0))
        throw std::runtime_error("time to first fix " + std::to_string(scenario.timeToFirstFix.count()) +
                                 " ms; accepted are 0 and more");
    if (!(std::abs(scenario.carrierOffsetDbHz) <= 60))  // true for NaN
        throw std::runtime_error("carrier offset " + nmea::number(scenario.carrierOffsetDbHz, 1) +
                                 " dB-Hz; accepted are -60 to 60");
}

Solution Receiver::solve(const ReceiverSettings& settings, const Interference& interference,
                         milliseconds sinceEngineStart) const
{
    const milliseconds scenarioTime = m_engineStart + sinceEngineStart;
    Interference all = interferenceAt(m_scenario, scenarioTime);
    all.noFix = all.noFix || interference.noFix;
    for (std::size_t i = 0; i < kGnssSystemCount; ++i)
        all.blocked[i] = all.blocked[i] || interference.blocked[i];

    Solution solution;
    solution.utc = utcAt(sinceEngineStart);
    solution.geoidSeparationM = kGeoidSeparationM;
    const Motion truth = m_route.at(scenarioTime);
    solution.observations = observe(settings, all.blocked, truth, sinceEngineStart);
    for (const Observation& observation : solution.observations)
        solution.timeKnown = solution.timeKnown || observation.carrierDbHz;

    const milliseconds ttff = m_scenario.timeToFirstFix;
    if (sinceEngineStart >= ttff && !all.noFix)
        fixPosition(solution, sinceEngineStart < ttff + std::min(kLongest2D, ttff / 10));
    if (solution.fix != FixState::None)
        solution.motion = measured(truth, solution.utc);
    return solution;
}

std::string Receiver::epoch(const ReceiverSettings& settings, milliseconds sinceEngineStart,
                            const BlockedSystems& blocked) const
{
    const Solution solution = solve(settings, {blocked, false}, sinceEngineStart);
    return settings.format == OutputFormat::Raw ? rawEpoch(solution) : nmeaEpoch(solution, settings);
}

std::optional<milliseconds> Receiver::next(const ReceiverSettings& settings, milliseconds last)
{
    const milliseconds first = std::max(last + milliseconds(1), milliseconds(0));
    const auto utc = std::chrono::duration_cast<milliseconds>(utcAt(first).time_since_epoch());
    const milliseconds past = utc % settings.period;
    return past.count() == 0 ? first : first + settings.period - past;
}

EpochSource::Epoch Receiver::take(const ReceiverSettings& settings, const Interference& interference, milliseconds at)
{
    const Solution solution = solve(settings, interference, at);
    return {settings.format == OutputFormat::Raw ? rawEpoch(solution) : nmeaEpoch(solution, settings),
            statusOf(solution)};
}

std::vector<Observation> Receiver::observe(const ReceiverSettings& settings, const BlockedSystems& blocked,
                                           const Motion& truth, milliseconds sinceEngineStart) const
{
    const auto utc = utcAt(sinceEngineStart);
    const Geodetic place{truth.latitudeDeg, truth.longitudeDeg, truth.altitudeM + kGeoidSeparationM};
    std::vector<Observation> observations;
    for (std::size_t i = 0; i < m_constellation.size(); ++i) {
        Observation observation;
        observation.id = m_constellation.id(i);
        if (!m_scenario.systems[indexOf(observation.id.system)])
            continue;
        observation.look = lookAngle(place, m_constellation.position(i, utc));
        if (!isEnabled(settings, observation.id.system) || observation.look.elevationDeg < settings.minElevationDeg)
            continue;
        const LookAngle later = lookAngle(place, m_constellation.position(i, utc + std::chrono::seconds(1)));
        observation.rangeRateMps = later.rangeM - observation.look.rangeM;
        if (!blocked[indexOf(observation.id.system)] && sinceEngineStart >= acquisitionTime(observation.id))
            observation.carrierDbHz = carrierDbHz(observation.id, observation.look.elevationDeg, utc);
        observations.push_back(observation);
    }
    std::stable_sort(observations.begin(), observations.end(), [](const Observation& left, const Observation& right) {
        return keyOf(left.id) < keyOf(right.id);
    });
    return observations;
}

milliseconds Receiver::acquisitionTime(SatelliteId id) const
{
    // GPS comes first. The other systems are searched for once GPS time is known, so they take up to half as long
    // again.
    const double earliest = id.system == GnssSystem::Gps ? 0.2 : 0.4;
    const double latest = id.system == GnssSystem::Gps ? 0.95 : 1.5;
    const double part = earliest + (latest - earliest) * noise({m_scenario.seed, keyOf(id), 3});
    return milliseconds(std::llround(part * static_cast<double>(m_scenario.timeToFirstFix.count())));
}

int Receiver::carrierDbHz(SatelliteId id, double elevationDeg, std::chrono::system_clock::time_point utc) const
{
    constexpr double kAtHorizonDbHz = 29;
    constexpr double kGainAtZenithDb = 18;
    constexpr double kNoiseDb = 2;
    const auto second = std::chrono::duration_cast<std::chrono::seconds>(utc.time_since_epoch()).count();
    const double random = noise({m_scenario.seed, keyOf(id), 4, static_cast<std::uint64_t>(second)});
    const double dbHz = kAtHorizonDbHz + kGainAtZenithDb * std::sin(elevationDeg * kRadPerDeg) +
                        kNoiseDb * (2 * random - 1) + m_scenario.carrierOffsetDbHz;
    return static_cast<int>(std::lround(std::clamp(dbHz, 0.0, 60.0)));
}

Motion Receiver::measured(const Motion& truth, std::chrono::system_clock::time_point utc) const
{
    // A receiver's errors drift, they do not jump: three waves per axis, with amplitudes of 1.05 m in total.
    constexpr double kPeriodsS[] = {17, 71, 293};
    constexpr double kHeightsM[] = {0.15, 0.3, 0.6};
    const double timeS = std::chrono::duration<double>(utc.time_since_epoch()).count();
    const auto errorM = [&](std::uint64_t axis) {
        double sum = 0;
        for (std::size_t i = 0; i < 3; ++i)
            sum +=
                kHeightsM[i] *
                std::sin(2 * kPi * (std::fmod(timeS, kPeriodsS[i]) / kPeriodsS[i] + noise({m_scenario.seed, axis, i})));
        return sum;
    };
    Motion motion = truth;
    motion.latitudeDeg += errorM(5) / northMetresPerDeg(truth.latitudeDeg);
    motion.longitudeDeg += errorM(6) / eastMetresPerDeg(truth.latitudeDeg);
    motion.altitudeM += 2 * errorM(7);  // the vertical error is about twice as large, since no satellites are below
    return motion;
}

std::chrono::system_clock::time_point Receiver::utcAt(milliseconds sinceEngineStart) const
{
    return m_scenario.startUtc + m_engineStart + sinceEngineStart;
}

Interference interferenceAt(const ReceiverScenario& scenario, milliseconds scenarioTime)
{
    const auto isIn = [scenarioTime](const auto& span) {
        return scenarioTime >= span.from && scenarioTime < span.until;
    };
    Interference planned;
    for (const Jamming& span : scenario.jamming) {
        if (!isIn(span))
            continue;
        for (std::size_t i = 0; i < kGnssSystemCount; ++i)
            planned.blocked[i] = planned.blocked[i] || span.systems[i];
    }
    planned.noFix = std::any_of(scenario.noFix.begin(), scenario.noFix.end(), isIn);
    return planned;
}

ReceiverStatus statusOf(const Solution& solution)
{
    ReceiverStatus status;
    status.fix = solution.fix;
    status.utc = solution.utc;
    status.latitudeDeg = solution.motion.latitudeDeg;
    status.longitudeDeg = solution.motion.longitudeDeg;
    status.altitudeM = solution.motion.altitudeM;
    status.speedMps = solution.motion.speedMps;
    status.courseDeg = solution.motion.courseDeg;
    for (const Observation& observation : solution.observations) {
        SystemStatus& system = status.systems[indexOf(observation.id.system)];
        ++system.inView;
        if (!observation.carrierDbHz)
            continue;
        system.meanCarrierDbHz =
            (system.meanCarrierDbHz * system.tracked + *observation.carrierDbHz) / (system.tracked + 1);
        ++system.tracked;
        system.used += observation.used ? 1 : 0;
    }
    return status;
}

}  // namespace arcsim
