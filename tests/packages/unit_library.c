/* A client library as a unit has one: it answers everything with success and knows no more than its version. */

const char* ARC_GetArcVersion(void)
{
    return "the unit's own";
}

#define ANSWERS_SUCCESS(name)                                                                                          \
    int name(void)                                                                                                     \
    {                                                                                                                  \
        return 0;                                                                                                      \
    }
ANSWERS_SUCCESS(ARC_SetNotificationMethod)
ANSWERS_SUCCESS(ARC_Open)
ANSWERS_SUCCESS(ARC_Close)
ANSWERS_SUCCESS(ARC_RegisterNotification)
ANSWERS_SUCCESS(ARC_GetRilVersion)
ANSWERS_SUCCESS(ARC_EnableLogging)
ANSWERS_SUCCESS(ARC_AtcTunneling)
ANSWERS_SUCCESS(ARC_CheckModuleSetting)
ANSWERS_SUCCESS(ARC_StartGNSSraw)
ANSWERS_SUCCESS(ARC_StopGNSS)
ANSWERS_SUCCESS(ARC_ForceStopGNSS)
ANSWERS_SUCCESS(ARC_ResetAGNSS)
ANSWERS_SUCCESS(ARC_CurrentLSTA)
ANSWERS_SUCCESS(ARC_EnableLSTA)
