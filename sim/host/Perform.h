#pragma once

#include "host/Request.h"
#include "modem/Modem.h"

#include <chrono>

namespace arcsim {

/// The modem's answer to a call of a client whose connection is open or closed. The keeper of the clients' connections
/// handles opening and closing; here both act on the modem's own connection.
modem::Reply perform(modem::Modem& modem, const Request& request, bool isOpen, std::chrono::milliseconds now);

/// The text of ARC_GetArcVersion, which belongs to the client library.
modem::Reply localVersion();

}  // namespace arcsim
