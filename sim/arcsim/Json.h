#pragma once

#include "protocol/Text.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <optional>
#include <string>

namespace arcsim::program {

/// Keeps the daemon's order of members.
using Json = nlohmann::ordered_json;

/// A text from the socket, for people: decoded to its bytes and shown by support::printable().
std::string printable(const std::string& jsonText);

/// A document for standard output, in ASCII: it holds no terminal control characters.
std::string asciiText(const Json& document);

/// A JSON whole number that fits; empty for every other value.
std::optional<std::int64_t> wholeNumberOf(const Json& value);

}  // namespace arcsim::program
