#pragma once

#include <string>
#include <vector>

namespace kelarcctl {

[[gnu::format(printf, 1, 2)]] std::string format(const char* text, ...);

/// "12 s", "3 min", "2 h"
std::string ageText(long long ms);

/// At most this many bytes; a cut text ends with "..".
std::string fitted(const std::string& text, int most);

/// The values of a setting that accepts "standard, max".
std::vector<std::string> wordsOf(const std::string& accepted);

}  // namespace kelarcctl
