#pragma once

#include "receiver/Geodesy.h"

#include <vector>

namespace arcsim {

/// Dilution of precision: how much the satellites' geometry magnifies a ranging error.
struct Dop
{
    double position = 99.99;
    double horizontal = 99.99;
    double vertical = 99.99;
};

/// Solves for three axes and the clock; needs at least four satellites. All values are 99.99, the largest value of a
/// sentence, with fewer satellites or when they lie in a plane or on a cone.
Dop dopOf(const std::vector<LookAngle>& satellites);

/// Solves for two axes and the clock at a given height; needs at least three satellites. Sets only `horizontal`.
Dop dopAtKnownHeight(const std::vector<LookAngle>& satellites);

}  // namespace arcsim
