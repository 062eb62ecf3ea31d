#pragma once

#include "modem/Lsta.h"
#include "receiver/ReceiverTypes.h"
#include "scenario/JsonNode.h"

#include <array>
#include <string>
#include <vector>

namespace arcsim {

/// In the order of GnssSystem. Files and messages may use any case.
const std::vector<std::string>& systemNames();
/// In the order of modem::LstaSystem.
const std::vector<std::string>& lstaSystemNames();

/// A list of at least one name, or "all"; by indexOf().
std::array<bool, kGnssSystemCount> readSystems(const JsonNode& node);
modem::LstaSystem readLstaSystem(const JsonNode& node);

}  // namespace arcsim
