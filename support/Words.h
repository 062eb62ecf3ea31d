#pragma once

// What error texts do with words: list them, shorten them, find the one that was meant.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace support {

/// "a, b, c"
std::string joined(const std::vector<std::string>& words);

/// "; did you mean X?" with the accepted word that is nearest to `word`; empty when none is near.
std::string suggestion(const std::string& word, const std::vector<std::string>& accepted);

/// How many letters have to be added, removed, replaced or swapped with their neighbour, to make one word the other;
/// the case of ASCII letters is of no matter.
std::size_t lettersBetween(const std::string& a, const std::string& b);

/// Equal but for the case of ASCII letters.
bool sameLetters(std::string_view a, std::string_view b);

/// With the ASCII letters in lower case.
std::string inSmallLetters(std::string_view text);

/// Of what somebody has given, the most that a message repeats.
constexpr std::size_t kLongestShown = 40;

/// What somebody has given, as a message may repeat it: cut, and with nothing in it that steers a terminal.
std::string repeated(const std::string& given, std::size_t most = kLongestShown);

/// The text, or its first `most` bytes and "..."; never half a UTF-8 character.
std::string shortened(const std::string& text, std::size_t most);

}  // namespace support
