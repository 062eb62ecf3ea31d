// Calls every function of whatever client library it runs with, and prints what comes back.

#include "arc/ArcRilD.h"

#include <array>
#include <cstdio>

namespace {

void handler(int, void*, int) {}

}  // namespace

int main()
{
    std::array<char, 256> first{};
    std::array<char, 256> second{};
    int indicator = -1;
    LstaInfo record{};
    std::printf("%d ", ARC_SetNotificationMethod(ARC_NOTIFY_METHOD_SINGLETHREAD));
    std::printf("%d ", ARC_Open());
    std::printf("%d ", ARC_RegisterNotification(handler));
    const char* const version = ARC_GetArcVersion();
    std::printf("'%s' ", version == nullptr ? "null" : version);
    std::printf("%d ", ARC_GetRilVersion(first.data(), second.data(), 256));
    std::printf("%d ", ARC_EnableLogging(3, "zone"));
    std::printf("%d ", ARC_AtcTunneling("AT+CSQ", first.data()));
    std::printf("%d ", ARC_CheckModuleSetting("Power/Cpu", nullptr, first.data(), 255, nullptr));
    std::printf("%d ", ARC_CheckModuleSetting("Power/Cpu", "\"max\"", nullptr, 0, &indicator));
    std::printf("%d ", ARC_StartGNSSraw(second.data(), 255));
    std::printf("%d ", ARC_StopGNSS());
    std::printf("%d ", ARC_ForceStopGNSS());
    std::printf("%d ", ARC_ResetAGNSS());
    std::printf("%d ", ARC_CurrentLSTA(10, &record));
    std::printf("%d ", ARC_EnableLSTA(10, true, 0));
    std::printf("%d\n", ARC_Close());
    return 0;
}
