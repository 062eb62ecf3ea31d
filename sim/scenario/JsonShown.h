#pragma once

#include <nlohmann/json.hpp>

#include <string>

namespace arcsim {

/// A value as errors show it: its beginning, if it is long.
std::string shown(const nlohmann::json& value);

/// A key as it is, if it can be read that way; else as JSON writes it.
std::string shownKey(const std::string& key);

}  // namespace arcsim
