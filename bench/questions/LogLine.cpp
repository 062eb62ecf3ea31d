// Formats one log line without passing it on.
//   a log line       a message with one number
//   a result line    that of an attempt: numbers and texts

#include "kelarc/LogLine.h"
#include "kelarc/names.h"
#include "questions/Measure.h"
#include "questions/Questions.h"

#include <cstdio>
#include <fmt/format.h>

namespace bench {
namespace {

constexpr int kLines = 20'000;
constexpr std::size_t kRoom = 511;
constexpr const char* kCall = "Get ARC_CheckModuleSetting(\"Sens/MinElevAngle\")";

// Variables that the compiler cannot treat as constants.
volatile int g_retries = 15;
volatile unsigned g_elapsedMs = 12;
volatile int g_code = 0;

/// Prevents the compiler from removing the formatted text.
void use(const char* text)
{
    asm volatile("" : : "r"(text) : "memory");
}

void format(char (&buffer)[kelarc::kLogLineSize], const char* function, std::size_t line, const char* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    kelarc::formatLogLine(buffer, "kelarc/KelArc", function, line, format, arguments);
    va_end(arguments);
}

template <typename Write>
Contender writing(const char* name, Write write)
{
    return {name, [write] {
                char buffer[kelarc::kLogLineSize];
                const std::int64_t begin = nowNs();
                for (int i = 0; i < kLines; ++i) {
                    write(buffer);
                    use(buffer);
                }
                return std::vector<double>{static_cast<double>(nowNs() - begin) / kLines};
            }};
}

using Buffer = char (&)[kelarc::kLogLineSize];

Table logLines(const Effort& effort)
{
    Rounds rounds({writing("KelArc",
                           [](Buffer buffer) {
                               format(buffer, "setMinElevation", 962, "Invalid minimum elevation, out of bounds: %u",
                                      unsigned{g_elapsedMs});
                           }),
                   writing("fmt::format_to_n",
                           [](Buffer buffer) {
                               *fmt::format_to_n(buffer, kRoom,
                                                 "{}::{}.{}: Invalid minimum elevation, out of bounds: {}", "KelArc",
                                                 "setMinElevation", 962, unsigned{g_elapsedMs})
                                    .out = '\0';
                           }),
                   writing("snprintf",
                           [](Buffer buffer) {
                               std::snprintf(buffer, kRoom, "%s::%s.%d: Invalid minimum elevation, out of bounds: %u",
                                             "KelArc", "setMinElevation", 962, unsigned{g_elapsedMs});
                           })},
                  effort.seed);
    rounds.run(effort.rounds);
    return comparison("A log line", "", {{"ns", 0}}, rounds);
}

Table resultLines(const Effort& effort)
{
    Rounds rounds(
        {writing("KelArc",
                 [](Buffer buffer) { kelarc::formatResultLine(buffer, g_retries, kCall, g_elapsedMs, g_code); }),
         writing("fmt::format_to_n",
                 [](Buffer buffer) {
                     *fmt::format_to_n(buffer, kRoom, "{}::{}.{}: [{}] {} took {} ms: {} ({})", "KelArc",
                                       "logArcResult", 1224, int{g_retries}, kCall, unsigned{g_elapsedMs},
                                       kelarc::result::textOf(g_code), int{g_code})
                          .out = '\0';
                 }),
         writing("snprintf",
                 [](Buffer buffer) {
                     std::snprintf(buffer, kRoom, "%s::%s.%d: [%d] %s took %u ms: %s (%d)", "KelArc", "logArcResult",
                                   1224, int{g_retries}, kCall, unsigned{g_elapsedMs},
                                   kelarc::result::textOf(g_code).data(), int{g_code});
                 })},
        effort.seed);
    rounds.run(effort.rounds);
    return comparison("A result line", "", {{"ns", 0}}, rounds);
}

}  // namespace

std::vector<Table> logLine(const Effort& effort)
{
    return {logLines(effort), resultLines(effort)};
}

}  // namespace bench
