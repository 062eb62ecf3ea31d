#include "arc/ArcRilD.h"
#include "kelarc/AddTask.h"

#include <utility>

namespace kelarc {
namespace {

constexpr const char* kUnknownText = "<UNKNOWN>";

}  // namespace

void KelArc::getArcVersion(std::function<void(int, std::string&&)>&& cb)
{
    addTask(kGetArcVersionCall, "ARC_GetArcVersion()", [this, cb = std::move(cb)](const std::string& call) {
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
    addTask(kGetRilVersionCall, "ARC_GetRilVersion()", [this, cb = std::move(cb)](const std::string& call) {
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
    addTask(kEnableLoggingCall, joined({"ARC_EnableLogging(\"", std::to_string(zoneNumber), "\", \"", text, "\")"}),
            [this, zoneNumber, text, cb = std::move(cb)](const std::string& call) {
                const CallResult result =
                    runCall(kEnableLoggingCall, call, [&] { return ARC_EnableLogging(zoneNumber, text.c_str()); });
                cb(result.code);
            });
}

void KelArc::ATcmd(const std::string& command, std::function<void(int, std::string&&)>&& cb)
{
    addTask(kAtcTunnelingCall, joined({"ARC_AtcTunneling(\"", command, "\")"}),
            [this, command, cb = std::move(cb)](const std::string& call) {
                // No answer buffer: what the modem answers is not fetched, as published.
                const CallResult result =
                    runCall(kAtcTunnelingCall, call, [&] { return ARC_AtcTunneling(command.c_str(), nullptr); });
                cb(result.code, kUnknownText);
            });
}

}  // namespace kelarc
