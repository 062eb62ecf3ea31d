#pragma once

// Ready log callbacks for the constructor of kelarc::KelArc. Header only: the code is compiled into the application.

#include "logsink/Journal.h"
#include "logsink/Line.h"
#include "logsink/Printable.h"

#include <cerrno>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <syslog.h>
#include <unistd.h>
#include <utility>

/// Log callbacks for common targets.
///
///     kelarc::KelArc modem(kelarc::logsink::toStderr());
///     kelarc::KelArc modem(kelarc::logsink::toSyslog(kelarc::logsink::kWarning));
///     kelarc::KelArc modem(kelarc::logsink::toJournal("navigator"));
///
/// Each function makes a callback that any number of threads may call at the same time. It may be copied; copies share
/// their state. Lines below `lowestLevel` are left out. Lines are shown as printable() makes them, so that each stays
/// one line. A line that cannot be written goes to `otherwise` if the function has one; else it is lost. Nothing is
/// thrown for it, except std::bad_alloc without memory for the line. errno is left as it was.
namespace kelarc::logsink {

using LogCallback = std::function<void(int, char const*)>;

/// Where systemd's journal listens.
constexpr const char* kJournalSocket = "/run/systemd/journal/socket";

/// Writes "2026-03-01T12:00:00.123Z warning KelArc::...", in UTC, to a descriptor that stays the caller's and open; one
/// write a line, so that lines of several processes do not mix. On a terminal the level is coloured, unless NO_COLOR is
/// set or TERM is "dumb" when the callback is made. A line that cannot be written as a whole goes to `otherwise`.
inline LogCallback toDescriptor(int descriptor, int lowestLevel = kInfo, LogCallback otherwise = {})
{
    return [descriptor, lowestLevel, otherwise = std::move(otherwise), colours = detail::wantsColour(descriptor),
            mutex = std::make_shared<std::mutex>()](int level, const char* line) {
        if (level < lowestLevel)
            return;
        const detail::ErrnoKeeper keeper;
        const detail::LevelRow row = detail::rowOf(level);
        const bool coloured = colours && *row.colour != '\0';
        const std::string name = coloured ? row.colour + std::string(row.name) + "\033[0m" : row.name;
        const std::string rest = ' ' + name + ' ' + printable(line) + '\n';
        std::unique_lock<std::mutex> lock(*mutex);  // covers the time too, so that lines are in its order
        const bool isWritten = detail::writeAll(descriptor, detail::utcText(std::chrono::system_clock::now()) + rest);
        lock.unlock();
        if (!isWritten && otherwise)
            otherwise(level, line);
    };
}

/// The same to standard error.
inline LogCallback toStderr(int lowestLevel = kInfo)
{
    return toDescriptor(STDERR_FILENO, lowestLevel);
}

/// Hands lines to syslog() with the priorities LOG_INFO, LOG_NOTICE (for busy), LOG_WARNING and LOG_ERR. Identity and
/// facility are what the program has given to openlog(), or the system's defaults.
inline LogCallback toSyslog(int lowestLevel = kInfo)
{
    return [lowestLevel](int level, const char* line) {
        if (level < lowestLevel)
            return;
        const detail::ErrnoKeeper keeper;
        ::syslog(detail::rowOf(level).priority, "%s", printable(line).c_str());
    };
}

/// Sends lines to systemd's journal in its native protocol, with the fields MESSAGE (the line), PRIORITY (as
/// toSyslog()), SYSLOG_IDENTIFIER, KELARC_LEVEL (the library's number), and CODE_FUNC and CODE_LINE as the line shows
/// them:
///
///     journalctl -t navigator KELARC_LEVEL=4 + KELARC_LEVEL=5
///     journalctl -t navigator CODE_LINE=1224 -o cat
///
/// An empty `identifier` stands for the program's name. A line goes to `otherwise` if there is no journal, or if its
/// queue is full because it is slow or hangs. The callback never waits for the journal, since the library's requests
/// would wait too.
inline LogCallback toJournal(std::string identifier = {}, int lowestLevel = kInfo, LogCallback otherwise = toStderr(),
                             const std::string& socketPath = kJournalSocket)
{
    if (identifier.empty())
        identifier = program_invocation_short_name;
    return [identifier = std::move(identifier), lowestLevel, otherwise = std::move(otherwise),
            journal = std::make_shared<const detail::JournalSocket>(socketPath)](int level, const char* line) {
        if (level < lowestLevel)
            return;
        const detail::ErrnoKeeper keeper;
        if (!journal->send(detail::journalEntry(identifier, level, line)) && otherwise)
            otherwise(level, line);
    };
}

}  // namespace kelarc::logsink
