#pragma once

#include "kelarcctl/LstaSystems.h"
#include "kelarcctl/Output.h"
#include "kelarcctl/Session.h"
#include "kelarcctl/Settings.h"

#include <optional>
#include <string>

namespace kelarcctl {

struct LstaAnswer
{
    int code;
    bool status;
    int value;
};
LstaAnswer readLsta(Session& session, const kelarc::lsta::System& system);
/// {"on": true, "value": 38}
Json lstaJson(const LstaAnswer& answer);
/// "on, value 38"
std::string lstaText(bool status, int value);

struct ArcVersion
{
    int code;
    std::string text;
};
ArcVersion readArcVersion(Session& session);

struct RilVersions
{
    int code;
    std::string primary;
    std::string secondary;
};
RilVersions readRilVersion(Session& session);

/// "500 ms" or "not understood".
std::string shown(const Setting& setting, const std::optional<std::string>& value);
/// The same for JSON; null if not understood.
Json jsonOf(const Setting& setting, const std::optional<std::string>& value);

/// The message for a written value that reads back as another one.
Trouble readsBackOtherwise(const Setting& setting, const std::string& wanted, const std::optional<std::string>& got);

/// The modem's raw value of a key. Throws Failure when the modem refuses.
std::string readKey(Session& session, const std::string& key);
/// Returns whether, according to the modem, the value changed. Throws Failure when the modem refuses.
bool writeKey(Session& session, const std::string& key, const std::string& value);

}  // namespace kelarcctl
