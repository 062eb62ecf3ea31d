#pragma once

#include "receiver/EpochSource.h"
#include "receiver/ReplayStatus.h"

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

namespace arcsim {

/// Replays a recording of NMEA 0183 sentences byte for byte, at the pace of its UTC times.
///
/// A new epoch begins when the time of GGA, RMC, GLL, GNS, GST, GBS or ZDA changes. Some receivers write sentences
/// without a time first, so the file's first sentence type is taken to begin every epoch. Epochs without a time at the
/// start of a recording are one second apart; so is an epoch whose time jumps back. Bytes that are no sentence belong
/// to the epoch around them.
class Replay : public EpochSource
{
public:
    /// Reads the file. Throws std::runtime_error with the file's name when the file cannot be read, has more than 256
    /// MiB or holds no sentence with a correct checksum, or when the speed is not above 0. `loop`: starts again one
    /// second after the last epoch.
    Replay(const std::string& file, double speed, bool loop);

    std::size_t size() const { return m_epochs.size(); }

    /// Epochs come one by one, whatever `last` is. Settings, interference, route, jamming and everything else that a
    /// scenario says about satellites have no effect: the recorded bytes come out.
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
