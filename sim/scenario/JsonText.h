#pragma once

#include <nlohmann/json.hpp>

#include <cstddef>
#include <string>
#include <string_view>

namespace arcsim {

inline constexpr std::size_t kLargestFile = 16UL << 20U;  ///< bytes of a file that belongs to a scenario

/// Parses a JSON text; `file` is its name in errors, which are all ScenarioError. Also refuses a text that is too
/// large, too deeply nested or not UTF-8, and an object with a duplicate key. The text begins in line `firstLine` of
/// the file.
nlohmann::json parseJson(const std::string& file, std::string_view text, std::size_t firstLine = 1);

}  // namespace arcsim
