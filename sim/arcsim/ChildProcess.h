#pragma once

#include <map>
#include <string>
#include <sys/types.h>
#include <vector>

namespace arcsim::program {

/// Starts a program, which is searched for as a shell does, with these environment variables set; an empty value
/// removes a variable. Throws std::system_error when the program cannot be started.
pid_t startProcess(const std::vector<std::string>& command, const std::map<std::string, std::string>& environment);

/// The status as a shell reports it: the exit code, or 128 plus the number of the signal.
int exitCodeOf(int waitStatus);

}  // namespace arcsim::program
