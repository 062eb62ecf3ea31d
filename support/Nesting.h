#pragma once

#include <cstddef>
#include <string_view>

namespace support {

/// The deepest nesting of objects and arrays that our programs accept in JSON: far more than any of them writes. Code
/// that prints, compares or copies values needs stack for every level, so foreign texts are checked before parsing.
inline constexpr std::size_t kDeepestNesting = 32;

/// The nesting depth of a JSON text; in a text with a mistake, at least the depth that a parser meets before it.
constexpr std::size_t nestingOf(std::string_view json)
{
    std::size_t depth = 0;
    std::size_t deepest = 0;
    bool inText = false;
    for (std::size_t i = 0; i < json.size(); ++i) {
        const char c = json[i];
        if (inText && c == '\\')
            ++i;
        else if (c == '"')
            inText = !inText;
        else if (!inText && (c == '[' || c == '{'))
            deepest = ++depth > deepest ? depth : deepest;
        else if (!inText && (c == ']' || c == '}') && depth > 0)
            --depth;
    }
    return deepest;
}

}  // namespace support
