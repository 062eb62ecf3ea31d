#pragma once

#include "host/ModemHost.h"

#include <nlohmann/json.hpp>

#include <string>

namespace arcsim {

/// Carries out a control: a request to the modem from outside the application, given by its name and the message's
/// members without `id` and `control` (docs/simulator.md). Throws ScenarioError for a name or member that is not
/// accepted. The server handles part of `clear`, `reset` and `stop` itself; that part is unknown here.
nlohmann::ordered_json control(ModemHost& host, const std::string& name, const nlohmann::json& message);

/// Whether control() accepts the name.
bool isControl(const std::string& name);
/// All names, including the server's own, for error messages.
std::vector<std::string> controlNames();

/// The present state of the modem, for people and programs.
nlohmann::ordered_json statusOf(const ModemHost& host);

}  // namespace arcsim
