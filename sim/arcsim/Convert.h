#pragma once

#include "arcsim/Recording.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace arcsim {

struct Converted
{
    nlohmann::ordered_json scenario{};
    std::vector<std::string> leftOut{};  ///< messages about what did not fit; usually empty
};

/// A scenario, meant to be edited by hand, in which the simulated modem does what the recorded one did:
/// - settings: for each key, the first value that was read before the application wrote the key
/// - faults: calls that failed, never returned, or took more than twice the longest usual time and at least 100 ms
///   longer than that (a busy system's scheduler alone causes smaller delays)
/// - events: all except LSTA reports that the application had asked for
/// - lsta: the changes seen in these reports and in the answers to ARC_CurrentLSTA
///
/// Times count from the first call. Facts that a scenario cannot express are left out. A list that is too long loses
/// its end.
Converted convert(const Recording& recording);

}  // namespace arcsim
