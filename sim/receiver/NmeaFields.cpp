#include "receiver/Nmea.h"

#include <charconv>
#include <cmath>
#include <ctime>

namespace arcsim::nmea {

std::optional<double> valueOf(std::string_view field)
{
    double value = 0;
    const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), value);
    if (error != std::errc() || end != field.data() + field.size() || !(std::abs(value) < 1e9))
        return std::nullopt;
    return value;
}

std::optional<std::chrono::milliseconds> timeOfDay(std::string_view field)
{
    const std::optional<double> value = valueOf(field);
    if (!value || *value < 0 || *value >= 240000)
        return std::nullopt;
    const long long thousandths = std::llround(*value * 1000);
    const long long whole = thousandths / 1000;
    const std::chrono::milliseconds fraction(thousandths % 1000);
    return std::chrono::hours(whole / 10000) + std::chrono::minutes(whole / 100 % 100) +
           std::chrono::seconds(whole % 100) + fraction;
}

std::optional<std::chrono::system_clock::time_point> utcOf(std::string_view dateField, std::string_view timeField)
{
    const std::optional<double> value = valueOf(dateField);
    const std::optional<std::chrono::milliseconds> time = timeOfDay(timeField);
    if (dateField.size() != 6 || !value || *value < 0 || !time)
        return std::nullopt;
    const int date = static_cast<int>(*value);
    std::tm day{};
    day.tm_mday = date / 10000;
    day.tm_mon = date / 100 % 100 - 1;
    day.tm_year = date % 100 + (date % 100 < 80 ? 100 : 0);  // the system that the date comes from began in 1980
    return std::chrono::system_clock::from_time_t(::timegm(&day)) + *time;
}

std::optional<double> angleOf(std::string_view field, std::string_view hemisphere)
{
    const std::optional<double> value = valueOf(field);
    if (!value || *value < 0 || hemisphere.size() != 1)
        return std::nullopt;
    const double degrees = std::floor(*value / 100) + std::fmod(*value, 100) / 60;
    return hemisphere == "S" || hemisphere == "W" ? -degrees : degrees;
}

}  // namespace arcsim::nmea
