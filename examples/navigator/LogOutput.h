#pragma once

namespace navigator {

/// The log callback: writes the library's line to stderr with the time of day and the level in words, and
/// with control characters made visible. Any thread.
void logToStderr(int level, const char* line);
/// True if a line could not be written, unless the reader of a pipe has gone.
bool isLogLost();

/// A line of the program's own to stderr, in the same shape.
[[gnu::format(printf, 1, 2)]] void say(const char* format, ...);

}  // namespace navigator
