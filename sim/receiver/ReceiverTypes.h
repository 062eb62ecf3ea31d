#pragma once

// The input of a receiver (scenario, settings) and its output (status). Plain values.

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace arcsim {

enum class GnssSystem
{
    Gps,
    Glonass,
    Galileo,
    Beidou,
    Qzss,
    Sbas,
};
inline constexpr std::size_t kGnssSystemCount = 6;

constexpr std::size_t indexOf(GnssSystem system)
{
    return static_cast<std::size_t>(system);
}

inline constexpr std::array<GnssSystem, kGnssSystemCount> kGnssSystems{
    GnssSystem::Gps, GnssSystem::Glonass, GnssSystem::Galileo, GnssSystem::Beidou, GnssSystem::Qzss, GnssSystem::Sbas};

enum class OutputFormat
{
    Nmea,  ///< standard sentences, see NmeaOutput.h
    Raw,   ///< one proprietary sentence per satellite, see RawOutput.h
};

/// Settings that the application can change while the receiver runs. GPS is always on.
struct ReceiverSettings
{
    OutputFormat format = OutputFormat::Nmea;
    std::chrono::milliseconds period{1000};  ///< 1000, 500, 200 or 100
    bool glonass = true;
    bool galileo = true;
    bool beidou = true;
    bool qzss = true;
    bool sbas = true;
    int minElevationDeg = 5;  ///< 5 to 45; satellites below are neither used nor reported
};

bool isEnabled(const ReceiverSettings& settings, GnssSystem system);

struct Waypoint
{
    double latitudeDeg = 0;
    double longitudeDeg = 0;
    double altitudeM = 0;               ///< above mean sea level
    double speedMps = 0;                ///< on the way to the next waypoint; ignored in the last one
    std::chrono::milliseconds wait{0};  ///< how long the vehicle stands here before it goes on
};

/// A drive of just under ten minutes through the middle of Tokyo, where every supported system is in view.
std::vector<Waypoint> defaultRoute();

/// 2024-06-12 03:00:00 UTC. Fixed, so that the same scenario gives the same bytes on every day.
std::chrono::system_clock::time_point defaultStartUtc();

/// A stretch of scenario time in which some systems are not received.
struct Jamming
{
    std::chrono::milliseconds from{};
    std::chrono::milliseconds until{};             ///< excluded
    std::array<bool, kGnssSystemCount> systems{};  ///< by indexOf()
};

/// A stretch of scenario time in which satellites are tracked, but not well enough for a fix.
struct NoFix
{
    std::chrono::milliseconds from{};
    std::chrono::milliseconds until{};  ///< excluded
};

struct ReceiverScenario
{
    std::chrono::system_clock::time_point startUtc = defaultStartUtc();
    std::uint32_t seed = 1;                          ///< noise, orbit phases and the order of acquisition
    std::vector<Waypoint> route = defaultRoute();    ///< one waypoint stands still; the vehicle stops at the last one
    std::chrono::milliseconds timeToFirstFix{8000};  ///< counted from the start of the engine; 0: a fix at once
    std::vector<Jamming> jamming;
    std::vector<NoFix> noFix;
    double carrierOffsetDbHz = 0;  ///< added to every C/N0, which stays within 0 to 60; -60 to 60
    std::array<bool, kGnssSystemCount> systems{true, true, true, true, true, true};  ///< in the sky, by indexOf()
    std::string replayFile;            ///< if not empty: play this recording and ignore everything above
    double replaySpeed = 1;            ///< 2 replays in half the time
    bool replayLoop = false;           ///< false: the feed falls silent at the end of the recording
    bool replayWaitsForReader = true;  ///< true: it begins when somebody listens, so that nothing of it is lost
};

enum class FixState
{
    None,
    Fix2D,
    Fix3D,
};

struct SystemStatus
{
    int inView = 0;              ///< above the minimum elevation, of an enabled system
    int tracked = 0;             ///< with a measured C/N0
    int used = 0;                ///< in the fix
    double meanCarrierDbHz = 0;  ///< mean C/N0 of the tracked satellites; 0 while none is tracked
};

struct ReceiverStatus
{
    FixState fix = FixState::None;
    std::chrono::system_clock::time_point utc{};  ///< of the epoch that this status belongs to
    double latitudeDeg = 0;                       ///< position and motion are 0 while there is no fix
    double longitudeDeg = 0;
    double altitudeM = 0;  ///< above mean sea level
    double speedMps = 0;
    double courseDeg = 0;                                  ///< true north is 0; 0 while standing still
    std::array<SystemStatus, kGnssSystemCount> systems{};  ///< by indexOf()

    const SystemStatus& of(GnssSystem system) const { return systems[indexOf(system)]; }
};

}  // namespace arcsim
