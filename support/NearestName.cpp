#include "support/NearestName.h"

#include <algorithm>

namespace support {

namespace {

constexpr std::size_t kLongestCompared = 64;

std::optional<std::string> onlyOneBeginningWith(const std::string& given, const std::vector<std::string>& names)
{
    std::optional<std::string> found;
    for (const std::string& name : names) {
        if (lowerCase(name).compare(0, given.size(), given) != 0)
            continue;
        if (found)
            return std::nullopt;
        found = name;
    }
    return found;
}

}  // namespace

std::string lowerCase(std::string text)
{
    // Not tolower(): bytes of other alphabets must not change.
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return text;
}

std::optional<std::string> nearestName(const std::string& given, const std::vector<std::string>& names)
{
    const std::string wanted = lowerCase(given);
    if (wanted.empty() || wanted.size() > kLongestCompared)
        return std::nullopt;
    if (const auto begun = onlyOneBeginningWith(wanted, names))
        return begun;
    std::optional<std::string> nearest;
    std::size_t least = std::max<std::size_t>(1, wanted.size() / 3) + 1;
    for (const std::string& name : names) {
        const std::size_t letters = lettersBetween(wanted, name);
        if (letters < least) {
            least = letters;
            nearest = name;
        }
    }
    return nearest;
}

std::string unknownName(const std::string& kind, const std::string& given, const std::vector<std::string>& accepted,
                        const std::optional<std::string>& spelling)
{
    const auto nearest = nearestName(spelling.value_or(given), accepted);
    return "unknown " + kind + " '" + repeated(given) + "'; " + (nearest ? "did you mean " + *nearest + "? " : "") +
           "accepted: " + joined(accepted);
}

}  // namespace support
