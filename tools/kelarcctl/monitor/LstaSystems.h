#pragma once

#include "kelarc/KelArc.h"

#include <array>

namespace kelarcctl {

/// A system whose LSTA the modem tells, by all its names.
struct LstaSystem
{
    const char* name;
    kelarc::lsta::TECH tech;
    kelarc::lsta::TYPE type;
};

/// In the order of the model's rows.
inline constexpr std::array<LstaSystem, 4> kLstaRows{
    {{"gps", kelarc::lsta::TECH::GPS, kelarc::lsta::TYPE::GPS},
     {"glonass", kelarc::lsta::TECH::GLONASS, kelarc::lsta::TYPE::GLONASS},
     {"beidou", kelarc::lsta::TECH::BEIDOU, kelarc::lsta::TYPE::BEIDOU},
     {"galileo", kelarc::lsta::TECH::GALILEO, kelarc::lsta::TYPE::GALILEO}}};

}  // namespace kelarcctl
