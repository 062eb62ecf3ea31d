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
    addTask(kGetArcVersionCall, {"ARC_GetArcVersion()"}, [this, cb = std::move(cb)](task::ExecutionReason) {
        const char* version = nullptr;  // the client library's own text
        const CallResult result = runCall(kGetArcVersionCall, [&version] {
            version = ARC_GetArcVersion();
            return version != nullptr ? kSuccess : result::GENERIC_ERROR;
        });
        cb(result.code, std::string(version != nullptr ? version : kUnknownText));
    });
}

void KelArc::getRilVersion(std::function<void(int, RilVersion&&)>&& cb)
{
    addTask(kGetRilVersionCall, {"ARC_GetRilVersion()"}, [this, cb = std::move(cb)](task::ExecutionReason) {
        RilVersion version{};  // cleared once: what a failed attempt wrote stays
        const CallResult result = runCall(kGetRilVersionCall, [&version] {
            return ARC_GetRilVersion(version.primary, version.secondary, sizeof version.primary);
        });
        cb(result.code, std::move(version));
    });
}

void KelArc::enableLogging(LOGGING_ZONE zone, const std::string& text, std::function<void(int)>&& cb)
{
    const int zoneNumber = static_cast<int>(zone);
    addTask(kEnableLoggingCall, {"ARC_EnableLogging(\"", std::to_string(zoneNumber), "\", \"", text, "\")"},
            [this, zoneNumber, text = text, cb = std::move(cb)](task::ExecutionReason) {
                const CallResult result =
                    runCall(kEnableLoggingCall, [&] { return ARC_EnableLogging(zoneNumber, text.c_str()); });
                cb(result.code);
            });
}

void KelArc::ATcmd(const std::string& command, std::function<void(int, std::string&&)>&& cb)
{
    addTask(kAtcTunnelingCall, {"ARC_AtcTunneling(\"", command, "\")"},
            [this, command = command, cb = std::move(cb)](task::ExecutionReason) {
                // No answer buffer: the modem's answer is not fetched: published.
                const CallResult result =
                    runCall(kAtcTunnelingCall, [&] { return ARC_AtcTunneling(command.c_str(), nullptr); });
                cb(result.code, kUnknownText);
            });
}

}  // namespace kelarc
