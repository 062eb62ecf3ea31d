#include "memory/Operations.h"

using kelarc::KelArc;

namespace {

/// Counts whatever it is called with; small enough to need no memory.
struct Count
{
    std::atomic<int>* answers;
    template <typename... Values>
    void operator()(Values&&...) const
    {
        ++*answers;
    }
};

using Answers = std::atomic<int>;

// Made before memory is scarce: what an application hands over is its own.
const std::string kKey = "Some/Key/That/Is/Longer/Than/A/Small/String";
const std::string kValue = "\"a value that is longer than a small string\"";

}  // namespace

const std::vector<Operation>& operations()
{
    static const std::vector<Operation> all{
        {"getArcVersion", [](KelArc& m, Answers& a) { m.getArcVersion(Count{&a}); }, 1},
        {"getRilVersion", [](KelArc& m, Answers& a) { m.getRilVersion(Count{&a}); }, 1},
        {"enableLogging", [](KelArc& m, Answers& a) { m.enableLogging(kelarc::LOGGING_ZONE{3}, kValue, Count{&a}); },
         1},
        {"ATcmd", [](KelArc& m, Answers& a) { m.ATcmd(kValue, Count{&a}); }, 1},
        {"getModuleSetting", [](KelArc& m, Answers& a) { m.getModuleSetting(kKey, Count{&a}); }, 1},
        {"setModuleSetting", [](KelArc& m, Answers& a) { m.setModuleSetting(kKey, kValue, Count{&a}); }, 1},
        {"getCpuPower", [](KelArc& m, Answers& a) { m.getCpuPower(Count{&a}); }, 1},
        {"setCpuPower", [](KelArc& m, Answers& a) { m.setCpuPower(kelarc::CPU_POWER::MAXIMUM, Count{&a}); }, 1},
        {"getCpuPsm", [](KelArc& m, Answers& a) { m.getCpuPsm(Count{&a}); }, 1},
        {"setCpuPsm", [](KelArc& m, Answers& a) { m.setCpuPsm(true, Count{&a}); }, 1},
        {"getGnssFormat", [](KelArc& m, Answers& a) { m.getGnssFormat(Count{&a}); }, 1},
        {"setGnssFormat", [](KelArc& m, Answers& a) { m.setGnssFormat(kelarc::gnss::FORMAT::RAW, Count{&a}); }, 1},
        {"getDRSync", [](KelArc& m, Answers& a) { m.getDRSync(Count{&a}); }, 1},
        {"setDRSync", [](KelArc& m, Answers& a) { m.setDRSync(true, Count{&a}); }, 1},
        {"getGnssStatus", [](KelArc& m, Answers& a) { m.getGnssStatus(kelarc::gnss::SYSTEM::BEIDOU, Count{&a}); }, 1},
        {"setGnssStatus", [](KelArc& m, Answers& a) { m.setGnssStatus(kelarc::gnss::SYSTEM::BEIDOU, true, Count{&a}); },
         1},
        {"getSbasStatus", [](KelArc& m, Answers& a) { m.getSbasStatus(Count{&a}); }, 1},
        {"setSbasStatus", [](KelArc& m, Answers& a) { m.setSbasStatus(true, Count{&a}); }, 1},
        {"getGnssFrequency", [](KelArc& m, Answers& a) { m.getGnssFrequency(Count{&a}); }, 1},
        {"setGnssFrequency",
         [](KelArc& m, Answers& a) { m.setGnssFrequency(kelarc::gnss::FREQUENCY::EVERY_200_MS, Count{&a}); }, 1},
        {"getMinElevation", [](KelArc& m, Answers& a) { m.getMinElevation(Count{&a}); }, 1},
        {"setMinElevation", [](KelArc& m, Answers& a) { m.setMinElevation(10, Count{&a}); }, 1},
        {"getRawMask", [](KelArc& m, Answers& a) { m.getRawMask(Count{&a}); }, 1},
        {"setRawMask", [](KelArc& m, Answers& a) { m.setRawMask(3, Count{&a}); }, 1},
        {"getGnssRawVersion", [](KelArc& m, Answers& a) { m.getGnssRawVersion(Count{&a}); }, 1},
        {"startRawGNSS", [](KelArc& m, Answers& a) { m.startRawGNSS(Count{&a}); }, 1},
        {"stopGNSS", [](KelArc& m, Answers& a) { m.stopGNSS(Count{&a}); }, 1},
        {"forceStopGNSS", [](KelArc& m, Answers& a) { m.forceStopGNSS(Count{&a}); }, 1},
        {"resetAGNSS", [](KelArc& m, Answers& a) { m.resetAGNSS(Count{&a}); }, 1},
        {"getLstaGnss", [](KelArc& m, Answers& a) { m.getLstaGnss(kelarc::lsta::TECH::GPS, Count{&a}); }, 1},
        {"setLstaGnssStatus",
         [](KelArc& m, Answers& a) { m.setLstaGnssStatus(kelarc::lsta::TECH::GALILEO, true, 1, Count{&a}, Count{&a}); },
         0},
        {"setNotificationCB", [](KelArc& m, Answers& a) { m.setNotificationCB(Count{&a}); }, 0},
    };
    return all;
}
