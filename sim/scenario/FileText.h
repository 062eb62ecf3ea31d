#pragma once

#include <string>

namespace arcsim {

/// The content of a file. `accepted` says what the name should have named, for the error: ScenarioError if there is no
/// such regular file, if it cannot be read or holds more than kLargestFile bytes.
std::string contentOf(const std::string& file, const std::string& accepted);

}  // namespace arcsim
