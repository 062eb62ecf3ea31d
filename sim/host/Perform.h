#pragma once

#include "host/Request.h"
#include "modem/Modem.h"

#include <chrono>

namespace arcsim {

/// What the modem answers to a call of a client whose connection is open or not. Opening and closing are for the one
/// who keeps the clients' connections: here they answer as the modem's own.
modem::Reply perform(modem::Modem& modem, const Request& request, bool isOpen, std::chrono::milliseconds now);

/// What ARC_GetArcVersion answers: the client library's own text.
modem::Reply localVersion();

}  // namespace arcsim
