#pragma once

#include "kelarc/KelArc.h"

#include <string>

namespace kelarcctl {

/// "EVENT_72"
std::string nameOf(kelarc::NOTIFY_ID id);

/// The data of a notification, as people read it.
struct Payload
{
    std::string hex{};   ///< of the first 256 bytes
    std::string text{};  ///< in quotes, if all of that is printable
};
Payload payloadOf(const void* data, int length);

}  // namespace kelarcctl
