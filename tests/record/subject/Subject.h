#pragma once

#include <cstdio>
#include <cstdlib>

namespace subject {

/// Ends the program as failed, saying what did not hold.
inline void require(bool holds, const char* what, int line)
{
    if (holds)
        return;
    std::fprintf(stderr, "line %d: not so: %s\n", line, what);
    std::_Exit(99);
}

}  // namespace subject

#define REQUIRE(condition) subject::require(condition, #condition, __LINE__)
