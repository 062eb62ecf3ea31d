#pragma once

#include "host/ModemHost.h"

#include <nlohmann/json.hpp>

#include <string>

namespace arcsim {

/// What somebody beside the application asks of the modem, by the name and the other members of a message, `id` and
/// `control` left out: see docs/simulator.md. Throws ScenarioError for a name or member that is not accepted. `clear`,
/// `reset` and `stop` are partly matters of the one who serves the modem and not known here.
nlohmann::ordered_json control(ModemHost& host, const std::string& name, const nlohmann::json& message);

/// Whether control() knows the name.
bool isControl(const std::string& name);
/// All names, the server's own included, for a refusal.
std::vector<std::string> controlNames();

/// The modem as it is, for people and programs.
nlohmann::ordered_json statusOf(const ModemHost& host);

}  // namespace arcsim
