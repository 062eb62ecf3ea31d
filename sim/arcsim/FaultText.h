#pragma once

#include "arcsim/Json.h"

#include <string>

namespace arcsim::program {

/// The point from which the number in a fault's "call" counts.
enum class CallNumber
{
    fromNow,       ///< used in a control
    fromTheStart,  ///< used in the daemon's list
};

/// A fault as a sentence: "ARC_StopGNSS: the next 3 calls answer 2". Leaves out members that are missing or of a wrong
/// kind.
std::string faultText(const Json& fault, CallNumber callNumber);

}  // namespace arcsim::program
