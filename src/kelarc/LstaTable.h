#pragma once

#include "kelarc/Types.h"

#include <cstddef>
#include <cstdint>

namespace kelarc {

/// The numbers of one satellite system in calls and records; the numbers in callbacks are in kelarc/names.h.
struct LstaTech
{
    lsta::TECH tech;
    int arcId;               ///< in calls
    std::int32_t indicator;  ///< in records
    std::size_t missingCallbackLine;
    const char* missingCallbackText;
};

// The last two rows' lines cross over: published.
// clang-format off
constexpr LstaTech kLstaTechs[] = {
    {lsta::TECH::GPS,     10, 1000, 1263, "No callback defined for GPS LSTA notifications!"},
    {lsta::TECH::GLONASS, 11, 1001, 1276, "No callback defined for Glonass LSTA notifications!"},
    {lsta::TECH::BEIDOU,  12, 1002, 1302, "No callback defined for BeiDou LSTA notifications!"},
    {lsta::TECH::GALILEO, 13, 1003, 1289, "No callback defined for Galileo LSTA notifications!"},
};
// clang-format on

inline const LstaTech* lstaTech(lsta::TECH tech)
{
    for (const LstaTech& row : kLstaTechs)
        if (row.tech == tech)
            return &row;
    return nullptr;
}

inline const LstaTech* lstaTechOfIndicator(std::int32_t indicator)
{
    for (const LstaTech& row : kLstaTechs)
        if (row.indicator == indicator)
            return &row;
    return nullptr;
}

}  // namespace kelarc
