#include "arcsim/NearestName.h"

#include <algorithm>
#include <numeric>

namespace arcsim::program {

namespace {

constexpr std::size_t kLongestCompared = 64;

/// How many letters have to be changed, added, left out or swapped with their neighbour.
std::size_t distance(const std::string& a, const std::string& b)
{
    std::vector<std::vector<std::size_t>> of(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
    std::iota(of[0].begin(), of[0].end(), 0U);
    for (std::size_t i = 1; i <= a.size(); ++i) {
        of[i][0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t change = a[i - 1] == b[j - 1] ? 0 : 1;
            of[i][j] = std::min({of[i - 1][j] + 1, of[i][j - 1] + 1, of[i - 1][j - 1] + change});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                of[i][j] = std::min(of[i][j], of[i - 2][j - 2] + 1);
        }
    }
    return of[a.size()][b.size()];
}

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

std::string joined(const std::vector<std::string>& names)
{
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "" : ", ") + name;
    return text;
}

std::string lowerCase(std::string text)
{
    // Not tolower(): bytes of other alphabets are none of ours.
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
        const std::size_t letters = distance(wanted, lowerCase(name));
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
    return "unknown " + kind + " '" + given + "'; " + (nearest ? "did you mean " + *nearest + "? " : "") +
           "accepted: " + joined(accepted);
}

}  // namespace arcsim::program
