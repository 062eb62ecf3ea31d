#pragma once

#include <string>

namespace kelarcctl {

/// The control sequence of the present terminal for a capability ("cup", "rmcup"), without the delays for old
/// terminals; empty if the terminal lacks the capability.
std::string capability(const char* name);

}  // namespace kelarcctl
