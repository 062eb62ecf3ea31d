#pragma once

#include "arcsim/Json.h"

#include <string>

namespace arcsim::program {

/// The result of the control "status" for people, in lines of at most 80 characters. A value that is missing, null or
/// of a wrong kind reads "-"; a missing list is left out.
std::string statusText(const Json& status);

}  // namespace arcsim::program
