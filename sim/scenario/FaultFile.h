#pragma once

#include "modem/Faults.h"
#include "scenario/JsonNode.h"

namespace arcsim {

/// How a fault is written: in the list `faults` of a scenario and in messages that inject one. An object with other
/// keys than a fault's is refused, so a message's own keys have to be taken out before.
///
/// A fault of a scenario has to say when it applies; an injected one without any condition holds for ever.
modem::Fault readFault(const JsonNode& node, bool injected);

/// The same as readFault() would read it.
nlohmann::ordered_json faultJson(const modem::Fault& fault);

/// The name of a request.
std::size_t readRequest(const JsonNode& node);

/// A number, {"min","max"} or {"mean","deviation"}.
modem::Latency readLatency(const JsonNode& node);

}  // namespace arcsim
