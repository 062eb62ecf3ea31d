#include "protocol/Text.h"

namespace arcsim {

std::string charactersOf(std::string_view bytes)
{
    std::string characters;
    characters.reserve(bytes.size());
    for (const char each : bytes) {
        const auto byte = static_cast<unsigned char>(each);
        if (byte < 0x80) {
            characters += each;
            continue;
        }
        characters += static_cast<char>(0xC0U | (byte >> 6U));
        characters += static_cast<char>(0x80U | (byte & 0x3FU));
    }
    return characters;
}

std::optional<std::string> bytesOf(std::string_view characters)
{
    std::string bytes;
    bytes.reserve(characters.size());
    for (std::size_t i = 0; i < characters.size(); ++i) {
        const auto lead = static_cast<unsigned char>(characters[i]);
        if (lead < 0x80) {
            bytes += characters[i];
            continue;
        }
        const bool isPair = (lead == 0xC2 || lead == 0xC3) && i + 1 < characters.size();
        const unsigned next = isPair ? static_cast<unsigned char>(characters[i + 1]) : 0U;
        if ((next & 0xC0U) != 0x80U)
            return std::nullopt;
        bytes += static_cast<char>(((lead & 0x03U) << 6U) | (next & 0x3FU));
        ++i;
    }
    return bytes;
}

}  // namespace arcsim
