#include "scenario/Utf8.h"

namespace arcsim {

namespace {

/// The first bytes of characters and what may follow them; the further bytes are always 80 to BF.
struct Lead
{
    unsigned char first;
    unsigned char last;
    std::size_t length;
    unsigned char secondFirst;
    unsigned char secondLast;
};

constexpr Lead kLeads[] = {
    {0x00, 0x7F, 1, 0, 0},       {0xC2, 0xDF, 2, 0x80, 0xBF}, {0xE0, 0xE0, 3, 0xA0, 0xBF}, {0xE1, 0xEC, 3, 0x80, 0xBF},
    {0xED, 0xED, 3, 0x80, 0x9F},  // without surrogates
    {0xEE, 0xEF, 3, 0x80, 0xBF}, {0xF0, 0xF0, 4, 0x90, 0xBF}, {0xF1, 0xF3, 4, 0x80, 0xBF}, {0xF4, 0xF4, 4, 0x80, 0x8F},
};

/// 0 for no character.
std::size_t lengthOfCharacter(std::string_view text)
{
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    for (const Lead& lead : kLeads) {
        if (byte(0) < lead.first || byte(0) > lead.last)
            continue;
        if (text.size() < lead.length)
            return 0;
        for (std::size_t i = 1; i < lead.length; ++i)
            if (byte(i) < (i == 1 ? lead.secondFirst : 0x80) || byte(i) > (i == 1 ? lead.secondLast : 0xBF))
                return 0;
        return lead.length;
    }
    return 0;
}

}  // namespace

std::size_t lengthOfUtf8(std::string_view text)
{
    std::size_t good = 0;
    while (good < text.size()) {
        const std::size_t length = lengthOfCharacter(text.substr(good));
        if (length == 0)
            break;
        good += length;
    }
    return good;
}

}  // namespace arcsim
