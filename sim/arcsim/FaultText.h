#pragma once

#include "arcsim/Json.h"

#include <string>

namespace arcsim::program {

/// From where the number in a fault's "call" counts.
enum class CallNumber
{
    fromNow,       ///< in a control
    fromTheStart,  ///< in what the daemon lists
};

/// A fault as a sentence, "ARC_StopGNSS: the next 3 calls answer 2". Leaves out what is missing or of a wrong kind.
std::string faultText(const Json& fault, CallNumber callNumber);

}  // namespace arcsim::program
