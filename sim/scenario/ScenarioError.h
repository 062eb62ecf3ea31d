#pragma once

#include "support/Printable.h"

#include <stdexcept>
#include <string>

namespace arcsim {

/// A scenario that cannot be simulated as written. The text names file, line, key, value and what is accepted, on one
/// line whatever the file holds.
class ScenarioError : public std::runtime_error
{
public:
    explicit ScenarioError(const std::string& text) : std::runtime_error(support::printable(text)) {}
};

}  // namespace arcsim
