#include "kelarcctl/Queries.h"

#include "support/Printable.h"
#include "support/Words.h"

#include <cstring>
#include <utility>

namespace kelarcctl {

namespace {

std::string textOf(const char (&bytes)[64])
{
    return {bytes, ::strnlen(bytes, sizeof bytes)};
}

}  // namespace

LstaAnswer readLsta(Session& session, const kelarc::lsta::System& system)
{
    const auto [code, status, value] =
        session.ask<int, bool, int>("reading the LSTA of " + wordOf(system), [&](auto&& callback) {
            session.modem().getLstaGnss(system.tech, std::forward<decltype(callback)>(callback));
        });
    return {code, status, value};
}

Json lstaJson(const LstaAnswer& answer)
{
    return {{"on", answer.status}, {"value", answer.value}};
}

std::string lstaText(bool status, int value)
{
    return std::string(status ? "on" : "off") + ", value " + std::to_string(value);
}

ArcVersion readArcVersion(Session& session)
{
    const auto [code, text] =
        session.ask<int, std::string>("reading the client library's version", [&](auto&& callback) {
            session.modem().getArcVersion(std::forward<decltype(callback)>(callback));
        });
    return {code, text};
}

RilVersions readRilVersion(Session& session)
{
    const auto [code, ril] = session.ask<int, kelarc::RilVersion>("reading the RIL's version", [&](auto&& callback) {
        session.modem().getRilVersion(std::forward<decltype(callback)>(callback));
    });
    return {code, textOf(ril.primary), textOf(ril.secondary)};
}

std::string shown(const Setting& setting, const std::optional<std::string>& value)
{
    return value ? support::printable(*value) + (setting.unit.empty() ? "" : " " + setting.unit)
                 : std::string("not understood");
}

Json jsonOf(const Setting& setting, const std::optional<std::string>& value)
{
    return value ? setting.json(*value) : Json(nullptr);
}

Trouble readsBackOtherwise(const Setting& setting, const std::string& wanted, const std::optional<std::string>& got)
{
    Trouble trouble;
    trouble.text = "the modem took " + setting.command + " " + wanted + " but reads back " + shown(setting, got);
    trouble.next = "See whether another program has changed it, and run the command again.";
    return trouble;
}

std::string readKey(Session& session, const std::string& key)
{
    const std::string what = "reading " + support::shortened(key, support::kLongestShown);
    const auto [code, text] = session.ask<int, std::string>(what, [&](auto&& callback) {
        session.modem().getModuleSetting(key, std::forward<decltype(callback)>(callback));
    });
    session.require(code, what);
    return text;
}

bool writeKey(Session& session, const std::string& key, const std::string& value)
{
    const std::string what = "writing " + support::shortened(key, support::kLongestShown);
    const auto [code, isChanged] = session.ask<int, bool>(what, [&](auto&& callback) {
        session.modem().setModuleSetting(key, value, std::forward<decltype(callback)>(callback));
    });
    session.require(code, what);
    return isChanged;
}

}  // namespace kelarcctl
