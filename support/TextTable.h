#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace support {

/// A row of a table in a help text: what can be typed or seen, and what it means.
struct TextRow
{
    std::string name;
    std::string meaning;
};

/// The names, and the meanings below each other beside them, broken between words into lines of at most `width`
/// characters.
std::vector<std::string> tableLines(const std::vector<TextRow>& rows, std::size_t width);

}  // namespace support
