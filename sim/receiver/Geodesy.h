#pragma once

// Places and directions on the WGS 84 ellipsoid.

namespace arcsim {

inline constexpr double kPi = 3.14159265358979323846;
inline constexpr double kRadPerDeg = kPi / 180;

/// Earth-centred, earth-fixed, in metres.
struct Ecef
{
    double x = 0;
    double y = 0;
    double z = 0;
};

struct Geodetic
{
    double latitudeDeg = 0;
    double longitudeDeg = 0;
    double heightM = 0;  ///< above the ellipsoid
};

/// The direction of a satellite in the sky.
struct LookAngle
{
    double elevationDeg = 0;  ///< -90 to 90
    double azimuthDeg = 0;    ///< 0 to below 360, clockwise from true north
    double rangeM = 0;
};

Ecef toEcef(const Geodetic& place);
LookAngle lookAngle(const Geodetic& observer, const Ecef& target);

/// Metres on the ground per degree at a latitude.
double northMetresPerDeg(double latitudeDeg);
double eastMetresPerDeg(double latitudeDeg);

}  // namespace arcsim
