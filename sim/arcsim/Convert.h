#pragma once

#include "arcsim/Recording.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace arcsim {

struct Converted
{
    nlohmann::ordered_json scenario{};
    std::vector<std::string> leftOut{};  ///< for people, what there was no room for; usually nothing
};

/// A scenario in which the simulated modem does what the recorded one did, to be edited by people:
/// - settings: the first value that was read of each key which the application had not written before
/// - faults: calls that failed, never came back, or took more than twice the longest usual time and at least 100 ms
///   longer than that: less is what the scheduler of a busy system does to any call
/// - events: all but reports of LSTA that the application had asked for
/// - lsta: what these reports and the answers to ARC_CurrentLSTA said, where it changed
///
/// Times count from the first call. What a scenario cannot say is left out, and so is what there is no room for: of
/// each list the end.
Converted convert(const Recording& recording);

}  // namespace arcsim
