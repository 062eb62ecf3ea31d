#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace support {

/// A row of a table in a help text: a name, and its meaning.
struct TextRow
{
    std::string name;
    std::string meaning;
};

/// Lines with the names on the left and the meanings in a column beside them, wrapped between words to at most `width`
/// characters.
std::vector<std::string> tableLines(const std::vector<TextRow>& rows, std::size_t width);

}  // namespace support
