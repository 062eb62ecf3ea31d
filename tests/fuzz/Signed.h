#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace fuzz {

/// The input as a receiver's bytes: "*?" is replaced by the checksum of the bytes since the last `$`, since made-up
/// input would never have the right one.
inline std::string withChecksums(std::string_view input)
{
    std::string bytes;
    unsigned sum = 0;
    for (std::size_t i = 0; i < input.size(); ++i) {
        if (input.substr(i, 2) == "*?") {
            char digits[4] = {};
            std::snprintf(digits, sizeof digits, "*%02X", sum & 0xFFU);
            bytes += digits;
            ++i;
            continue;
        }
        sum = input[i] == '$' ? 0 : sum ^ static_cast<unsigned char>(input[i]);
        bytes += input[i];
    }
    return bytes;
}

}  // namespace fuzz
