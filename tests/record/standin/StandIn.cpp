#include "record/standin/StandIn.h"

namespace {

template <typename Function, typename... Arguments>
int answerOf(const Function& function, Arguments... arguments)
{
    return function ? function(arguments...) : 0;
}

}  // namespace

namespace standin {

Functions& functions()
{
    static auto* const functions = new Functions;  // never destroyed: threads may call while the process exits
    return *functions;
}

}  // namespace standin

using standin::functions;

int ARC_SetNotificationMethod(int method)
{
    return answerOf(functions().setNotificationMethod, method);
}
int ARC_Open(void)
{
    return answerOf(functions().open);
}
int ARC_Close(void)
{
    return answerOf(functions().close);
}
int ARC_RegisterNotification(ArcNotificationHandler handler)
{
    return answerOf(functions().registerNotification, handler);
}
const char* ARC_GetArcVersion(void)
{
    return functions().getArcVersion ? functions().getArcVersion() : "version";
}
int ARC_GetRilVersion(char* primary, char* secondary, int size)
{
    return answerOf(functions().getRilVersion, primary, secondary, size);
}
int ARC_EnableLogging(int zone, const char* text)
{
    return answerOf(functions().enableLogging, zone, text);
}
int ARC_AtcTunneling(const char* command, char* answer)
{
    return answerOf(functions().atcTunneling, command, answer);
}
int ARC_CheckModuleSetting(const char* key, const char* value, char* reply, int replySize, int* writeIndicator)
{
    return answerOf(functions().checkModuleSetting, key, value, reply, replySize, writeIndicator);
}
int ARC_StartGNSSraw(char* text, int size)
{
    return answerOf(functions().startGnssRaw, text, size);
}
int ARC_StopGNSS(void)
{
    return answerOf(functions().stopGnss);
}
int ARC_ForceStopGNSS(void)
{
    return answerOf(functions().forceStopGnss);
}
int ARC_ResetAGNSS(void)
{
    return answerOf(functions().resetAGnss);
}
int ARC_CurrentLSTA(int arcTechnologyId, LstaInfo* out)
{
    return answerOf(functions().currentLsta, arcTechnologyId, out);
}
int ARC_EnableLSTA(int arcTechnologyId, bool enable, int parameter)
{
    return answerOf(functions().enableLsta, arcTechnologyId, enable, parameter);
}
