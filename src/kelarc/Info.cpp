#include "arc/ArcRilD.h"
#include "kelarc/Call.h"
#include "kelarc/CallPolicy.h"
#include "kelarc/KelArc.h"

#include <utility>

namespace kelarc {
namespace {

constexpr const char* kUnknownText = "<UNKNOWN>";

}  // namespace

void KelArc::getArcVersion(std::function<void(int, std::string&&)>&& cb)
{
    const std::string call = "ARC_GetArcVersion()";
    addTask(kGetArcVersionCall, call, [this, call, cb = std::move(cb)](task::ExecutionReason) {
        const char* version = nullptr;  // the client library's own text
        const CallResult result = runCall(kGetArcVersionCall, call, [&version] {
            version = ARC_GetArcVersion();
            return version != nullptr ? kSuccess : kGenericError;
        });
        cb(result.code, std::string(version != nullptr ? version : kUnknownText));
    });
}

void KelArc::getRilVersion(std::function<void(int, RilVersion&&)>&& cb)
{
    const std::string call = "ARC_GetRilVersion()";
    addTask(kGetRilVersionCall, call, [this, call, cb = std::move(cb)](task::ExecutionReason) {
        RilVersion version{};  // cleared once: what a failed attempt wrote stays
        const CallResult result = runCall(kGetRilVersionCall, call, [&version] {
            return ARC_GetRilVersion(version.primary, version.secondary, sizeof version.primary);
        });
        cb(result.code, std::move(version));
    });
}

void KelArc::enableLogging(LOGGING_ZONE zone, const std::string& text, std::function<void(int)>&& cb)
{
    const int zoneNumber = static_cast<int>(zone);
    const std::string call = "ARC_EnableLogging(\"" + std::to_string(zoneNumber) + "\", \"" + text + "\")";
    addTask(kEnableLoggingCall, call, [this, call, zoneNumber, text, cb = std::move(cb)](task::ExecutionReason) {
        const CallResult result =
            runCall(kEnableLoggingCall, call, [&] { return ARC_EnableLogging(zoneNumber, text.c_str()); });
        cb(result.code);
    });
}

void KelArc::ATcmd(const std::string& command, std::function<void(int, std::string&&)>&& cb)
{
    const std::string call = "ARC_AtcTunneling(\"" + command + "\")";
    addTask(kAtcTunnelingCall, call, [this, call, command, cb = std::move(cb)](task::ExecutionReason) {
        // No answer buffer: what the modem answers is not fetched, as published.
        const CallResult result =
            runCall(kAtcTunnelingCall, call, [&] { return ARC_AtcTunneling(command.c_str(), nullptr); });
        cb(result.code, kUnknownText);
    });
}

}  // namespace kelarc
