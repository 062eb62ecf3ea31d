#include "receiver/Geodesy.h"

#include <cmath>

namespace arcsim {

namespace {

constexpr double kSemiMajorM = 6378137.0;
constexpr double kFlattening = 1 / 298.257223563;
constexpr double kEccentricitySquared = kFlattening * (2 - kFlattening);

double primeVerticalRadiusM(double latitudeRad)
{
    const double sinLatitude = std::sin(latitudeRad);
    return kSemiMajorM / std::sqrt(1 - kEccentricitySquared * sinLatitude * sinLatitude);
}

}  // namespace

Ecef toEcef(const Geodetic& place)
{
    const double latitude = place.latitudeDeg * kRadPerDeg;
    const double longitude = place.longitudeDeg * kRadPerDeg;
    const double radius = primeVerticalRadiusM(latitude);
    return {(radius + place.heightM) * std::cos(latitude) * std::cos(longitude),
            (radius + place.heightM) * std::cos(latitude) * std::sin(longitude),
            (radius * (1 - kEccentricitySquared) + place.heightM) * std::sin(latitude)};
}

LookAngle lookAngle(const Geodetic& observer, const Ecef& target)
{
    const Ecef origin = toEcef(observer);
    const double dx = target.x - origin.x;
    const double dy = target.y - origin.y;
    const double dz = target.z - origin.z;
    const double sinLat = std::sin(observer.latitudeDeg * kRadPerDeg);
    const double cosLat = std::cos(observer.latitudeDeg * kRadPerDeg);
    const double sinLon = std::sin(observer.longitudeDeg * kRadPerDeg);
    const double cosLon = std::cos(observer.longitudeDeg * kRadPerDeg);

    const double east = -sinLon * dx + cosLon * dy;
    const double north = -sinLat * cosLon * dx - sinLat * sinLon * dy + cosLat * dz;
    const double up = cosLat * cosLon * dx + cosLat * sinLon * dy + sinLat * dz;

    LookAngle look;
    look.rangeM = std::sqrt(dx * dx + dy * dy + dz * dz);
    look.elevationDeg = std::atan2(up, std::hypot(east, north)) / kRadPerDeg;
    look.azimuthDeg = std::fmod(std::atan2(east, north) / kRadPerDeg + 360, 360);
    return look;
}

double northMetresPerDeg(double latitudeDeg)
{
    const double sinLatitude = std::sin(latitudeDeg * kRadPerDeg);
    const double shrink = 1 - kEccentricitySquared * sinLatitude * sinLatitude;
    return kSemiMajorM * (1 - kEccentricitySquared) / (shrink * std::sqrt(shrink)) * kRadPerDeg;
}

double eastMetresPerDeg(double latitudeDeg)
{
    const double latitude = latitudeDeg * kRadPerDeg;
    return primeVerticalRadiusM(latitude) * std::cos(latitude) * kRadPerDeg;
}

}  // namespace arcsim
