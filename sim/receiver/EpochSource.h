#pragma once

#include "receiver/ReceiverTypes.h"

#include <array>
#include <chrono>
#include <optional>
#include <string>

namespace arcsim {

/// Systems of which no satellite is tracked, by indexOf().
using BlockedSystems = std::array<bool, kGnssSystemCount>;

/// What keeps a receiver from receiving well at one moment.
struct Interference
{
    BlockedSystems blocked{};
    bool noFix = false;  ///< satellites are tracked, but not well enough for a fix
};

/// What one running engine says, epoch after epoch. Knows neither clocks nor threads: times count from the start of the
/// engine and the caller decides when they have come.
class EpochSource
{
public:
    struct Epoch
    {
        std::string bytes;
        ReceiverStatus status;
    };

    virtual ~EpochSource() = default;

    /// The time of the first epoch later than `last`; -1 ms asks for the first of all. Empty when there is none left.
    virtual std::optional<std::chrono::milliseconds> next(const ReceiverSettings& settings,
                                                          std::chrono::milliseconds last) = 0;

    /// The epoch at a time that next() gave.
    virtual Epoch take(const ReceiverSettings& settings, const Interference& interference,
                       std::chrono::milliseconds at) = 0;
};

}  // namespace arcsim
