// Any bytes as a GPX file give a route that can be driven, or a ScenarioError that says why not.

#include "fuzz/Finding.h"
#include "receiver/Route.h"
#include "scenario/Gpx.h"
#include "scenario/ScenarioError.h"

#include <cmath>
#include <cstdint>

namespace {

void requireAccepted(const std::vector<arcsim::Waypoint>& route)
{
    if (route.empty())
        fuzz::finding("a route without a point");
    for (const arcsim::Waypoint& each : route)
        if (!(std::abs(each.latitudeDeg) <= 89) || !(std::abs(each.longitudeDeg) <= 180) || each.wait.count() < 0 ||
            !(each.altitudeM >= -500 && each.altitudeM <= 9000))
            fuzz::finding("a point that is nowhere");
}

/// At a few moments.
void drive(const std::vector<arcsim::Waypoint>& waypoints)
{
    const arcsim::Route route(waypoints);
    for (const int seconds : {0, 1, 60, 86400}) {
        const arcsim::Motion motion = route.at(std::chrono::seconds(seconds));
        if (!(std::abs(motion.latitudeDeg) <= 90) || !(std::abs(motion.longitudeDeg) <= 180) ||
            !(motion.speedMps >= 0 && motion.speedMps <= 301))
            fuzz::finding("a route leads to nowhere");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(data, data + size);
    try {
        const std::vector<arcsim::Waypoint> route = arcsim::parseGpx("fuzz.gpx", text, arcsim::kDefaultGpxSpeedMps);
        requireAccepted(route);
        drive(route);
    } catch (const arcsim::ScenarioError& error) {
        fuzz::requireReadable(error.what());
    }
    return 0;
}
