#include "kelarcctl/Notifications.h"

#include "kelarc/names.h"

#include <algorithm>
#include <cctype>

namespace kelarcctl {

std::string nameOf(kelarc::NOTIFY_ID id)
{
    std::string name = kelarc::to_string(id);  // "event 72"
    if (name == "unknown")
        return "notification " + std::to_string(static_cast<int>(id));
    for (char& c : name)
        c = c == ' ' ? '_' : static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return name;
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
    const auto* const textEnd = end[-1] == 0 ? end - 1 : end;  // a text may include its terminating zero
    if (textEnd != bytes && std::all_of(bytes, textEnd, [](unsigned char c) { return c >= ' ' && c <= '~'; }))
        payload.text = "'" + std::string(bytes, textEnd) + "'";
    return payload;
}

}  // namespace kelarcctl
