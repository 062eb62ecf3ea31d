#pragma once

#include "kelarcctl/Commands.h"

#include <chrono>
#include <optional>

namespace kelarcctl {

struct MonitorOptions
{
    bool noColour = false;
    std::optional<std::chrono::milliseconds> duration{};  ///< empty: no limit
};

/// Shows the modem on a screen or, with --json, as lines. Returns the exit code; throws Failure.
int runMonitor(const MonitorOptions& options, const Invocation& invocation);

}  // namespace kelarcctl
