#pragma once

#include <optional>
#include <string>

namespace arcsim::modem {

/// The modem's answer to one AT command line, without the final result; empty for an unknown command. Ignores case and
/// blanks around the line.
std::optional<std::string> atAnswer(const std::string& command);

}  // namespace arcsim::modem
