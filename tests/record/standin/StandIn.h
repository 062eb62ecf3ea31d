#pragma once

// A client library whose functions do what a test program says, for behaviour that the simulated modem never shows.

#include "arc/ArcRilD.h"

#include <functional>

#pragma GCC visibility push(default)

namespace standin {

/// What each function does; without one it returns 0, or "version".
struct Functions
{
    std::function<int(int)> setNotificationMethod{};
    std::function<int()> open{};
    std::function<int()> close{};
    std::function<int(ArcNotificationHandler)> registerNotification{};
    std::function<const char*()> getArcVersion{};
    std::function<int(char*, char*, int)> getRilVersion{};
    std::function<int(int, const char*)> enableLogging{};
    std::function<int(const char*, char*)> atcTunneling{};
    std::function<int(const char*, const char*, char*, int, int*)> checkModuleSetting{};
    std::function<int(char*, int)> startGnssRaw{};
    std::function<int()> stopGnss{};
    std::function<int()> forceStopGnss{};
    std::function<int()> resetAGnss{};
    std::function<int(int, LstaInfo*)> currentLsta{};
    std::function<int(int, bool, int)> enableLsta{};
};

Functions& functions();

}  // namespace standin

#pragma GCC visibility pop
