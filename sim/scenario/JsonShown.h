#pragma once

#include <nlohmann/json.hpp>

#include <string>

namespace arcsim {

/// A value as errors show it; a long one is cut.
std::string shown(const nlohmann::json& value);

/// A key, unchanged if it is readable; else as JSON writes it.
std::string shownKey(const std::string& key);

}  // namespace arcsim
