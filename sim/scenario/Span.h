#pragma once

#include "scenario/JsonNode.h"

namespace arcsim {

/// Reads the end of a stretch of scenario time that begins at `from`: later than `from`, at most a day.
inline std::chrono::milliseconds readEnd(const JsonNode& node, std::chrono::milliseconds from)
{
    const std::chrono::milliseconds end = node.time();
    if (end <= from)
        node.refuse("a time after the beginning at " + std::to_string(from.count()));
    return end;
}

}  // namespace arcsim
