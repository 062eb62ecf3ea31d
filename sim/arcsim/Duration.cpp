#include "arcsim/Duration.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace arcsim::program {

namespace {

struct Unit
{
    const char* name;
    std::int64_t ms;
};
constexpr std::array<Unit, 4> kUnits{{{"ms", 1}, {"s", 1000}, {"m", 60'000}, {"h", 3'600'000}}};

constexpr const char* kDigits = "0123456789";

std::optional<std::int64_t> unitMs(const std::string& name)
{
    for (const Unit& unit : kUnits)
        if (name == unit.name)
            return unit.ms;
    return std::nullopt;
}

/// Empty when the number is above `highest`.
std::optional<std::int64_t> wholeNumber(const std::string& digits, std::int64_t highest)
{
    std::int64_t value = 0;
    for (const char digit : digits) {
        value = value * 10 + (digit - '0');
        if (value > highest)
            return std::nullopt;
    }
    return value;
}

/// The milliseconds of "0.digits" units; empty when they are not whole.
std::optional<std::int64_t> fractionMs(std::string digits, std::int64_t unit)
{
    while (!digits.empty() && digits.back() == '0')
        digits.pop_back();
    if (digits.size() > 7)  // then it is no whole number of milliseconds in any unit
        return std::nullopt;
    std::int64_t parts = 0;
    std::int64_t partsOfUnit = 1;
    for (const char digit : digits) {
        parts = parts * 10 + (digit - '0');
        partsOfUnit *= 10;
    }
    return parts * unit % partsOfUnit == 0 ? std::optional(parts * unit / partsOfUnit) : std::nullopt;
}

}  // namespace

std::optional<std::chrono::milliseconds> parseDuration(const std::string& text)
{
    const std::size_t wholeEnd = std::min(text.find_first_not_of(kDigits), text.size());
    std::size_t numberEnd = wholeEnd;
    if (wholeEnd < text.size() && text[wholeEnd] == '.')
        numberEnd = std::min(text.find_first_not_of(kDigits, wholeEnd + 1), text.size());
    if (wholeEnd == 0 || numberEnd == wholeEnd + 1)
        return std::nullopt;
    const auto unit = unitMs(text.substr(numberEnd));
    const auto whole = wholeNumber(text.substr(0, wholeEnd), kLongestDuration.count());
    if (!unit || !whole)
        return std::nullopt;
    const auto fraction =
        numberEnd == wholeEnd ? 0 : fractionMs(text.substr(wholeEnd + 1, numberEnd - wholeEnd - 1), *unit);
    if (!fraction)
        return std::nullopt;
    const std::chrono::milliseconds duration(*whole * *unit + *fraction);
    return duration > kLongestDuration ? std::nullopt : std::optional(duration);
}

std::string durationText(std::chrono::milliseconds duration)
{
    const std::int64_t ms = duration.count();
    if (ms < 1000)
        return std::to_string(ms) + "ms";
    if (ms % 3'600'000 == 0)
        return std::to_string(ms / 3'600'000) + "h";
    if (ms % 60'000 == 0)
        return std::to_string(ms / 60'000) + "m";
    std::string fraction = std::to_string(1000 + ms % 1000).substr(1);
    while (!fraction.empty() && fraction.back() == '0')
        fraction.pop_back();
    return std::to_string(ms / 1000) + (fraction.empty() ? "" : "." + fraction) + "s";
}

std::string durationRefusal(const std::string& text, std::chrono::milliseconds shortest)
{
    return "'" + text + "' is not accepted; accepted: a time with its unit, as 800ms, 20s, 1.5s, 2m or 1h, from " +
           durationText(shortest) + " to " + durationText(kLongestDuration);
}

}  // namespace arcsim::program
