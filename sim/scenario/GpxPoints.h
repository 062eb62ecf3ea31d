#pragma once

#include "receiver/ReceiverTypes.h"

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace arcsim {

inline constexpr std::size_t kMostGpxPoints = 100000;

struct GpxPoint
{
    Waypoint waypoint{};                              ///< without speed and wait
    std::optional<std::chrono::milliseconds> time{};  ///< since 1970
    std::string timeText{};
    std::ptrdiff_t offset = 0;  ///< in the text
};

/// Reads the points from a GPX text; its errors name the line.
class GpxText
{
public:
    /// Keeps references to both arguments.
    GpxText(const std::string& file, const std::string& text) : m_file(file), m_text(text) {}

    /// The joined tracks; if there are none, the routes; if there are none either, the waypoints. At least one point.
    /// Throws ScenarioError.
    std::vector<GpxPoint> points() const;

    /// Throws ScenarioError about a value that belongs to a point; `index` from 0.
    [[noreturn]] void refuse(std::size_t index, std::ptrdiff_t offset, const char* what, const std::string& value,
                             const std::string& accepted) const;
    [[noreturn]] void failAt(std::ptrdiff_t offset, const std::string& complaint) const;

private:
    const std::string& m_file;
    const std::string& m_text;
};

}  // namespace arcsim
