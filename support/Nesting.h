#pragma once

#include <cstddef>
#include <string_view>

namespace support {

/// Objects and arrays within each other that programs of ours accept in JSON: far beyond what any of them writes. What
/// prints, compares or copies values needs stack for every level, so texts of others are asked before they are parsed.
inline constexpr std::size_t kDeepestNesting = 32;

/// How deep the objects and arrays of a JSON text lie within each other; at least what a parser meets before the first
/// mistake in it.
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
