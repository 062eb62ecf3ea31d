#include "receiver/Dop.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

namespace arcsim {

namespace {

constexpr double kLargestDop = 99.99;

// East, north, clock, up: up comes last, so that the first three alone give the solution without it.
using Row = std::array<double, 4>;
using Matrix = std::array<Row, 4>;

Row directionOf(const LookAngle& satellite)
{
    const double elevation = satellite.elevationDeg * kRadPerDeg;
    const double azimuth = satellite.azimuthDeg * kRadPerDeg;
    return {std::cos(elevation) * std::sin(azimuth), std::cos(elevation) * std::cos(azimuth), 1, std::sin(elevation)};
}

Matrix normalMatrix(const std::vector<LookAngle>& satellites)
{
    Matrix sum{};
    for (const LookAngle& satellite : satellites) {
        const Row direction = directionOf(satellite);
        for (std::size_t i = 0; i < 4; ++i)
            for (std::size_t j = 0; j < 4; ++j)
                sum[i][j] += direction[i] * direction[j];
    }
    return sum;
}

/// Diagonal of the inverse of the leading `size` rows and columns; empty when there is no inverse. Gauss-Jordan without
/// pivoting: the matrix is symmetric and not negative, so a small pivot means that it is singular.
std::optional<Row> inverseDiagonal(Matrix matrix, std::size_t size)
{
    constexpr double kSmallestPivot = 1e-6;
    Matrix inverse{};
    for (std::size_t i = 0; i < size; ++i)
        inverse[i][i] = 1;
    for (std::size_t pivot = 0; pivot < size; ++pivot) {
        const double scale = matrix[pivot][pivot];
        if (scale < kSmallestPivot)
            return std::nullopt;
        for (std::size_t j = 0; j < size; ++j) {
            matrix[pivot][j] /= scale;
            inverse[pivot][j] /= scale;
        }
        for (std::size_t i = 0; i < size; ++i) {
            const double factor = matrix[i][pivot];
            for (std::size_t j = 0; i != pivot && j < size; ++j) {
                matrix[i][j] -= factor * matrix[pivot][j];
                inverse[i][j] -= factor * inverse[pivot][j];
            }
        }
    }
    return Row{inverse[0][0], inverse[1][1], inverse[2][2], inverse[3][3]};
}

double dop(double variance)
{
    return std::min(std::sqrt(std::max(variance, 0.0)), kLargestDop);
}

}  // namespace

Dop dopOf(const std::vector<LookAngle>& satellites)
{
    const std::optional<Row> variance = inverseDiagonal(normalMatrix(satellites), 4);
    if (!variance)
        return {};
    const auto [east, north, clock, up] = *variance;
    static_cast<void>(clock);
    return {dop(east + north + up), dop(east + north), dop(up)};
}

Dop dopAtKnownHeight(const std::vector<LookAngle>& satellites)
{
    const std::optional<Row> variance = inverseDiagonal(normalMatrix(satellites), 3);
    if (!variance)
        return {};
    Dop result;
    result.horizontal = dop((*variance)[0] + (*variance)[1]);
    return result;
}

}  // namespace arcsim
