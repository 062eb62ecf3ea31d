#include "receiver/ReplayStatus.h"

#include <ctime>

namespace arcsim {

namespace {

static_assert(::nmea::kSystemCount == kGnssSystemCount &&
                  ::nmea::indexOf(::nmea::System::gps) == indexOf(GnssSystem::Gps) &&
                  ::nmea::indexOf(::nmea::System::glonass) == indexOf(GnssSystem::Glonass) &&
                  ::nmea::indexOf(::nmea::System::galileo) == indexOf(GnssSystem::Galileo) &&
                  ::nmea::indexOf(::nmea::System::beidou) == indexOf(GnssSystem::Beidou) &&
                  ::nmea::indexOf(::nmea::System::qzss) == indexOf(GnssSystem::Qzss) &&
                  ::nmea::indexOf(::nmea::System::sbas) == indexOf(GnssSystem::Sbas),
              "systems are taken over by their index");

FixState fixOf(::nmea::Fix fix)
{
    switch (fix) {
    case ::nmea::Fix::threeD:
        return FixState::Fix3D;
    case ::nmea::Fix::twoD:
        return FixState::Fix2D;
    case ::nmea::Fix::none:
        break;
    }
    return FixState::None;
}

std::chrono::system_clock::time_point utcOf(const ::nmea::Date& date, int utcMs)
{
    std::tm day{};
    day.tm_year = date.year - 1900;
    day.tm_mon = date.month - 1;
    day.tm_mday = date.day;
    return std::chrono::system_clock::from_time_t(::timegm(&day)) + std::chrono::milliseconds(utcMs);
}

std::array<SystemStatus, kGnssSystemCount> systemsOf(const ::nmea::Epoch& epoch)
{
    std::array<SystemStatus, kGnssSystemCount> systems;
    for (std::size_t i = 0; i < kGnssSystemCount; ++i) {
        systems[i].inView = epoch.satellites[i].inView;
        systems[i].used = epoch.satellites[i].used;
    }
    for (const ::nmea::Satellite& satellite : epoch.inView) {
        SystemStatus& system = systems[::nmea::indexOf(satellite.system)];
        if (!satellite.carrierDbHz)
            continue;
        ++system.tracked;
        system.meanCarrierDbHz += (*satellite.carrierDbHz - system.meanCarrierDbHz) / system.tracked;
    }
    return systems;
}

}  // namespace

const ReceiverStatus& ReplayStatus::take(std::string_view epoch)
{
    m_status.fix = FixState::None;
    m_status.latitudeDeg = m_status.longitudeDeg = m_status.altitudeM = 0;
    m_status.speedMps = m_status.courseDeg = 0;
    ::nmea::NmeaReader reader;
    for (const auto& sentences : {reader.read(epoch), reader.finish()})
        for (const ::nmea::Sentence& sentence : sentences)
            m_builder.add(sentence);
    if (const auto read = m_builder.flush())
        show(*read);
    return m_status;
}

void ReplayStatus::show(const ::nmea::Epoch& epoch)
{
    constexpr double kKmhPerMps = 3.6;
    m_status.fix = fixOf(epoch.fix);
    if (epoch.date && epoch.utcMs)
        m_status.utc = utcOf(*epoch.date, *epoch.utcMs);
    m_status.latitudeDeg = epoch.latitudeDeg.value_or(0);
    m_status.longitudeDeg = epoch.longitudeDeg.value_or(0);
    m_status.altitudeM = epoch.altitudeM.value_or(0);
    m_status.speedMps = epoch.speedKmh.value_or(0) / kKmhPerMps;
    m_status.courseDeg = epoch.courseDeg.value_or(0);
    m_status.systems = systemsOf(epoch);
}

}  // namespace arcsim
