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

/// Solves for three axes and the clock; four satellites at least. Everything is 99.99, the largest value of a sentence,
/// when there are fewer or when they stand in a plane or a cone.
Dop dopOf(const std::vector<LookAngle>& satellites);

/// Solves for two axes and the clock with the height given; three satellites at least. Only `horizontal` is set.
Dop dopAtKnownHeight(const std::vector<LookAngle>& satellites);

}  // namespace arcsim
