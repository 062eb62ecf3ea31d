#pragma once

#include "modem/Faults.h"
#include "scenario/JsonNode.h"

namespace arcsim {

/// The written form of a fault, in the list `faults` of a scenario and in messages that inject a fault. An object with
/// unknown keys is refused, so the caller must first remove a message's own keys.
///
/// A fault of a scenario must say when it applies; an injected fault without any condition applies for ever.
modem::Fault readFault(const JsonNode& node, bool injected);

/// The form that readFault() reads.
nlohmann::ordered_json faultJson(const modem::Fault& fault);

/// The name of a request.
std::size_t readRequest(const JsonNode& node);

/// A number, {"min","max"} or {"mean","deviation"}.
modem::Latency readLatency(const JsonNode& node);

}  // namespace arcsim
