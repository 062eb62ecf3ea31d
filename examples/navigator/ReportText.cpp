#include "navigator/ReportText.h"

#include "kelarc/names.h"

#include <cmath>
#include <cstdarg>
#include <cstdio>

namespace navigator {
namespace {

}  // namespace

std::string format(const char* pattern, ...)
{
    char text[256];
    std::va_list arguments;
    va_start(arguments, pattern);
    std::vsnprintf(text, sizeof text, pattern, arguments);
    va_end(arguments);
    return text;
}

const char* fixText(nmea::Fix fix)
{
    switch (fix) {
    case nmea::Fix::none:
        break;
    case nmea::Fix::twoD:
        return "2D";
    case nmea::Fix::threeD:
        return "3D";
    }
    return "none";
}

std::string angleText(std::optional<double> degrees, char positive, char negative)
{
    if (!degrees)
        return "-";
    return format("%.6f%c", std::abs(*degrees), *degrees < 0 ? negative : positive);
}

std::string numberText(std::optional<double> value, int decimals)
{
    return value ? format("%.*f", decimals, *value) : "-";
}

std::string courseText(std::optional<double> degrees)
{
    return degrees ? format("%.0f", std::fmod(std::round(*degrees), 360)) : "-";  // 359.6 is north, not 360
}

std::string eventText(const LstaReport& report)
{
    return format("LSTA of %s: status %d, value %.1f", kelarc::lsta::to_string(report.type), report.status,
                  report.value);
}

std::string eventText(const Notification& notification)
{
    if (notification.id == kelarc::NOTIFY_ID::RAW_GNSS_START_ENDED)
        return "the request to start the output has ended";
    std::string text = format("%s with %d bytes", to_string(notification.id), notification.length);
    for (std::size_t i = 0; i < notification.start.size(); ++i)
        text += format("%s%02x", i == 0 ? ": " : " ", notification.start[i]);
    return text + (static_cast<int>(notification.start.size()) < notification.length ? " ..." : "");
}

}  // namespace navigator
