#pragma once

#include "kelarc/names.h"

#include <cstddef>
#include <iterator>
#include <string>

namespace kelarcctl {

/// Everything that is told of the systems goes in this order.
inline constexpr const auto& kLstaSystems = kelarc::lsta::kSystems;
inline constexpr std::size_t kLstaSystemCount = std::size(kLstaSystems);

/// What people type for a system and scripts read: "gps".
std::string wordOf(const kelarc::lsta::System& system);

}  // namespace kelarcctl
