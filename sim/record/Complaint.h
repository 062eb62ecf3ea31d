#pragma once

#include <cerrno>
#include <cstring>
#include <unistd.h>

namespace arcrecord {

/// Writes a line to standard error. Does nothing if that is closed: the C library, formatting onto a closed descriptor,
/// would keep 8 KiB for good.
inline void complain(const char* line)
{
    const char* const end = line + std::strlen(line);
    while (line < end) {
        const ssize_t written = ::write(STDERR_FILENO, line, static_cast<std::size_t>(end - line));
        if (written < 0 && errno != EINTR)
            return;
        line += written > 0 ? written : 0;
    }
}

}  // namespace arcrecord
