#include "scenario/Gpx.h"

#include "receiver/Geodesy.h"
#include "scenario/FileText.h"
#include "scenario/GpxPoints.h"
#include "scenario/Numbers.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace arcsim {

namespace {

using std::chrono::milliseconds;

constexpr double kSlowestMps = 0.01;  // the lowest speed that a route accepts
constexpr double kFastestMps = 300;
constexpr double kStandingM = 1;  // receiver noise: points this close, and slower than any leg, are one place

/// Distance on the ground along the route's straight line on the map.
double distanceM(const Waypoint& from, const Waypoint& to)
{
    const double midLatitude = (from.latitudeDeg + to.latitudeDeg) / 2;
    double eastDeg = to.longitudeDeg - from.longitudeDeg;
    if (std::abs(eastDeg) > 180)  // across the date line
        eastDeg -= std::copysign(360.0, eastDeg);
    return std::hypot((to.latitudeDeg - from.latitudeDeg) * northMetresPerDeg(midLatitude),
                      eastDeg * eastMetresPerDeg(midLatitude));
}

std::vector<Waypoint> routeByTimes(const GpxText& source, const std::vector<GpxPoint>& points)
{
    std::vector<Waypoint> route{points.front().waypoint};
    for (std::size_t i = 1; i < points.size(); ++i) {
        const GpxPoint& point = points[i];
        const std::string before = "point " + std::to_string(i);  // points are numbered from 1
        const milliseconds took = *point.time - *points[i - 1].time;
        if (took < milliseconds(0))
            source.refuse(i, point.offset, "time", point.timeText, "a time not before that of " + before);
        const double metres = distanceM(route.back(), point.waypoint);
        const double seconds = std::chrono::duration<double>(took).count();
        if (metres <= kStandingM && metres <= kSlowestMps * seconds) {
            route.back().wait += took;
            continue;
        }
        if (metres < kSlowestMps * seconds || metres > kFastestMps * seconds)
            source.refuse(i, point.offset, "way", shownNumber(metres) + " m in " + shownNumber(seconds) + " s",
                          "a speed of 0.01 to 300 m/s on the way from " + before);
        route.back().speedMps = metres / seconds;
        route.push_back(point.waypoint);
    }
    return route;
}

std::vector<Waypoint> routeAtSpeed(const std::vector<GpxPoint>& points, double speedMps)
{
    std::vector<Waypoint> route;
    for (const GpxPoint& point : points) {
        if (!route.empty() && distanceM(route.back(), point.waypoint) == 0)
            continue;
        route.push_back(point.waypoint);
        route.back().speedMps = speedMps;
    }
    return route;
}

}  // namespace

std::vector<Waypoint> parseGpx(const std::string& file, const std::string& text, double speedMps)
{
    const GpxText source(file, text);
    const std::vector<GpxPoint> points = source.points();
    const bool timed = std::all_of(points.begin(), points.end(), [](const GpxPoint& point) { return point.time; });
    return timed ? routeByTimes(source, points) : routeAtSpeed(points, speedMps);
}

std::vector<Waypoint> loadGpx(const std::string& file, double speedMps)
{
    return parseGpx(file, contentOf(file, "the name of a GPX file"), speedMps);
}

}  // namespace arcsim
