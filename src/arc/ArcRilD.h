/*
 * Our declaration of the RIL client library libArcRilD, the only way to the modem. Valid as C.
 *
 * Every function but ARC_GetArcVersion returns a result code: 0 is success, 1 to 39 have fixed meanings (their texts
 * are in kelarc/names.h). Texts are NUL-terminated on the way in; on the way out the caller passes a buffer and
 * the number of bytes that the library may use.
 */
#ifndef ARC_ARCRILD_H
#define ARC_ARCRILD_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

enum
{
    /** Notifications arrive one at a time on one thread of the library. */
    ARC_NOTIFY_METHOD_SINGLETHREAD = 1
};

/**
 * LSTA of one satellite system: filled by ARC_CurrentLSTA, and the payload of notification 34 (which may be unaligned).
 * Little-endian. The reserved bytes are the library's own; explicit ones keep the layout equal on every ABI.
 */
typedef struct LstaInfo
{
    int32_t indicator; /**< which system: 1000 GPS, 1001 GLONASS, 1002 BeiDou, 1003 Galileo */
    int32_t reserved4;
    int32_t status;
    int32_t reserved12;
    double value;
    unsigned char reserved24[40];
} LstaInfo;

/** Called by the library for every modem event; the data is valid during the call only. */
typedef void (*ArcNotificationHandler)(int id, void* data, int length);

int ARC_SetNotificationMethod(int method);
int ARC_Open(void);
int ARC_Close(void);
int ARC_RegisterNotification(ArcNotificationHandler handler);

/** The text belongs to the library; null when there is no version. */
const char* ARC_GetArcVersion(void);
/** Fills two texts of at most `size` bytes each. */
int ARC_GetRilVersion(char* primary, char* secondary, int size);
int ARC_EnableLogging(int zone, const char* text);
/** `answer` may be null: the modem's answer is then dropped. */
int ARC_AtcTunneling(const char* command, char* answer);

/**
 * Reads a setting (value and writeIndicator null: the quoted value goes into `reply`) or writes it (reply null, size 0:
 * 1 goes into `writeIndicator` when the value was changed).
 */
int ARC_CheckModuleSetting(const char* key, const char* value, char* reply, int replySize, int* writeIndicator);

int ARC_StartGNSSraw(char* text, int size);
int ARC_StopGNSS(void);
int ARC_ForceStopGNSS(void);
int ARC_ResetAGNSS(void);

int ARC_CurrentLSTA(int arcTechnologyId, LstaInfo* out);
int ARC_EnableLSTA(int arcTechnologyId, bool enable, int parameter);

#ifdef __cplusplus
}

static_assert(sizeof(LstaInfo) == 64, "the library fills 64 bytes");
static_assert(offsetof(LstaInfo, status) == 8 && offsetof(LstaInfo, value) == 16, "where the library writes them");
#endif

#endif
