#include "kelarc/Call.h"
#include "kelarc/KelArc.h"
#include "kelarc/LineWriter.h"
#include "kelarc/LogLine.h"
#include "kelarc/names.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace kelarc {
namespace {

constexpr std::size_t kLimit = kLogLineSize - 2;  // one byte less than fits before the terminating zero

std::string_view baseName(std::string_view path)
{
    if (path.empty())
        return path;
    // The first character is never checked: paths begin with a folder, so it cannot be the last '/'.
    std::size_t stop = path.size() - 1;
    while (stop > 0 && path[stop] != '/')
        --stop;
    return path.substr(stop + 1);
}

LineWriter beginLine(char (&buffer)[kLogLineSize], std::string_view sourceFile, std::string_view function,
                     std::size_t line)
{
    LineWriter writer(buffer, kLimit);
    writer << baseName(sourceFile) << "::" << function << "." << line << ": ";
    return writer;
}

/// Fills the buffer behind the text with zeros.
void endLine(char (&buffer)[kLogLineSize], const LineWriter& line)
{
    std::memset(line.next(), 0, static_cast<std::size_t>(buffer + kLogLineSize - line.next()));
}

/// Handles the conversions of the library's own messages without the standard library's printf, which would take most
/// of the time of a request. From any other conversion on, printf formats the rest.
void writeMessage(LineWriter& line, const char* format, std::va_list arguments)
{
    while (*format != '\0') {
        if (*format != '%') {
            const char* const end = strchrnul(format, '%');
            line << std::string_view(format, static_cast<std::size_t>(end - format));
            format = end;
            continue;
        }
        switch (format[1]) {
        case 's':
            line << va_arg(arguments, const char*);
            break;
        case 'd':
            line << va_arg(arguments, int);
            break;
        case 'u':
            line << va_arg(arguments, unsigned);
            break;
        default:
            const int length = std::vsnprintf(line.next(), line.room() + 1, format, arguments);
            line.advance(static_cast<std::size_t>(std::max(length, 0)));  // negative: printf failed
            return;
        }
        format += 2;
    }
}

}  // namespace

void formatLogLine(char (&buffer)[kLogLineSize], const char* sourceFile, const char* function, std::size_t line,
                   const char* format, std::va_list arguments)
{
    LineWriter writer = beginLine(buffer, sourceFile, function, line);
    writeMessage(writer, format, arguments);
    endLine(buffer, writer);
}

void formatResultLine(char (&buffer)[kLogLineSize], int retriesLeft, const char* callText, unsigned elapsedMs, int code)
{
    LineWriter line(buffer, kLimit);
    line << "KelArc::logArcResult.1224: [" << retriesLeft << "] " << callText << " took " << elapsedMs
         << " ms: " << result::textOf(code) << " (" << code << ")";
    endLine(buffer, line);
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
