#pragma once

// Words in error texts: lists, shortening, suggestions.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace support {

/// "a, b, c"
std::string joined(const std::vector<std::string>& words);

/// "; did you mean X?" with the accepted word that is nearest to `word`; empty when none is near.
std::string suggestion(const std::string& word, const std::vector<std::string>& accepted);

/// How many letters must be added, removed, replaced or swapped with their neighbour to turn one word into the other.
/// The case of ASCII letters does not count.
std::size_t lettersBetween(const std::string& a, const std::string& b);

/// Equal except for the case of ASCII letters.
bool sameLetters(std::string_view a, std::string_view b);

/// With the ASCII letters in lower case.
std::string inSmallLetters(std::string_view text);

/// The most bytes of a user's input that a message repeats.
constexpr std::size_t kLongestShown = 40;

/// A user's input as a message may repeat it: cut, and safe for a terminal.
std::string repeated(const std::string& given, std::size_t most = kLongestShown);

/// The text, or its first `most` bytes and "..."; never half a UTF-8 character.
std::string shortened(const std::string& text, std::size_t most);

}  // namespace support
