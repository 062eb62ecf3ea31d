#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace arcsim::program {

constexpr std::chrono::milliseconds kLongestDuration = std::chrono::hours(24);

/// A number with its unit: "800ms", "20s", "1.5s", "2m", "1h". Empty for any other text, for a fraction of a
/// millisecond, and for more than kLongestDuration.
std::optional<std::chrono::milliseconds> parseDuration(const std::string& text);

/// The text of a duration, in the largest unit that needs no fraction, or else in seconds: "90s", "1.5s", "2m".
std::string durationText(std::chrono::milliseconds duration);

/// The message for a text that parseDuration() does not accept, or whose duration is below `shortest`.
std::string durationRefusal(const std::string& text, std::chrono::milliseconds shortest);

}  // namespace arcsim::program
