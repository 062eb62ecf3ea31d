#include "kelarcctl/monitor/EpochJson.h"

#include "kelarcctl/monitor/Format.h"

#include <cmath>

namespace kelarcctl {

namespace {

Json rounded(const std::optional<double>& value, double scale)
{
    return value ? Json(std::round(*value * scale) / scale) : Json(nullptr);
}

Json receiverUtc(const nmea::Epoch& epoch)
{
    if (!epoch.date || !epoch.utcMs)
        return nullptr;
    return nmea::dateText(epoch) + "T" + nmea::timeText(epoch) + format(".%03dZ", *epoch.utcMs % 1000);
}

Json satelliteJson(const nmea::Satellite& satellite)
{
    return {{"system", kSystemNames[nmea::indexOf(satellite.system)].word},
            {"number", satellite.number},
            {"elevationDeg", rounded(satellite.elevationDeg, 10)},
            {"azimuthDeg", rounded(satellite.azimuthDeg, 10)},
            {"carrierDbHz", rounded(satellite.carrierDbHz, 10)},
            {"used", satellite.isUsed}};
}

}  // namespace

Json epochJson(const nmea::Epoch& epoch, const Model& model)
{
    const char* const fix = epoch.fix == nmea::Fix::threeD ? "3D" : epoch.fix == nmea::Fix::twoD ? "2D" : "none";
    Json systems = Json::object();
    for (std::size_t i = 0; i < nmea::kSystemCount; ++i) {
        const auto system = static_cast<nmea::System>(i);
        const double best = model.carriers[i].most();
        systems[kSystemNames[i].word] = {{"used", epoch.satellites[i].used},
                                         {"inView", epoch.satellites[i].inView},
                                         {"tracked", model.tracked(system)},
                                         {"off", model.isOff(system)},
                                         {"lost", best > 0 && model.tracked(system) == 0 && !model.isOff(system)}};
    }
    Json satellites = Json::array();
    for (const nmea::Satellite& satellite : epoch.inView)
        satellites.push_back(satelliteJson(satellite));
    return {{"type", "epoch"},
            {"receiverUtc", receiverUtc(epoch)},
            {"fix", fix},
            {"latitudeDeg", rounded(epoch.latitudeDeg, 1e8)},
            {"longitudeDeg", rounded(epoch.longitudeDeg, 1e8)},
            {"altitudeM", rounded(epoch.altitudeM, 1e3)},
            {"speedKmh", rounded(epoch.speedKmh, 1e3)},
            {"courseDeg", rounded(epoch.courseDeg, 10)},
            {"hdop", rounded(epoch.hdop, 100)},
            {"meanCarrierDbHz", rounded(epoch.meanCarrierDbHz, 10)},
            {"systems", systems},
            {"satellites", satellites},
            {"wrongChecksums", model.wrongChecksums},
            {"garbage", model.garbage}};
}

}  // namespace kelarcctl
