#pragma once

#include "nmea/EpochBuilder.h"
#include "receiver/ReceiverTypes.h"

#include <string_view>

namespace arcsim {

/// The status that a recording's sentences report: fix, motion and satellites, epoch by epoch. An epoch without date or
/// satellites keeps the earlier ones.
class ReplayStatus
{
public:
    const ReceiverStatus& take(std::string_view epoch);

private:
    void show(const ::nmea::Epoch& epoch);

    ::nmea::EpochBuilder m_builder;
    ReceiverStatus m_status;
};

}  // namespace arcsim
