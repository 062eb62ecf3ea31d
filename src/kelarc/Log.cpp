#include "kelarc/KelArc.h"
#include "kelarc/LogLine.h"

#include <cstdio>
#include <cstring>

namespace kelarc {
namespace {

constexpr std::size_t kLimit = kLogLineSize - 1;  // terminating zero included: one byte less than the buffer has

const char* baseName(const char* path)
{
    const char* stop = path + std::strlen(path);
    // The first character is never looked at: paths have a folder in front, so it cannot be the last '/'.
    while (stop > path && *--stop != '/') {
    }
    return *path != '\0' ? stop + 1 : path;
}

}  // namespace

void formatLogLine(char (&buffer)[kLogLineSize], const char* sourceFile, const char* function, std::size_t line,
                   const char* format, std::va_list arguments)
{
    std::memset(buffer, 0, sizeof buffer);
    const int written = std::snprintf(buffer, kLimit, "%s::%s.%zu: ", baseName(sourceFile), function, line);
    const auto prefix = static_cast<std::size_t>(written);
    if (prefix < kLimit)  // a longer prefix has been cut and leaves no room
        std::vsnprintf(buffer + prefix, kLimit - prefix, format, arguments);
}

void KelArc::log(int level, const char* sourceFile, const char* function, std::size_t line, const char* format, ...)
{
    char buffer[kLogLineSize];
    std::va_list arguments;
    va_start(arguments, format);
    formatLogLine(buffer, sourceFile, function, line, format, arguments);
    va_end(arguments);
    m_logCb(level, buffer);
}

}  // namespace kelarc
