#pragma once

#include <optional>
#include <string>

namespace arcsim::modem {

/// What the modem answers to one AT command line, without the final result; nothing for an unknown command.
/// The letters' case does not matter, blanks around the line neither.
std::optional<std::string> atAnswer(const std::string& command);

}  // namespace arcsim::modem
