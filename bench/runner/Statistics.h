#pragma once

#include <vector>

namespace bench {

struct Quartiles
{
    double lower;
    double median;
    double upper;
};

/// The value below which `share` (0 to 1) of the values lie; between two values the straight line. There must be one.
double quantileOf(std::vector<double> values, double share);

Quartiles quartilesOf(const std::vector<double>& values);

}  // namespace bench
