#include "memory/ClientLibrary.h"
#include "memory/Memory.h"

#include <cstdio>

namespace client {

std::atomic<int> calls{0};
std::atomic<int> code{0};
std::atomic<bool> worksWithoutMemory{false};
std::atomic<const char*> text{""};
std::atomic<int> indicatorOnEntry{0};
std::atomic<ArcNotificationHandler> handler{nullptr};

void reset()
{
    calls = 0;
    code = 0;
    worksWithoutMemory = false;
    text = "";
    indicatorOnEntry = 0;
}

}  // namespace client

namespace {

int called()
{
    ++client::calls;
    if (client::worksWithoutMemory)
        memory::leave(0);
    return client::code;
}

}  // namespace

extern "C" {
int ARC_SetNotificationMethod(int)
{
    return called();
}
int ARC_Open()
{
    called();
    return 0;
}
int ARC_Close()
{
    called();
    return 0;
}
int ARC_RegisterNotification(ArcNotificationHandler registered)
{
    client::handler = registered;
    return called();
}
const char* ARC_GetArcVersion()
{
    called();
    return client::text;
}
int ARC_GetRilVersion(char* primary, char*, int size)
{
    std::snprintf(primary, static_cast<std::size_t>(size), "%s", client::text.load());
    return called();
}
int ARC_EnableLogging(int, const char*)
{
    return called();
}
int ARC_AtcTunneling(const char*, char*)
{
    return called();
}
int ARC_CheckModuleSetting(const char*, const char*, char* reply, int size, int* indicator)
{
    if (reply != nullptr)
        std::snprintf(reply, static_cast<std::size_t>(size), "%s", client::text.load());
    if (indicator != nullptr) {
        client::indicatorOnEntry = *indicator;
        *indicator = 1;
    }
    return called();
}
int ARC_StartGNSSraw(char* text, int size)
{
    std::snprintf(text, static_cast<std::size_t>(size), "%s", client::text.load());
    return called();
}
int ARC_StopGNSS()
{
    return called();
}
int ARC_ForceStopGNSS()
{
    return called();
}
int ARC_ResetAGNSS()
{
    return called();
}
int ARC_CurrentLSTA(int, LstaInfo* out)
{
    out->indicator = 1000;
    return called();
}
int ARC_EnableLSTA(int, bool, int)
{
    return called();
}
}
