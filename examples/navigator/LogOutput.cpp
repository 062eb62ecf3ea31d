#include "navigator/LogOutput.h"

#include "kelarc/logsink.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <ctime>

namespace navigator {
namespace {

std::atomic<bool> g_isLost{false};

const char* wordFor(int level)
{
    switch (level) {
    case 2:
        return "info";
    case 3:
        return "busy";  // the modem asks for another try
    case 4:
        return "warning";
    case 5:
        return "error";
    default:
        return "log";
    }
}

void write(const char* word, const char* line)
{
    const auto now = std::chrono::system_clock::now();
    const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
    const auto sinceEpoch = std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch());
    std::tm local{};
    ::localtime_r(&seconds, &local);
    // One call a line, so that lines of several threads do not mix.
    if (std::fprintf(stderr, "%02d:%02d:%02d.%03d %-7s %s\n", local.tm_hour, local.tm_min, local.tm_sec,
                     static_cast<int>(sinceEpoch.count() % 1000), word, kelarc::logsink::printable(line).c_str()) < 0 &&
        errno != EPIPE)
        g_isLost = true;
}

}  // namespace

void logToStderr(int level, const char* line)
{
    write(wordFor(level), line);
}

bool isLogLost()
{
    return g_isLost;
}

void say(const char* format, ...)
{
    char text[1024];
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    write("program", text);
}

}  // namespace navigator
