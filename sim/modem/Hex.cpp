#include "modem/Hex.h"

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
