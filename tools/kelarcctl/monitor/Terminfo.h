#pragma once

#include <string>

namespace kelarcctl {

/// What the terminal in use needs to be sent for this ("cup", "rmcup"), without the delays that old ones need;
/// empty when it has no such thing.
std::string capability(const char* name);

}  // namespace kelarcctl
