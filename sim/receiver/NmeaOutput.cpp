#include "receiver/NmeaOutput.h"

#include "receiver/Nmea.h"

#include <algorithm>
#include <cmath>

namespace arcsim {

namespace {

using nmea::number;

/// How a positioning system appears in sentences; SBAS is part of GPS.
struct SystemRow
{
    GnssSystem system;
    const char* talker;
    const char* systemId;
    const char* signalId;  ///< of the signal whose C/N0 is reported
};
constexpr SystemRow kSystemRows[] = {
    {GnssSystem::Gps, "GP", "1", "1"},      // L1 C/A
    {GnssSystem::Glonass, "GL", "2", "1"},  // G1 C/A
    {GnssSystem::Galileo, "GA", "3", "7"},  // E1
    {GnssSystem::Beidou, "GB", "4", "1"},   // B1I
    {GnssSystem::Qzss, "GQ", "5", "1"},     // L1 C/A
};

constexpr double kKnotsPerMps = 3600.0 / 1852;
constexpr double kKmhPerMps = 3.6;

int sentenceNumber(SatelliteId id)
{
    constexpr int kSbasOffset = -87;
    constexpr int kGlonassOffset = 64;
    if (id.system == GnssSystem::Sbas)
        return id.number + kSbasOffset;
    return id.system == GnssSystem::Glonass ? id.number + kGlonassOffset : id.number;
}

std::string twoDigits(long value)
{
    return number(static_cast<double>(value), 0, 2);
}

std::string wholeAzimuth(double azimuthDeg)
{
    return number(std::fmod(std::round(azimuthDeg), 360), 0, 3);  // 359.6 is north, not 360
}

std::string course(double courseDeg)
{
    return number(std::fmod(std::round(courseDeg * 10), 3600) / 10, 1);
}

bool hasCorrections(const Solution& solution)
{
    return std::any_of(solution.observations.begin(), solution.observations.end(), [](const Observation& observation) {
        return observation.id.system == GnssSystem::Sbas && observation.carrierDbHz;
    });
}

/// Mode indicator of RMC and VTG.
char mode(const Solution& solution)
{
    if (solution.fix == FixState::None)
        return 'N';
    return hasCorrections(solution) ? 'D' : 'A';
}

std::string timeField(const Solution& solution)
{
    return solution.timeKnown ? nmea::time(solution.utc) : std::string();
}

std::string positionFields(const Solution& solution)
{
    if (solution.fix == FixState::None)
        return ",,,";
    return nmea::latitude(solution.motion.latitudeDeg) + ',' + nmea::longitude(solution.motion.longitudeDeg);
}

std::string courseField(const Solution& solution)
{
    return solution.motion.speedMps > 0 ? course(solution.motion.courseDeg) : std::string();
}

std::string rmc(const Solution& solution, const std::string& talker)
{
    const bool fixed = solution.fix != FixState::None;
    return nmea::sentence(talker + "RMC," + timeField(solution) + (fixed ? ",A," : ",V,") + positionFields(solution) +
                          ',' + (fixed ? number(solution.motion.speedMps * kKnotsPerMps, 3) : "") + ',' +
                          courseField(solution) + ',' + (solution.timeKnown ? nmea::date(solution.utc) : "") + ",,," +
                          mode(solution) + ",V");
}

std::string vtg(const Solution& solution, const std::string& talker)
{
    const bool fixed = solution.fix != FixState::None;
    return nmea::sentence(talker + "VTG," + courseField(solution) + ",T,,M," +
                          (fixed ? number(solution.motion.speedMps * kKnotsPerMps, 3) : "") + ",N," +
                          (fixed ? number(solution.motion.speedMps * kKmhPerMps, 3) : "") + ",K," + mode(solution));
}

std::string gga(const Solution& solution, const std::string& talker)
{
    if (solution.fix == FixState::None)
        return nmea::sentence(talker + "GGA," + timeField(solution) + ",,,,,0,00,99.99,,,,,,");
    const auto used = std::count_if(solution.observations.begin(), solution.observations.end(),
                                    [](const Observation& observation) { return observation.used; });
    return nmea::sentence(talker + "GGA," + timeField(solution) + ',' + positionFields(solution) +
                          (hasCorrections(solution) ? ",2," : ",1,") + twoDigits(used) + ',' +
                          number(solution.dop.horizontal, 2) + ',' + number(solution.motion.altitudeM, 1) + ",M," +
                          number(solution.geoidSeparationM, 1) + ",M,,");
}

std::string gsa(const Solution& solution, const std::string& talker, const SystemRow& row)
{
    constexpr std::size_t kPlaces = 12;
    std::string numbers;
    std::size_t used = 0;
    for (const Observation& observation : solution.observations)
        if (observation.used && observation.id.system == row.system && used < kPlaces) {
            numbers += ',' + twoDigits(sentenceNumber(observation.id));
            ++used;
        }
    numbers.append(kPlaces - used, ',');
    const char* fix = solution.fix == FixState::None ? "1" : solution.fix == FixState::Fix2D ? "2" : "3";
    return nmea::sentence(talker + "GSA,A," + fix + numbers + ',' + number(solution.dop.position, 2) + ',' +
                          number(solution.dop.horizontal, 2) + ',' + number(solution.dop.vertical, 2) + ',' +
                          row.systemId);
}

std::string gsv(const Solution& solution, const SystemRow& row)
{
    constexpr std::size_t kPerSentence = 4;
    std::vector<const Observation*> inView;
    for (const Observation& observation : solution.observations)
        if (observation.id.system == row.system ||
            (row.system == GnssSystem::Gps && observation.id.system == GnssSystem::Sbas))
            inView.push_back(&observation);

    std::string sentences;
    // Like real receivers, sends one sentence that reports no satellites: silence would leave open whether the system
    // is on.
    const std::size_t total = std::max<std::size_t>(1, (inView.size() + kPerSentence - 1) / kPerSentence);
    for (std::size_t i = 0; i < total; ++i) {
        std::string body = std::string(row.talker) + "GSV," + std::to_string(total) + ',' + std::to_string(i + 1) +
                           ',' + twoDigits(static_cast<long>(inView.size()));
        for (std::size_t j = i * kPerSentence; j < std::min((i + 1) * kPerSentence, inView.size()); ++j) {
            const Observation& observation = *inView[j];
            body += ',' + twoDigits(sentenceNumber(observation.id)) + ',' +
                    number(observation.look.elevationDeg, 0, 2) + ',' + wholeAzimuth(observation.look.azimuthDeg) +
                    ',' + (observation.carrierDbHz ? twoDigits(*observation.carrierDbHz) : "");
        }
        sentences += nmea::sentence(body + ',' + row.signalId);
    }
    return sentences;
}

}  // namespace

std::string nmeaEpoch(const Solution& solution, const ReceiverSettings& settings)
{
    const bool onlyGps = !settings.glonass && !settings.galileo && !settings.beidou && !settings.qzss;
    const std::string talker = onlyGps ? "GP" : "GN";
    std::string epoch = rmc(solution, talker) + vtg(solution, talker) + gga(solution, talker);
    for (const SystemRow& row : kSystemRows)
        if (isEnabled(settings, row.system))
            epoch += gsa(solution, talker, row);
    std::string inView;
    for (const SystemRow& row : kSystemRows)
        if (isEnabled(settings, row.system))
            inView = row.system == GnssSystem::Qzss ? gsv(solution, row) + inView : inView + gsv(solution, row);
    return epoch + inView;
}

}  // namespace arcsim
