#include "arc/ArcRilD.h"

/* The declarations are for C programs too. */
typedef char LstaInfoHas64Bytes[sizeof(LstaInfo) == 64 ? 1 : -1];

int openFromC(void);
int openFromC(void)
{
    return ARC_SetNotificationMethod(ARC_NOTIFY_METHOD_SINGLETHREAD) == 0 ? ARC_Open() : -1;
}
