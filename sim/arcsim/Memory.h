#pragma once

#include "host/ModemHost.h"

#include <optional>
#include <string>

namespace arcsim {

/// What a modem keeps while its RIL daemon is dead, in a file: a process that is killed leaves it, the next one goes on
/// with it. Nothing when there is none, when it belongs to another scenario or to the time before the machine's start,
/// and when it makes no sense.
std::optional<ModemHost::Memory> readMemory(const std::string& file, const std::string& scenario);

/// Writes the file unless it says so already; `written` is what it says.
void writeMemory(const std::string& file, const std::string& scenario, const ModemHost::Memory& memory,
                 std::string& written);

/// Makes `link` a symbolic link to `path`, in the place of one that was there. Throws std::runtime_error.
void linkOutput(const std::string& link, const std::string& path);

}  // namespace arcsim
