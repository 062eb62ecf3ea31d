#pragma once

// Levels, and the shape of a line on a descriptor. Part of kelarc/logsink.h.

#include "Printable.h"

#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <syslog.h>
#include <unistd.h>

namespace kelarc::logsink {

/// The levels that the library uses.
constexpr int kInfo = 2;     ///< success and notices
constexpr int kBusy = 3;     ///< the modem asks for another try: codes 15 and 26
constexpr int kWarning = 4;  ///< failures and refusals
constexpr int kError = 5;    ///< a stop that failed

/// Implementation of the functions; not for users.
namespace detail {

struct LevelRow
{
    const char* name;
    int priority;  ///< as syslog and the journal count
    const char* colour;
};

inline LevelRow rowOf(int level)
{
    switch (level) {
    case kInfo:
        return {"info", LOG_INFO, "\033[32m"};
    case kBusy:
        return {"busy", LOG_NOTICE, "\033[36m"};
    case kWarning:
        return {"warning", LOG_WARNING, "\033[33m"};
    case kError:
        return {"error", LOG_ERR, "\033[31m"};
    default:  // none that the library uses today
        return level < kInfo ? LevelRow{"debug", LOG_DEBUG, ""} : LevelRow{"error", LOG_ERR, "\033[31m"};
    }
}

/// Leaves errno as it was.
class ErrnoKeeper
{
public:
    ErrnoKeeper() = default;
    ErrnoKeeper(const ErrnoKeeper&) = delete;
    ErrnoKeeper& operator=(const ErrnoKeeper&) = delete;
    ~ErrnoKeeper() { errno = m_errno; }

private:
    int m_errno = errno;
};

/// The descriptor, or -1 with the reason in errno. One of the standard three is replaced by another: the application
/// has closed it and may open it again.
inline int aboveStandard(int descriptor)
{
    if (descriptor < 0 || descriptor > STDERR_FILENO)
        return descriptor;
    const int moved = ::fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    const int error = errno;
    ::close(descriptor);
    errno = error;
    return moved;
}

/// A descriptor that is closed at the end, never a standard one; -1 for none.
class Descriptor
{
public:
    explicit Descriptor(int descriptor) : m_descriptor(aboveStandard(descriptor)) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor()
    {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
    }
    int get() const { return m_descriptor; }

private:
    int m_descriptor;
};

inline bool writeAll(int descriptor, std::string_view text)
{
    while (!text.empty()) {
        const ssize_t written = ::write(descriptor, text.data(), text.size());
        if (written < 0 && errno != EINTR)
            return false;
        if (written > 0)
            text.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

/// "2026-03-01T12:00:00.123Z"
inline std::string utcText(std::chrono::system_clock::time_point time)
{
    const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
    const auto sinceEpoch = std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch());
    std::tm utc{};
    ::gmtime_r(&seconds, &utc);
    char text[32];
    const std::size_t length = std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &utc);
    std::snprintf(text + length, sizeof text - length, ".%03dZ", static_cast<int>(sinceEpoch.count() % 1000));
    return text;
}

inline bool wantsColour(int descriptor)
{
    const char* const noColour = std::getenv("NO_COLOR");
    const char* const terminal = std::getenv("TERM");
    return ::isatty(descriptor) == 1 && (noColour == nullptr || *noColour == '\0') &&
           (terminal == nullptr || std::string_view(terminal) != "dumb");
}

}  // namespace detail
}  // namespace kelarc::logsink
