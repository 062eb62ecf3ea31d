#pragma once

#include "navigator/Options.h"
#include "navigator/Report.h"
#include "navigator/Requests.h"

namespace navigator {

// Each prints what the modem answered and returns how many requests it refused.

int showVersions(Requests& requests, Report& report);
int showSettings(Requests& requests, Report& report);
int configureReceiver(Requests& requests, Report& report, const Options& options);
/// Also prints the LSTA that the systems have now.
int enableLsta(Requests& requests, Report& report);

/// Switches LSTA reports of all systems on; reports refusals of the modem, and does not wait.
void listenToLsta(Requests& requests);

}  // namespace navigator
