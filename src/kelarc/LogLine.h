#pragma once

#include <cstdarg>
#include <cstddef>

namespace kelarc {

constexpr std::size_t kLogLineSize = 512;

/// Writes "<base name>::<function>.<line>: <message>" into `buffer`, cut to 510 characters, the rest zeros. The base
/// name is what follows the last '/' of `sourceFile`; a path without one loses its first character. The path must not
/// be empty.
void formatLogLine(char (&buffer)[kLogLineSize], const char* sourceFile, const char* function, std::size_t line,
                   const char* format, std::va_list arguments);

/// The same for the outcome of one attempt.
void formatResultLine(char (&buffer)[kLogLineSize], int retriesLeft, const char* callText, unsigned elapsedMs,
                      int code);

}  // namespace kelarc
