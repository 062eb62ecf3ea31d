#include "scenario/RouteFile.h"

#include "scenario/Gpx.h"
#include "scenario/GpxPoints.h"

#include <filesystem>

namespace arcsim {

namespace {

Waypoint readWaypoint(const JsonNode& node)
{
    node.requireKeys({"latitudeDeg", "longitudeDeg", "altitudeM", "speedMps", "waitMs"});
    Waypoint waypoint;
    waypoint.latitudeDeg = node.at("latitudeDeg", "a number from -89 to 89").number(-89, 89);
    waypoint.longitudeDeg = node.at("longitudeDeg", "a number from -180 to 180").number(-180, 180);
    if (const auto altitude = node.find("altitudeM"))
        waypoint.altitudeM = altitude->number(-500, 9000);
    if (const auto speed = node.find("speedMps"))
        waypoint.speedMps = speed->number(0, 300);
    if (const auto wait = node.find("waitMs"))
        waypoint.wait = wait->time();
    return waypoint;
}

std::vector<Waypoint> readGpxRoute(const JsonNode& node, const std::string& scenarioFile)
{
    const char* const accepted = "the name of a GPX file";
    node.requireKeys({"gpx", "speedMps"});
    const std::string name = node.at("gpx", accepted).fileName(accepted);
    const auto speed = node.find("speedMps");
    const double speedMps = speed ? speed->number(0.1, 300) : kDefaultGpxSpeedMps;
    return loadGpx(besideScenario(scenarioFile, name), speedMps);
}

}  // namespace

std::string besideScenario(const std::string& scenarioFile, const std::string& name)
{
    return (std::filesystem::path(scenarioFile).parent_path() / name).string();
}

std::vector<Waypoint> readRoute(const JsonNode& node, const std::string& scenarioFile)
{
    if (node.isObject())
        return readGpxRoute(node, scenarioFile);
    const char* const accepted = "a list of at least one waypoint, or an object with the keys gpx, speedMps";
    if (!node.isArray())
        node.refuse(accepted);
    const std::vector<JsonNode> nodes = node.elements(kMostGpxPoints);
    std::vector<Waypoint> route;
    for (const JsonNode& each : nodes)
        route.push_back(readWaypoint(each));
    if (route.empty())
        node.refuse(accepted);
    constexpr double kSlowestMps = 0.01;  // slower legs would never end
    for (std::size_t i = 0; i + 1 < route.size(); ++i)
        if (route[i].speedMps < kSlowestMps)
            nodes[i].refuse("a waypoint with a speedMps from 0.01 to 300, on the way to the next one");
    return route;
}

}  // namespace arcsim
