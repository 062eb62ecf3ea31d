#pragma once

#include <chrono>
#include <optional>
#include <string_view>

namespace arcsim {

/// Milliseconds since 1970 of "2024-06-12T03:00:00Z"; also with a fraction of a second, with another offset than Z, as
/// in "+02:00", and without any, which is UTC. Nothing for other texts and for dates that do not exist.
std::optional<std::chrono::milliseconds> parseUtc(std::string_view text);

}  // namespace arcsim
