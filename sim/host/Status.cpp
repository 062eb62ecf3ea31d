#include "host/Controls.h"
#include "modem/Requests.h"
#include "scenario/FaultFile.h"
#include "scenario/SystemNames.h"

#include <cmath>
#include <cstdio>
#include <ctime>
#include <unistd.h>

namespace arcsim {

namespace {

using Json = nlohmann::ordered_json;
using std::chrono::milliseconds;

double rounded(double value, int digits)
{
    const double scale = std::pow(10, digits);
    return std::round(value * scale) / scale;
}

std::string utcText(std::chrono::system_clock::time_point utc)
{
    const auto sinceEpoch = std::chrono::floor<milliseconds>(utc).time_since_epoch();
    const std::time_t seconds = std::chrono::floor<std::chrono::seconds>(sinceEpoch).count();
    std::tm parts{};
    gmtime_r(&seconds, &parts);
    char text[40] = {};
    const std::size_t length = std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &parts);
    std::snprintf(text + length, sizeof text - length, ".%03dZ",
                  static_cast<int>((sinceEpoch - std::chrono::floor<std::chrono::seconds>(sinceEpoch)).count()));
    return text;
}

const char* textOf(modem::EngineState state)
{
    switch (state) {
    case modem::EngineState::off:
        break;
    case modem::EngineState::starting:
        return "starting";
    case modem::EngineState::running:
        return "running";
    }
    return "off";
}

const char* textOf(FixState fix)
{
    switch (fix) {
    case FixState::None:
        break;
    case FixState::Fix2D:
        return "2D";
    case FixState::Fix3D:
        return "3D";
    }
    return "none";
}

Json settingsJson(const modem::Settings& settings)
{
    Json json = Json::object();
    for (const std::string& key : modem::Settings::keys())
        json[key] = settings.plain(key);
    return json;
}

Json lstaJson(const ModemHost& host)
{
    Json json = Json::object();
    for (std::size_t i = 0; i < modem::kLstaSystems; ++i) {
        const auto reply = host.modem().lsta(static_cast<modem::LstaSystem>(i), host.now());
        json[lstaSystemNames()[i]] = {{"status", reply.status}, {"value", rounded(reply.value, 2)}};
    }
    return json;
}

void addReceiver(Json& json, const ReceiverStatus& status)
{
    json["fix"] = textOf(status.fix);
    json["utc"] = status.utc == std::chrono::system_clock::time_point{} ? Json(nullptr) : Json(utcText(status.utc));
    const auto known = [&](double value, int digits) {
        return status.fix == FixState::None ? Json(nullptr) : Json(rounded(value, digits));
    };
    json["latitudeDeg"] = known(status.latitudeDeg, 7);
    json["longitudeDeg"] = known(status.longitudeDeg, 7);
    json["altitudeM"] = known(status.altitudeM, 2);
    json["speedMps"] = known(status.speedMps, 3);
    json["courseDeg"] = known(status.courseDeg, 2);
    Json satellites = Json::object();
    for (const GnssSystem system : kGnssSystems) {
        const SystemStatus& each = status.of(system);
        satellites[systemNames()[indexOf(system)]] = {{"inView", each.inView},
                                                      {"tracked", each.tracked},
                                                      {"used", each.used},
                                                      {"meanCarrierDbHz", rounded(each.meanCarrierDbHz, 1)}};
    }
    json["satellites"] = satellites;
}

Json jammedJson(const BlockedSystems& jammed)
{
    Json names = Json::array();
    for (const GnssSystem system : kGnssSystems)
        if (jammed[indexOf(system)])
            names.push_back(systemNames()[indexOf(system)]);
    return names;
}

}  // namespace

Json statusOf(const ModemHost& host)
{
    const Feed& feed = host.output().feed();
    const Feed::Counters counters = feed.counters();
    Json json = {{"version", "1.0"},
                 {"pid", static_cast<int>(getpid())},
                 {"time", host.isVirtual() ? "virtual" : "real"},
                 {"scenarioMs", host.now().count()},
                 {"engine", textOf(host.modem().engine(host.now()))},
                 {"settings", settingsJson(host.modem().settings())},
                 {"lsta", lstaJson(host)},
                 {"output",
                  {{"path", host.modem().rawOutput()},
                   {"hasReader", feed.hasReader()},
                   {"written", counters.written},
                   {"unheard", counters.unheard},
                   {"dropped", counters.dropped}}}};
    addReceiver(json, feed.status());
    json["noFix"] = host.interference().noFix;
    json["jammed"] = jammedJson(host.interference().blocked);
    json["outage"] = host.isOutage();
    Json clients = Json::array();
    for (const auto& [id, session] : host.sessions())
        clients.push_back({{"pid", session.pid},
                           {"name", session.name},
                           {"open", session.isOpen},
                           {"handler", session.hasHandler},
                           {"calls", session.calls},
                           {"waiting", session.waiting}});
    json["clients"] = clients;
    Json calls = Json::object();
    for (std::size_t i = 0; i < kFunctions; ++i)
        if (host.callCounts()[i].count > 0)
            calls[std::string(modem::kRequests[i].name)] = {{"count", host.callCounts()[i].count},
                                                            {"failed", host.callCounts()[i].failed}};
    json["calls"] = calls;
    Json faults = Json::array();
    for (const modem::Fault& fault : host.injectedFaults())
        faults.push_back(faultJson(fault));
    json["faults"] = faults;
    return json;
}

}  // namespace arcsim
