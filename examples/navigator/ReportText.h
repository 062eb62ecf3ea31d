#pragma once

#include "navigator/Inbox.h"
#include "nmea/Epoch.h"

#include <optional>
#include <string>

namespace navigator {

/// Like printf(), into a text.
[[gnu::format(printf, 1, 2)]] std::string format(const char* pattern, ...);

// How values read; a value that is not known reads "-".
const char* fixText(nmea::Fix fix);
std::string angleText(std::optional<double> degrees, char positive, char negative);  ///< "35.681236N"
std::string numberText(std::optional<double> value, int decimals);
std::string courseText(std::optional<double> degrees);  ///< "0" to "359"

std::string eventText(const LstaReport& report);
std::string eventText(const Notification& notification);

}  // namespace navigator
