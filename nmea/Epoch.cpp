#include "nmea/Epoch.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <string>

namespace nmea {
namespace {

/// Some receivers number satellites across all systems; others start again in each system.
std::optional<System> systemOfNumber(int number)
{
    struct Range
    {
        int first;
        int last;
        System system;
    };
    constexpr Range kRanges[] = {
        {1, 32, System::gps},     {33, 64, System::sbas},     {65, 99, System::glonass},   {120, 158, System::sbas},
        {193, 202, System::qzss}, {203, 263, System::beidou}, {301, 336, System::galileo}, {401, 463, System::beidou},
    };
    for (const Range& range : kRanges)
        if (number >= range.first && number <= range.last)
            return range.system;
    return std::nullopt;
}

}  // namespace

std::optional<double> numberOf(std::string_view field)
{
    double value = 0;
    const auto [end, error] =
        std::from_chars(field.data(), field.data() + field.size(), value, std::chars_format::fixed);
    if (error != std::errc() || end != field.data() + field.size() || !(std::abs(value) < 1e9))
        return std::nullopt;
    return value;
}

std::optional<int> timeOf(std::string_view field)
{
    const std::optional<double> value = numberOf(field);
    if (field.size() < 6 || !value || *value < 0 || *value >= 240000)
        return std::nullopt;
    const auto clock = static_cast<int>(*value);
    const int hours = clock / 10000;
    const int minutes = clock / 100 % 100;
    const int seconds = clock % 100;
    if (minutes > 59 || seconds > 60)  // 60: a leap second
        return std::nullopt;
    const auto fractionMs = static_cast<int>(std::lround((*value - clock) * 1000));
    return ((hours * 60 + minutes) * 60 + seconds) * 1000 + std::min(fractionMs, 999);  // not the next second's
}

std::optional<Date> dateOf(std::string_view field)
{
    if (field.size() != 6)
        return std::nullopt;
    const double year = numberOf(field.substr(4)).value_or(-1);
    const char* const century = year < 80 ? "20" : "19";  // GPS time began in 1980
    return dateOf(field.substr(0, 2), field.substr(2, 2), century + std::string(field.substr(4)));
}

std::optional<Date> dateOf(std::string_view day, std::string_view month, std::string_view year)
{
    const auto wholeOf = [](std::string_view field) { return static_cast<int>(numberOf(field).value_or(0)); };
    const Date date{wholeOf(year), wholeOf(month), wholeOf(day)};
    if (date.month < 1 || date.month > 12 || date.day < 1 || date.day > 31 || year.size() != 4 || date.year < 1980)
        return std::nullopt;
    return date;
}

std::optional<double> angleOf(std::string_view field, std::string_view hemisphere)
{
    const std::optional<double> value = numberOf(field);
    const bool northSouth = hemisphere == "N" || hemisphere == "S";
    if (!value || *value < 0 || (!northSouth && hemisphere != "E" && hemisphere != "W"))
        return std::nullopt;
    const double minutes = std::fmod(*value, 100);
    const double degrees = std::floor(*value / 100) + minutes / 60;
    if (minutes >= 60 || degrees > (northSouth ? 90 : 180))
        return std::nullopt;
    return hemisphere == "S" || hemisphere == "W" ? -degrees : degrees;
}

std::optional<System> systemOf(std::string_view talker, std::string_view systemId, int number)
{
    if (talker == "GP" || systemId == "1") {
        const std::optional<System> system = systemOfNumber(number);
        return system == System::sbas || system == System::qzss ? system : System::gps;
    }
    if (talker == "GL" || systemId == "2")
        return System::glonass;
    if (talker == "GA" || systemId == "3")
        return System::galileo;
    if (talker == "GB" || talker == "BD" || systemId == "4")
        return System::beidou;
    if (talker == "GQ" || talker == "QZ" || systemId == "5")
        return System::qzss;
    return talker == "GN" ? systemOfNumber(number) : std::nullopt;
}

std::string timeText(const Epoch& epoch)
{
    if (!epoch.utcMs)
        return "--:--:--";
    const int seconds = *epoch.utcMs / 1000;
    if (seconds == 86400)
        return "23:59:60";  // a leap second
    char text[48];
    std::snprintf(text, sizeof text, "%02d:%02d:%02d", seconds / 3600, seconds / 60 % 60, seconds % 60);
    return text;
}

std::string dateText(const Epoch& epoch)
{
    if (!epoch.date)
        return "";
    char text[48];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d", epoch.date->year, epoch.date->month, epoch.date->day);
    return text;
}

}  // namespace nmea
