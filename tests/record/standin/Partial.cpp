// A client library that lacks most functions.

#include "arc/ArcRilD.h"

int ARC_Open(void)
{
    return 7;
}
int ARC_GetRilVersion(char*, char*, int)
{
    return 8;
}
int ARC_ResetAGNSS(void)
{
    return 9;
}
