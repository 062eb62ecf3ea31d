#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace support {

/// For foreign texts that a program shows: the text as kelarc::logsink::printable() makes it, on one line, with control
/// characters and invalid UTF-8 as `\n`, `\x1b` and the like.
std::string printable(std::string_view text);

/// How many bytes from the beginning are well-formed UTF-8: all of them, or those before the first invalid one.
std::size_t lengthOfUtf8(std::string_view text);

}  // namespace support
