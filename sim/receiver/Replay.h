#pragma once

#include "receiver/EpochSource.h"
#include "receiver/ReplayStatus.h"

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

namespace arcsim {

/// Gives a recording of NMEA 0183 sentences out again, byte for byte and at the pace of the UTC times in it.
///
/// A new epoch begins when the time of GGA, RMC, GLL, GNS, GST, GBS or ZDA changes. Receivers that write sentences
/// without a time first are served as well: the file's first sentence is taken for the first of every epoch. Epochs at
/// the start of a recording that have no time yet are a second apart, and so is one whose time jumps back. What is no
/// sentence is part of the epoch around it.
class Replay : public EpochSource
{
public:
    /// Reads the file. Throws std::runtime_error with the file's name when it cannot be read, has more than 256 MiB or
    /// holds no sentence with a correct checksum, and when the speed is not above 0. `loop`: starts again a second
    /// after the last epoch.
    Replay(const std::string& file, double speed, bool loop);

    std::size_t size() const { return m_epochs.size(); }

    /// Epochs come one by one, whatever `last` is. Settings and interference change nothing, nor do route, jamming and
    /// all else that a scenario says of satellites: what was recorded comes out.
    std::optional<std::chrono::milliseconds> next(const ReceiverSettings& settings,
                                                  std::chrono::milliseconds last) override;
    Epoch take(const ReceiverSettings& settings, const Interference& interference,
               std::chrono::milliseconds at) override;

private:
    struct Recorded
    {
        std::size_t begin = 0;  ///< in the content
        std::size_t end = 0;
        std::chrono::milliseconds offset{};  ///< from the first epoch, at the recorded pace
    };

    void split();

    const double m_speed;
    const bool m_loop;
    std::string m_content;
    std::vector<Recorded> m_epochs;
    std::size_t m_next = 0;
    std::chrono::milliseconds m_loopStart{0};  // at the recorded pace, like the offsets
    ReplayStatus m_status;
};

}  // namespace arcsim
