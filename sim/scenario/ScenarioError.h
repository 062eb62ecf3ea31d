#pragma once

#include <stdexcept>

namespace arcsim {

/// A scenario that cannot be simulated as written. The text names file, line, key, value and what is accepted.
class ScenarioError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

}  // namespace arcsim
