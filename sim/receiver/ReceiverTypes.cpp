#include "receiver/ReceiverTypes.h"

namespace arcsim {

bool isEnabled(const ReceiverSettings& settings, GnssSystem system)
{
    switch (system) {
    case GnssSystem::Gps:
        return true;
    case GnssSystem::Glonass:
        return settings.glonass;
    case GnssSystem::Galileo:
        return settings.galileo;
    case GnssSystem::Beidou:
        return settings.beidou;
    case GnssSystem::Qzss:
        return settings.qzss;
    case GnssSystem::Sbas:
        return settings.sbas;
    }
    return false;
}

std::vector<Waypoint> defaultRoute()
{
    return {
        {35.68124, 139.76712, 4.0, 8.0},   {35.68406, 139.77448, 4.0, 12.0}, {35.69169, 139.77088, 5.0, 13.0},
        {35.69960, 139.76370, 17.0, 14.0}, {35.69560, 139.75130, 8.0, 16.0}, {35.68550, 139.74190, 30.0, 15.0},
        {35.67730, 139.75190, 9.0, 11.0},  {35.67490, 139.76000, 4.0, 0.0},
    };
}

std::chrono::system_clock::time_point defaultStartUtc()
{
    // 2024-06-12 is day 19886 of the system clock's epoch.
    return std::chrono::system_clock::time_point(std::chrono::hours(19886 * 24 + 3));
}

}  // namespace arcsim
