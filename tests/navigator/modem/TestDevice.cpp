// Replaces one function of the simulated modem: the output's device is the one that the environment names.

#include "arc/ArcRilD.h"

#include <cstdio>
#include <cstdlib>

extern "C" __attribute__((visibility("default"))) int ARC_StartGNSSraw(char* text, int size)
{
    const char* const path = std::getenv("NAVIGATOR_TEST_DEVICE");
    std::snprintf(text, static_cast<std::size_t>(size), "%s", path != nullptr ? path : "");
    return 0;
}
