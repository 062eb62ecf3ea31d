#include "kelarcctl/monitor/Format.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>

namespace kelarcctl {

std::string format(const char* text, ...)
{
    char buffer[512];
    va_list values;
    va_start(values, text);
    std::vsnprintf(buffer, sizeof buffer, text, values);
    va_end(values);
    return buffer;
}

std::string ageText(long long ms)
{
    const long long seconds = ms / 1000;
    if (seconds < 120)
        return std::to_string(seconds) + " s";
    if (seconds < 7200)
        return std::to_string(seconds / 60) + " min";
    return std::to_string(seconds / 3600) + " h";
}

std::string fitted(const std::string& text, int most)
{
    const auto size = static_cast<std::size_t>(most < 0 ? 0 : most);
    if (text.size() <= size)
        return text;
    return size < 3 ? text.substr(0, size) : text.substr(0, size - 2) + "..";
}

std::vector<std::string> wordsOf(const std::string& accepted)
{
    constexpr char kBetween[] = ", ";
    std::vector<std::string> words;
    for (std::size_t begin = 0; begin < accepted.size();) {
        const std::size_t end = std::min(accepted.find(kBetween, begin), accepted.size());
        words.push_back(accepted.substr(begin, end - begin));
        begin = end + sizeof kBetween - 1;
    }
    return words;
}

}  // namespace kelarcctl
