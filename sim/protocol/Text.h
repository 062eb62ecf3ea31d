#pragma once

#include "modem/Hex.h"

#include <optional>
#include <string>
#include <string_view>

namespace arcsim {

/// Texts of the client library are bytes, texts of JSON are characters: a byte from 80 on travels as the character with
/// its number, so that nothing is lost and nothing is refused.
std::string charactersOf(std::string_view bytes);
/// Nothing when a character is above FF or the text is not UTF-8.
std::optional<std::string> bytesOf(std::string_view characters);

}  // namespace arcsim
