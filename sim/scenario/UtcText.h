#pragma once

#include <chrono>
#include <optional>
#include <string_view>

namespace arcsim {

/// Milliseconds since 1970 of "2024-06-12T03:00:00Z"; also with a fraction of a second, with an offset such as
/// "+02:00", or without one, which means UTC. Empty for other texts and for dates that do not exist.
std::optional<std::chrono::milliseconds> parseUtc(std::string_view text);

}  // namespace arcsim
