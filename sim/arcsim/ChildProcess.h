#pragma once

#include <map>
#include <string>
#include <sys/types.h>
#include <vector>

namespace arcsim::program {

/// Starts a program, found as a shell would find it, with these variables of the environment set; an empty value
/// takes a variable away. Throws std::system_error when it cannot be started.
pid_t startProcess(const std::vector<std::string>& command, const std::map<std::string, std::string>& environment);

/// As a shell tells it: the exit code, or 128 and the number of the signal.
int exitCodeOf(int waitStatus);

}  // namespace arcsim::program
