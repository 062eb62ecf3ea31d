#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace support {

/// For whatever a program shows that it has not written itself: the text as kelarc::logsink::printable() makes it, on
/// one line, with control characters and bytes that are no UTF-8 as `\n`, `\x1b` and the like.
std::string printable(std::string_view text);

/// How many bytes from the beginning are well-formed UTF-8: all of them, or those before the first that does not belong
/// there.
std::size_t lengthOfUtf8(std::string_view text);

}  // namespace support
