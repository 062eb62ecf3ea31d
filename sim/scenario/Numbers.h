#pragma once

// Numbers as texts, the same in every locale.

#include <optional>
#include <string>

namespace arcsim {

/// With up to six digits: "0.01", "300".
std::string shownNumber(double value);

/// A decimal number and nothing else; nothing for other texts.
std::optional<double> parseNumber(const std::string& text);

}  // namespace arcsim
