#include "arcsim/Json.h"

#include "support/Printable.h"

#include <limits>

namespace arcsim::program {

std::string printable(const std::string& jsonText)
{
    std::string bytes;
    for (std::size_t i = 0; i < jsonText.size(); ++i) {
        const auto value = static_cast<unsigned char>(jsonText[i]);
        const bool standsForByte = (value == 0xC2U || value == 0xC3U) && i + 1 < jsonText.size();
        if (standsForByte)
            bytes += static_cast<char>((value & 0x03U) << 6U | (static_cast<unsigned char>(jsonText[++i]) & 0x3FU));
        else
            bytes += jsonText[i];
    }
    return support::printable(bytes);
}

std::string asciiText(const Json& document)
{
    constexpr bool isAscii = true;
    return document.dump(-1, ' ', isAscii);
}

std::optional<std::int64_t> wholeNumberOf(const Json& value)
{
    if (!value.is_number_integer())
        return std::nullopt;
    // An unsigned number too large for the signed type would come out negative.
    if (value.is_number_unsigned() && value.get<std::uint64_t>() > std::numeric_limits<std::int64_t>::max())
        return std::nullopt;
    return value.get<std::int64_t>();
}

}  // namespace arcsim::program
