#include "support/Words.h"

#include "support/Printable.h"

#include <algorithm>

namespace support {

namespace {

constexpr std::size_t kLongestWord = 40;  // no accepted word is that long
constexpr std::size_t kFarthest = 2;

char lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

}  // namespace

std::string joined(const std::vector<std::string>& words)
{
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : ", ") + word;
    return text;
}

std::string suggestion(const std::string& word, const std::vector<std::string>& accepted)
{
    if (word.size() > kLongestWord)
        return "";
    const std::string* nearest = nullptr;
    std::size_t least = kFarthest + 1;
    for (const std::string& each : accepted) {
        const std::size_t steps = lettersBetween(word, each);
        if (steps < least && 2 * steps < each.size()) {  // most letters of a short word must be right
            least = steps;
            nearest = &each;
        }
    }
    return nearest == nullptr ? "" : "; did you mean " + *nearest + "?";
}

std::size_t lettersBetween(const std::string& a, const std::string& b)
{
    std::vector<std::vector<std::size_t>> steps(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
    for (std::size_t i = 0; i <= a.size(); ++i)
        for (std::size_t k = 0; k <= b.size(); ++k) {
            if (i == 0 || k == 0) {
                steps[i][k] = i + k;
                continue;
            }
            const std::size_t replaced = lower(a[i - 1]) == lower(b[k - 1]) ? 0 : 1;
            steps[i][k] = std::min({steps[i - 1][k] + 1, steps[i][k - 1] + 1, steps[i - 1][k - 1] + replaced});
            if (i > 1 && k > 1 && lower(a[i - 1]) == lower(b[k - 2]) && lower(a[i - 2]) == lower(b[k - 1]))
                steps[i][k] = std::min(steps[i][k], steps[i - 2][k - 2] + 1);
        }
    return steps[a.size()][b.size()];
}

std::string inSmallLetters(std::string_view text)
{
    std::string small(text);
    std::transform(small.begin(), small.end(), small.begin(), lower);
    return small;
}

bool sameLetters(std::string_view a, std::string_view b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return lower(x) == lower(y); });
}

std::string repeated(const std::string& given, std::size_t most)
{
    return shortened(printable(shortened(given, most)), most);
}

std::string shortened(const std::string& text, std::size_t most)
{
    if (text.size() <= most)
        return text;
    const auto continues = [&](std::size_t at) { return (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80U; };
    while (most > 0 && continues(most))
        --most;
    return text.substr(0, most) + "...";
}

}  // namespace support
