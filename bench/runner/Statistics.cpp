#include "runner/Statistics.h"

#include <algorithm>
#include <cstddef>

namespace bench {

double quantileOf(std::vector<double> values, double share)
{
    std::sort(values.begin(), values.end());
    const double place = share * static_cast<double>(values.size() - 1);
    const auto below = static_cast<std::size_t>(place);
    const std::size_t above = std::min(below + 1, values.size() - 1);
    const double part = place - static_cast<double>(below);
    return values[below] + part * (values[above] - values[below]);
}

Quartiles quartilesOf(const std::vector<double>& values)
{
    return {quantileOf(values, 0.25), quantileOf(values, 0.5), quantileOf(values, 0.75)};
}

}  // namespace bench
