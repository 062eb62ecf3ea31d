#pragma once

#include <string>

namespace arcsim::program {

/// Prints a line on stderr that begins with the program's name, with control characters made visible.
void sayError(const std::string& text);

/// Flushes standard output. Returns `exitCode`, or prints a message and returns kExitOutput when writing failed.
int finishOutput(int exitCode);

}  // namespace arcsim::program
