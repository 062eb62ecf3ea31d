#pragma once

#include <string>

namespace kelarcctl {

/// What the terminal that TERM names needs to be sent for this ("cup", "rmcup"), without the delays that old ones need;
/// empty when it, or the terminal, is not known.
std::string capability(const char* name);

}  // namespace kelarcctl
