#pragma once

// Numbers as texts, the same in every locale.

#include <optional>
#include <string>

namespace arcsim {

/// With up to six digits: "0.01", "300".
std::string shownNumber(double value);

/// Reads a decimal number; empty for any other text.
std::optional<double> parseNumber(const std::string& text);

}  // namespace arcsim
