#include "contract/CallTable.h"

#include <utility>

namespace contract {
namespace {

using arcsim::Function;
using kelarc::KelArc;
using support::Answer;

// The answer of open() is that of its second task; the row of the first one ignores it.
void openUnanswered(KelArc& kelarc, Answer)
{
    kelarc.open([](int) {});
}
void open(KelArc& kelarc, Answer answer)
{
    kelarc.open(std::move(answer));
}
void close(KelArc& kelarc, Answer answer)
{
    kelarc.close(std::move(answer));
}
void registerNotification(KelArc& kelarc, Answer)
{
    kelarc.setNotificationCB([](kelarc::NOTIFY_ID, void*, int) {});
}
void enableLogging(KelArc& kelarc, Answer answer)
{
    kelarc.enableLogging(kelarc::LOGGING_ZONE{3}, "on", std::move(answer));
}
void getArcVersion(KelArc& kelarc, Answer answer)
{
    kelarc.getArcVersion(std::move(answer));
}
void getRilVersion(KelArc& kelarc, Answer answer)
{
    kelarc.getRilVersion(std::move(answer));
}
void atCommand(KelArc& kelarc, Answer answer)
{
    kelarc.ATcmd("AT+CSQ", std::move(answer));
}
void getSetting(KelArc& kelarc, Answer answer)
{
    kelarc.getModuleSetting("Power/Cpu", std::move(answer));
}
void setSetting(KelArc& kelarc, Answer answer)
{
    kelarc.setModuleSetting("Nmea/Sbas", "\"on\"", std::move(answer));
}
void startRaw(KelArc& kelarc, Answer answer)
{
    kelarc.startRawGNSS(std::move(answer));
}
void forceStop(KelArc& kelarc, Answer answer)
{
    kelarc.forceStopGNSS(std::move(answer));
}
void stop(KelArc& kelarc, Answer answer)
{
    kelarc.stopGNSS(std::move(answer));
}
void reset(KelArc& kelarc, Answer answer)
{
    kelarc.resetAGNSS(std::move(answer));
}
void queryLsta(KelArc& kelarc, Answer answer)
{
    kelarc.getLstaGnss(kelarc::lsta::TECH{3}, std::move(answer));
}
void enableLsta(KelArc& kelarc, Answer answer)
{
    kelarc.setLstaGnssStatus(
        kelarc::lsta::TECH{3}, true, 5, [](kelarc::lsta::TYPE, int, double) {}, std::move(answer));
}

constexpr auto kOnce = Answers::once;

// clang-format off
const std::vector<PublishedCall> kCalls = {
    // name, function, task line, task text, call text,
    //     budget, start test, loop test, give up: tell, level, line, answers, on success, on failure, request
    {"SetNotificationMethod", Function::SetNotificationMethod, 118, "ARC_SetNotificationMethod()", "ARC_SetNotificationMethod(ARC_NOTIFY_METHOD_SINGLETHREAD)",
         15, false, false, Tell::always,   4,  135, Answers::nothing, "", "", openUnanswered},
    {"Open",                  Function::Open,                  141, nullptr, "ARC_Open()",
         -1, false, false, Tell::never,    0,    0, kOnce, "", "", open},
    {"Close",                 Function::Close,                 183, nullptr, "ARC_Close()",
         15, false, false, Tell::never,    0,    0, kOnce, "", "", close},
    {"RegisterNotification",  Function::RegisterNotification,  207, nullptr, "ARC_RegisterNotification()",
         -1, false, false, Tell::never,    0,    0, Answers::nothing, "", "", registerNotification},
    {"EnableLogging",         Function::EnableLogging,         240, nullptr, R"(ARC_EnableLogging("3", "on"))",
         15, false, false, Tell::ifActive, 4,  261, kOnce, "", "", enableLogging},
    {"GetArcVersion",         Function::GetArcVersion,         270, nullptr, "ARC_GetArcVersion()",
         15, false, false, Tell::ifActive, 4,  291, kOnce, ", 'ArcRilD 1.0 (simulated)'", ", '<UNKNOWN>'", getArcVersion},
    {"GetRilVersion",         Function::GetRilVersion,         300, nullptr, "ARC_GetRilVersion()",
         15, false, false, Tell::ifActive, 4,  321, kOnce, ", '', ''", ", '', ''", getRilVersion},
    {"AtcTunneling",          Function::AtcTunneling,          333, nullptr, R"(ARC_AtcTunneling("AT+CSQ"))",
         15, true,  true,  Tell::ifActive, 4,  355, kOnce, ", '<UNKNOWN>'", ", '<UNKNOWN>'", atCommand},
    {"GetModuleSetting",      Function::CheckModuleSetting,    367, nullptr, R"(Get ARC_CheckModuleSetting("Power/Cpu"))",
         15, true,  true,  Tell::ifActive, 4,  395, kOnce, ", ''", ", ''", getSetting},
    {"SetModuleSetting",      Function::CheckModuleSetting,    407, nullptr, R"(Set ARC_CheckModuleSetting("Nmea/Sbas", "on"))",
         15, true,  true,  Tell::ifActive, 4,  434, kOnce, ", false", ", false", setSetting},
    {"StartGNSSraw",          Function::StartGNSSraw,          526, nullptr, "ARC_StartGNSSraw()",
         -1, true,  true,  Tell::never,    0,    0, kOnce, ", ''", ", ''", startRaw},
    {"ForceStopGNSS",         Function::ForceStopGNSS,         571, nullptr, "ARC_ForceStopGNSS()",
         -1, false, false, Tell::never,    0,    0, kOnce, "", "", forceStop},
    {"StopGNSS",              Function::StopGNSS,              601, nullptr, "ARC_StopGNSS()",
         15, false, true,  Tell::ifActive, 5,  625, kOnce, "", "", stop},
    {"ResetAGNSS",            Function::ResetAGNSS,            634, nullptr, "ARC_ResetAGNSS()",
         15, false, false, Tell::ifActive, 4,  653, kOnce, "", "", reset},
    {"CurrentLSTA",           Function::CurrentLSTA,          1027, nullptr, R"(ARC_CurrentLSTA("12"))",
         15, true,  true,  Tell::ifActive, 4, 1054, Answers::unlessCancelled, ", false, 0", ", false, 0", queryLsta},
    {"EnableLSTA",            Function::EnableLSTA,           1136, nullptr, R"(ARC_EnableLSTA("12", "1", "5"))",
         15, true,  true,  Tell::ifActive, 4, 1157, Answers::onFailure, "", "", enableLsta},
};
// clang-format on

}  // namespace

const std::vector<PublishedCall>& publishedCalls()
{
    return kCalls;
}

std::ostream& operator<<(std::ostream& out, const PublishedCall& call)
{
    return out << call.callText;
}

bool needsClosedObject(const PublishedCall& call)
{
    return call.function == Function::SetNotificationMethod || call.function == Function::Open;
}

}  // namespace contract
