#pragma once

#include "receiver/ReceiverTypes.h"
#include "scenario/JsonNode.h"

#include <string>

namespace arcsim {

/// The receiver's part of a scenario without the seed: startUtc, route, satellites, jamming, noFix and replay of
/// `root`. Relative paths of other files start from the folder of `scenarioFile`.
void readReceiver(const JsonNode& root, const std::string& scenarioFile, ReceiverScenario& scenario);

}  // namespace arcsim
