#include "kelarcctl/Notifications.h"

#include <algorithm>

namespace kelarcctl {

std::string nameOf(kelarc::NOTIFY_ID id)
{
    using kelarc::NOTIFY_ID;
    switch (id) {
    case NOTIFY_ID::EVENT_22:
        return "EVENT_22";
    case NOTIFY_ID::EVENT_72:
        return "EVENT_72";
    case NOTIFY_ID::EVENT_73:
        return "EVENT_73";
    case NOTIFY_ID::EVENT_74:
        return "EVENT_74";
    case NOTIFY_ID::EVENT_75:
        return "EVENT_75";
    case NOTIFY_ID::RAW_GNSS_START_ENDED:
        return "RAW_GNSS_START_ENDED";
    }
    return "notification " + std::to_string(static_cast<int>(id));
}

Payload payloadOf(const void* data, int length)
{
    constexpr int kMostBytes = 256;
    constexpr char kDigits[] = "0123456789abcdef";
    Payload payload;
    if (data == nullptr || length <= 0)
        return payload;
    const auto* const bytes = static_cast<const unsigned char*>(data);
    const auto* const end = bytes + std::min(length, kMostBytes);
    for (const auto* byte = bytes; byte != end; ++byte) {
        payload.hex += kDigits[*byte >> 4U];
        payload.hex += kDigits[*byte & 0xFU];
    }
    const auto* const textEnd = end[-1] == 0 ? end - 1 : end;  // a text may come with its terminating zero
    if (textEnd != bytes && std::all_of(bytes, textEnd, [](unsigned char c) { return c >= ' ' && c <= '~'; }))
        payload.text = "'" + std::string(bytes, textEnd) + "'";
    return payload;
}

}  // namespace kelarcctl
