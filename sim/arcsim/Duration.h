#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace arcsim::program {

constexpr std::chrono::milliseconds kLongestDuration = std::chrono::hours(24);

/// A number with its unit: "800ms", "20s", "1.5s", "2m", "1h". Nothing for any other text, for what is no whole number
/// of milliseconds and for what is longer than kLongestDuration.
std::optional<std::chrono::milliseconds> parseDuration(const std::string& text);

/// The same the other way round, in the largest unit that takes no fraction, or else in seconds: "90s", "1.5s", "2m".
std::string durationText(std::chrono::milliseconds duration);

/// What to say of a text that parseDuration() does not accept, or that is shorter than `shortest`.
std::string durationRefusal(const std::string& text, std::chrono::milliseconds shortest);

}  // namespace arcsim::program
