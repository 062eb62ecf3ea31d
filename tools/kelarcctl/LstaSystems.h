#pragma once

#include "kelarc/names.h"

#include <cstddef>
#include <iterator>
#include <string>

namespace kelarcctl {

/// The order of the systems in all output.
inline constexpr const auto& kLstaSystems = kelarc::lsta::kSystems;
inline constexpr std::size_t kLstaSystemCount = std::size(kLstaSystems);

/// The word for a system on the command line and in JSON: "gps".
std::string wordOf(const kelarc::lsta::System& system);

}  // namespace kelarcctl
