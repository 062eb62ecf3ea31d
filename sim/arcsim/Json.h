#pragma once

#include <nlohmann/json.hpp>

#include <cstdint>
#include <optional>
#include <string>

namespace arcsim::program {

/// Keeps the order in which the daemon says things.
using Json = nlohmann::ordered_json;

/// On the socket texts are bytes: each of 80..FF stands there as the character of that number.
std::string asJsonText(const std::string& bytes);

/// A text of the socket for people: its bytes again, with '?' for what would move a terminal's cursor.
std::string printable(const std::string& jsonText);

/// Whole numbers of JSON that fit; nothing for every other value.
std::optional<std::int64_t> wholeNumberOf(const Json& value);

}  // namespace arcsim::program
