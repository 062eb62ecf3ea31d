#pragma once

#include "support/Printable.h"

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

/// What people are told is a line that steers no terminal.
inline void requireReadable(const std::string& text)
{
    if (text.empty() || support::printable(text) != text)
        finding("what nobody can read: " + text);
}

}  // namespace fuzz
