// A client library that answers every call at once with success, so that only our code is measured. The executable's
// symbols take priority over those of any libArcRilD.so.

#include "client/InstantArc.h"
#include "arc/ArcRilD.h"

#include <cstring>

namespace {

ArcNotificationHandler g_handler = nullptr;

}  // namespace

namespace bench {

void notify(int id, void* data, int length)
{
    g_handler(id, data, length);
}

}  // namespace bench

extern "C" {
int ARC_SetNotificationMethod(int)
{
    return 0;
}
int ARC_Open()
{
    return 0;
}
int ARC_Close()
{
    return 0;
}
int ARC_RegisterNotification(ArcNotificationHandler handler)
{
    g_handler = handler;
    return 0;
}
const char* ARC_GetArcVersion()
{
    return "1";
}
int ARC_GetRilVersion(char*, char*, int)
{
    return 0;
}
int ARC_EnableLogging(int, const char*)
{
    return 0;
}
int ARC_AtcTunneling(const char*, char*)
{
    return 0;
}
int ARC_CheckModuleSetting(const char*, const char*, char* reply, int, int* writeIndicator)
{
    if (reply != nullptr)
        std::strcpy(reply, "\"15\"");
    if (writeIndicator != nullptr)
        *writeIndicator = 1;
    return 0;
}
int ARC_StartGNSSraw(char*, int)
{
    return 0;
}
int ARC_StopGNSS()
{
    return 0;
}
int ARC_ForceStopGNSS()
{
    return 0;
}
int ARC_ResetAGNSS()
{
    return 0;
}
int ARC_CurrentLSTA(int, LstaInfo*)
{
    return 0;
}
int ARC_EnableLSTA(int, bool, int)
{
    return 0;
}
}
