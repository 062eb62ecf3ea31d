#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace arcsim {

/// Bytes as text: lower-case pairs of digits.
std::string hexOf(const std::vector<unsigned char>& bytes);
/// Accepts both cases; empty for anything but pairs of digits.
std::optional<std::vector<unsigned char>> bytesOfHex(std::string_view digits);

}  // namespace arcsim
