#pragma once

#include <string>

namespace arcsim::program {

/// A line on stderr that begins with the program's name; with control characters made visible.
void sayError(const std::string& text);

/// Sees to it that everything written to standard output has gone out. Returns `exitCode`, or kExitOutput with a
/// message when it could not be written.
int finishOutput(int exitCode);

}  // namespace arcsim::program
