#include "seeds/Program.h"

#include <algorithm>

namespace seeds {
namespace {

using Kind = Step::Kind;

// Not ARC_GetArcVersion, which the test itself calls to learn that everything has arrived.
const std::vector<std::string> kFunctions = {"ARC_SetNotificationMethod",
                                             "ARC_Open",
                                             "ARC_Close",
                                             "ARC_RegisterNotification",
                                             "ARC_GetRilVersion",
                                             "ARC_EnableLogging",
                                             "ARC_AtcTunneling",
                                             "ARC_CheckModuleSetting",
                                             "ARC_StartGNSSraw",
                                             "ARC_StopGNSS",
                                             "ARC_ForceStopGNSS",
                                             "ARC_ResetAGNSS",
                                             "ARC_CurrentLSTA",
                                             "ARC_EnableLSTA",
                                             "ARC_CheckModuleSetting"};
const std::vector<int> kCodes = {1, 3, 13, 15, 15, 26, 26, 31, 32, 39, 77, -5};
const std::vector<std::string> kSystems = {"gps", "glonass", "beidou", "galileo"};
const std::vector<std::pair<std::string, std::string>> kPlainSettings = {
    {"Power/Cpu", "max"},         {"Power/Psm", "1"},          {"Nmea/Data/Format", "Raw"},
    {"Nmea/Data/Format", "Nmea"}, {"Nmea/FreqMs", "100"},      {"Nmea/FreqMs", "1000"},
    {"Engine/Qzss", "1"},         {"Sens/MinElevAngle", "30"}, {"Nmea/Sbas", "off"}};

Step requestStep(const Request& request)
{
    Step step;
    step.kind = Kind::request;
    step.request = request;
    return step;
}
Step requestNamed(Random& random, const std::string& name)
{
    return requestStep(drawRequest(random, operationNamed(name)));
}
Step anyRequest(Random& random)
{
    if (random.happens(12))  // what the others depend on comes more often
        return requestNamed(random, random.oneOf(std::vector<std::string>{"open", "stopGNSS", "startRawGNSS"}));
    return requestStep(drawRequest(random, random.next() % operations().size()));
}

Step faultStep(Random& random)
{
    Step step;
    step.kind = Kind::fault;
    step.function = random.oneOf(kFunctions);
    step.count = random.between(1, 18);
    step.number = random.oneOf(kCodes);
    if (step.function == "ARC_CheckModuleSetting" && random.happens(40))
        step.fault = random.happens(50) ? R"("quotes":false)" : R"("replyLength":40)";
    else if (step.function == "ARC_CurrentLSTA" && random.happens(40))
        step.fault = R"("indicator":1003)";
    else if (random.happens(10))
        step.fault = R"("latencyMs":700)";
    return step;
}
Step hangStep(Random& random)
{
    Step step;
    step.kind = Kind::hang;
    step.function = random.oneOf(kFunctions);
    step.release = static_cast<Step::Release>(random.between(0, 3));
    step.count = random.between(0, 18);
    step.number = random.between(1, 4000);
    return step;
}

/// What is done to the modem and to the daemon.
Step trouble(Random& random)
{
    const int choice = random.between(1, 100);
    Step step;
    step.count = random.between(0, 18);
    step.flag = random.happens(50);
    step.number = random.between(1, 5000);
    step.text = random.oneOf(kSystems);
    if (choice <= 30)
        return faultStep(random);
    if (choice <= 40)
        return hangStep(random);
    if (choice <= 50) {
        step.kind = Kind::kill;
    } else if (choice <= 55) {
        step.kind = Kind::outage;
    } else if (choice <= 58) {
        step.kind = Kind::reset;
    } else if (choice <= 61) {
        step.kind = Kind::clear;
    } else if (choice <= 65) {
        step.kind = random.happens(50) ? Kind::jam : Kind::noFix;
    } else if (choice <= 72) {
        step.kind = Kind::set;
        std::tie(step.text, step.value) = random.oneOf(kPlainSettings);
    } else if (choice <= 79) {
        step.kind = Kind::events;
        step.number = random.oneOf(std::vector<int>{21, 22, 22, 72, 73, 74, 75, 76});
    } else if (choice <= 85) {
        step.kind = Kind::lsta;
        step.number = random.between(-1, 2);
    } else if (choice <= 90) {
        step.kind = Kind::otherClient;
        step.number = random.between(0, 3);
    } else if (choice <= 95) {
        step.kind = Kind::read;
        step.count = random.between(1, 4);
    } else {
        step.kind = Kind::advance;
    }
    return step;
}
Step anyStep(Random& random)
{
    return random.happens(45) ? trouble(random) : anyRequest(random);
}

Phase drawPhase(Random& random)
{
    Phase phase;
    phase.isHeld = random.happens(70);
    if (!phase.isHeld) {
        phase.first.push_back(anyStep(random));
    } else {
        phase.isOneMoment = random.happens(20);
        const bool isFlood = random.happens(3);
        const int count = isFlood ? random.between(125, 140) : random.between(1, 6);
        for (int i = 0; i < count; ++i)
            phase.first.push_back(isFlood && i % 8 != 0 ? requestNamed(random, "getArcVersion") : anyRequest(random));
    }
    for (int count = random.between(0, 4); count > 0; --count)
        phase.later.push_back({random.between(1, 25), anyStep(random)});
    if (random.happens(6)) {
        Step step;
        step.kind = Kind::destroy;
        phase.later.push_back({random.between(1, 12), step});
    }
    const auto earlier = [](const Phase::Later& a, const Phase::Later& b) { return a.moment < b.moment; };
    std::stable_sort(phase.later.begin(), phase.later.end(), earlier);
    return phase;
}

/// Most of what can happen needs an open object that listens.
Phase opening(Random& random)
{
    Phase phase;
    phase.isHeld = true;
    for (const char* const name : {"open", "setNotificationCB", "startRawGNSS"})
        if (random.happens(90))
            phase.first.push_back(requestNamed(random, name));
    return phase;
}

}  // namespace

Program programOf(std::uint64_t seed)
{
    Random random(seed);
    Program program;
    program.seed = seed;
    program.hasLatencies = random.happens(40);
    program.phases.push_back(opening(random));
    for (int count = random.between(5, 12); count > 0; --count) {
        program.phases.push_back(drawPhase(random));
        if (random.happens(15))
            program.phases.push_back(opening(random));
    }
    return program;
}

}  // namespace seeds
