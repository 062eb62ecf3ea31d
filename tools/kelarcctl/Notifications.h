#pragma once

#include "kelarc/KelArc.h"

#include <string>

namespace kelarcctl {

/// "EVENT_72"
std::string nameOf(kelarc::NOTIFY_ID id);

/// The data of a notification in readable form.
struct Payload
{
    std::string hex{};   ///< the first 256 bytes
    std::string text{};  ///< the same bytes in quotes, if all are printable
};
Payload payloadOf(const void* data, int length);

}  // namespace kelarcctl
