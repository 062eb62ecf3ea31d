#include "protocol/Text.h"

namespace arcsim {

namespace {

constexpr std::string_view kDigits = "0123456789abcdef";

int valueOf(char digit)
{
    const char lower = digit >= 'A' && digit <= 'F' ? static_cast<char>(digit - 'A' + 'a') : digit;
    const std::size_t place = kDigits.find(lower);
    return place == std::string_view::npos ? -1 : static_cast<int>(place);
}

}  // namespace

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

std::string hexOf(const std::vector<unsigned char>& bytes)
{
    std::string digits;
    digits.reserve(2 * bytes.size());
    for (const unsigned char byte : bytes) {
        digits += kDigits[byte >> 4U];
        digits += kDigits[byte & 0x0FU];
    }
    return digits;
}

std::optional<std::vector<unsigned char>> bytesOfHex(std::string_view digits)
{
    if (digits.size() % 2 != 0)
        return std::nullopt;
    std::vector<unsigned char> bytes;
    bytes.reserve(digits.size() / 2);
    for (std::size_t i = 0; i < digits.size(); i += 2) {
        const int high = valueOf(digits[i]);
        const int low = valueOf(digits[i + 1]);
        if (high < 0 || low < 0)
            return std::nullopt;
        bytes.push_back(static_cast<unsigned char>(high * 16 + low));
    }
    return bytes;
}

}  // namespace arcsim
