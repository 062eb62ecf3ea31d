#pragma once

#include "protocol/Messages.h"

#include <nlohmann/json.hpp>

namespace arcsim {

/// A message as the modem takes it: its texts, names of members included, as bytes. Throws ProtocolError for a text
/// with a character above FF.
nlohmann::json withBytes(const Json& message);
/// What the modem says as a message.
Json withCharacters(const Json& document);

}  // namespace arcsim
