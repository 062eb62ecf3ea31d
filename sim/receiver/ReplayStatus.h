#pragma once

#include "nmea/EpochBuilder.h"
#include "receiver/ReceiverTypes.h"

#include <string_view>

namespace arcsim {

/// What the sentences of a recording say about fix, motion and satellites, one recorded epoch after the other. Date and
/// satellites stay as they were in epochs that do not repeat them.
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
