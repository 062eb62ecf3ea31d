#pragma once

#include "modem/Hex.h"

#include <optional>
#include <string>
#include <string_view>

namespace arcsim {

/// The client library's texts are bytes, JSON texts are characters. A byte from 0x80 on is sent as the character with
/// its number, so that nothing is lost or refused.
std::string charactersOf(std::string_view bytes);
/// Empty when a character is above 0xFF or the text is not UTF-8.
std::optional<std::string> bytesOf(std::string_view characters);

}  // namespace arcsim
