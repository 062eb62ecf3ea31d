#pragma once

#include "protocol/Messages.h"

#include <nlohmann/json.hpp>

namespace arcsim {

/// A message in the modem's form: its texts and member names as bytes. Throws ProtocolError for a text with a character
/// above 0xFF.
nlohmann::json withBytes(const Json& message);
/// The modem's texts in the form of a message.
Json withCharacters(const Json& document);

}  // namespace arcsim
