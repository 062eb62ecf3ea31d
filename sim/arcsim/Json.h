#pragma once

#include "protocol/Text.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <optional>
#include <string>

namespace arcsim::program {

/// Keeps the order in which the daemon says things.
using Json = nlohmann::ordered_json;

/// A text of the socket for people: its bytes again, as support::printable() shows them.
std::string printable(const std::string& jsonText);

/// A document for standard output, in ASCII: nothing in it steers a terminal.
std::string asciiText(const Json& document);

/// Whole numbers of JSON that fit; nothing for every other value.
std::optional<std::int64_t> wholeNumberOf(const Json& value);

}  // namespace arcsim::program
