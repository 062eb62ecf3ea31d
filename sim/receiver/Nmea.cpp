#include "receiver/Nmea.h"

#include <charconv>
#include <cmath>
#include <ctime>

namespace arcsim::nmea {

namespace {

std::string angle(double degrees, std::size_t degreeDigits, char positive, char negative)
{
    // Computed in whole units of the last digit, since rounding the minutes alone could give 60.
    constexpr long long kUnitsPerMinute = 100000;
    const long long units = std::llround(std::abs(degrees) * 60 * kUnitsPerMinute);
    const long long wholeDegrees = units / (60 * kUnitsPerMinute);
    const double minutes = static_cast<double>(units % (60 * kUnitsPerMinute)) / kUnitsPerMinute;
    return number(static_cast<double>(wholeDegrees), 0, degreeDigits) + number(minutes, 5, 8) + ',' +
           (degrees < 0 ? negative : positive);
}

std::tm calendar(std::chrono::system_clock::time_point utc)
{
    const std::time_t seconds = std::chrono::duration_cast<std::chrono::seconds>(utc.time_since_epoch()).count();
    std::tm result{};
    gmtime_r(&seconds, &result);
    return result;
}

std::string twoDigits(int value)
{
    return number(value % 100, 0, 2);
}

}  // namespace

std::string checksum(std::string_view body)
{
    unsigned sum = 0;
    for (const char character : body)
        sum ^= static_cast<unsigned char>(character);
    constexpr char kDigits[] = "0123456789ABCDEF";
    return {kDigits[sum / 16], kDigits[sum % 16]};
}

std::string sentence(std::string_view body)
{
    return '$' + std::string(body) + '*' + checksum(body) + "\r\n";
}

std::string number(double value, int decimals, std::size_t width)
{
    char buffer[64];
    const auto end =
        std::to_chars(std::begin(buffer), std::end(buffer), std::abs(value), std::chars_format::fixed, decimals);
    std::string digits(buffer, end.ptr);
    if (digits.size() < width)
        digits.insert(0, width - digits.size(), '0');
    const bool isZero = digits.find_first_not_of("0.") == std::string::npos;
    return value < 0 && !isZero ? '-' + digits : digits;
}

std::string latitude(double latitudeDeg)
{
    return angle(latitudeDeg, 2, 'N', 'S');
}

std::string longitude(double longitudeDeg)
{
    return angle(std::remainder(longitudeDeg, 360), 3, 'E', 'W');
}

std::string time(std::chrono::system_clock::time_point utc)
{
    const std::tm parts = calendar(utc);
    const auto sinceEpoch = std::chrono::duration_cast<std::chrono::milliseconds>(utc.time_since_epoch());
    return twoDigits(parts.tm_hour) + twoDigits(parts.tm_min) + twoDigits(parts.tm_sec) + '.' +
           twoDigits(static_cast<int>(sinceEpoch.count() % 1000 / 10));
}

std::string date(std::chrono::system_clock::time_point utc)
{
    const std::tm parts = calendar(utc);
    return twoDigits(parts.tm_mday) + twoDigits(parts.tm_mon + 1) + twoDigits(parts.tm_year);
}

}  // namespace arcsim::nmea
