#pragma once

#include <nlohmann/json.hpp>

#include <cstddef>
#include <string>
#include <string_view>

namespace arcsim {

inline constexpr std::size_t kLargestFile = 16UL << 20U;  ///< bytes of a file that belongs to a scenario

/// Parses a JSON text; `file` is its name for the errors, which are all ScenarioError. Also refuses what is too large
/// or nested too deeply, what is not UTF-8, and an object that has a key twice.
/// The text begins in line `firstLine` of the file.
nlohmann::json parseJson(const std::string& file, std::string_view text, std::size_t firstLine = 1);

}  // namespace arcsim
