#include "host/RawOutput.h"

#include <algorithm>

namespace arcsim {

namespace {

GnssSystem receiverSystemOf(modem::LstaSystem system)
{
    switch (system) {
    case modem::LstaSystem::gps:
        break;
    case modem::LstaSystem::glonass:
        return GnssSystem::Glonass;
    case modem::LstaSystem::beidou:
        return GnssSystem::Beidou;
    case modem::LstaSystem::galileo:
        return GnssSystem::Galileo;
    }
    return GnssSystem::Gps;
}

}  // namespace

ReceiverSettings receiverSettingsOf(const modem::Settings& settings)
{
    // Writing a value shows whether the modem accepts it.
    const auto accepted = [&](const char* key) {
        modem::Settings factory;
        factory.write(key, settings.read(key).value_or(""));
        return factory.plain(key);
    };
    ReceiverSettings receiver;
    receiver.format = accepted("Nmea/Data/Format") == "Raw" ? OutputFormat::Raw : OutputFormat::Nmea;
    receiver.period = std::chrono::milliseconds(std::stoi(accepted("Nmea/FreqMs")));
    receiver.glonass = accepted("Engine/Glonass") == "1";
    receiver.galileo = accepted("Engine/Galileo") == "1";
    receiver.beidou = accepted("Engine/Beidou") == "1";
    receiver.qzss = accepted("Engine/Qzss") == "1";
    receiver.sbas = accepted("Nmea/Sbas") == "on";
    receiver.minElevationDeg = std::stoi(accepted("Sens/MinElevAngle"));
    return receiver;
}

modem::Reception RawOutput::receptionOf(modem::LstaSystem system) const
{
    const SystemStatus status = m_feed.status().of(receiverSystemOf(system));
    return {status.tracked, status.meanCarrierDbHz};
}

void RawOutput::follow(const modem::Modem& modem, const Interference& interference, std::chrono::milliseconds now)
{
    using modem::LstaSystem;
    BlockedSystems blocked = interference.blocked;
    for (const LstaSystem system : {LstaSystem::gps, LstaSystem::glonass, LstaSystem::beidou, LstaSystem::galileo})
        if (modem.isBlocked(system, now))
            blocked[indexOf(receiverSystemOf(system))] = true;
    for (const GnssSystem system : kGnssSystems)
        m_feed.setBlocked(system, blocked[indexOf(system)]);
    m_feed.setNoFix(interference.noFix);
    if (modem.settings().changes() != m_appliedChanges) {
        m_feed.apply(receiverSettingsOf(modem.settings()));
        m_appliedChanges = modem.settings().changes();
    }
    if (modem.engine(now) == modem::EngineState::off)
        m_feed.stop();
    else if (!m_feed.isStarted())
        m_feed.start(now, std::max(modem.firstFixAt() - now, std::chrono::milliseconds(0)));
}

}  // namespace arcsim
