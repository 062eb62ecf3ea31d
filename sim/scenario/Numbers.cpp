#include "scenario/Numbers.h"

#include <charconv>
#include <locale>
#include <sstream>

namespace arcsim {

std::string shownNumber(double value)
{
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text << value;
    return text.str();
}

std::optional<double> parseNumber(const std::string& text)
{
    const char* begin = text.data();
    const char* const end = begin + text.size();
    if (text.size() > 1 && text[0] == '+' && text[1] != '-')  // from_chars does not accept a plus sign
        ++begin;
    double value = 0;
    const auto [stop, error] = std::from_chars(begin, end, value);
    if (error != std::errc() || stop != end)
        return std::nullopt;
    return value;
}

}  // namespace arcsim
