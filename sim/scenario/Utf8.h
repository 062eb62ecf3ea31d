#pragma once

#include <cstddef>
#include <string_view>

namespace arcsim {

/// How many bytes from the beginning are UTF-8: all of them, or those before the first that does not belong there.
std::size_t lengthOfUtf8(std::string_view text);

}  // namespace arcsim
