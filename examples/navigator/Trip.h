#pragma once

#include "nmea/Epoch.h"

#include <chrono>
#include <cstdint>
#include <optional>

namespace navigator {

/// Collects the epochs of a run for its summary.
class Trip
{
public:
    /// `sinceStart`: from the start of the receiver's output.
    void add(const nmea::Epoch& epoch, std::chrono::milliseconds sinceStart);

    std::uint64_t epochs() const { return m_epochs; }
    std::uint64_t epochsWith3D() const { return m_epochsWith3D; }
    double distanceM() const { return m_distanceM; }

    struct FirstFix
    {
        std::chrono::milliseconds sinceStart{};
        nmea::Epoch epoch{};
    };
    const std::optional<FirstFix>& firstFix() const { return m_firstFix; }

private:
    struct Place
    {
        double latitudeDeg = 0;
        double longitudeDeg = 0;
    };
    static double metresBetween(Place from, Place to);

    std::uint64_t m_epochs = 0;
    std::uint64_t m_epochsWith3D = 0;
    double m_distanceM = 0;
    std::optional<FirstFix> m_firstFix;
    std::optional<Place> m_counted;  ///< up to here the distance has been counted
};

}  // namespace navigator
