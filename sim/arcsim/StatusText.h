#pragma once

#include "arcsim/Json.h"

#include <string>

namespace arcsim::program {

/// The result of the control "status" for people, in lines of at most 80 characters. What is missing, null or of a
/// wrong kind reads "-", and a list of which nothing is known is left out.
std::string statusText(const Json& status);

}  // namespace arcsim::program
