#pragma once

#include <string>

namespace arcsim {

/// The content of a file. Throws ScenarioError if there is no such regular file, or if it cannot be read or holds more
/// than kLargestFile bytes. `accepted` tells in the error what kind of file is expected.
std::string contentOf(const std::string& file, const std::string& accepted);

}  // namespace arcsim
