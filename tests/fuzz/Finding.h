#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

namespace fuzz {

/// Ends the run; the input is kept.
[[noreturn]] inline void finding(const std::string& text)
{
    std::fprintf(stderr, "Finding: %s\n", text.c_str());
    std::abort();
}

}  // namespace fuzz
