// The part of the collector that reads from the modem and writes to it.

#include "kelarcctl/LstaSystems.h"
#include "kelarcctl/Settings.h"
#include "kelarcctl/monitor/Collector.h"
#include "kelarcctl/monitor/Format.h"

#include <algorithm>
#include <iterator>

namespace kelarcctl {

namespace {

constexpr int kNotAttempted = 32;
constexpr long long kReadEveryMs = 10'000;

std::string textIn(const char (&bytes)[64])
{
    return {bytes, std::find(bytes, bytes + sizeof bytes, '\0')};
}

}  // namespace

void Collector::readVersions()
{
    ask<int, std::string>(
        "reading the client library's version", [&](auto callback) { m_modem.getArcVersion(std::move(callback)); },
        [this](int, const std::string& text) { m_model.clientLibrary = text; });
    ask<int, kelarc::RilVersion>(
        "reading the RIL's version", [&](auto callback) { m_modem.getRilVersion(std::move(callback)); },
        [this](int code, const kelarc::RilVersion& version) {
            if (code == 0)
                m_model.ril = {textIn(version.primary), textIn(version.secondary)};
        });
}

void Collector::read()
{
    if (isOverburdened())
        return;
    m_nextReadMs = m_model.nowMs + kReadEveryMs;
    for (std::size_t row = 0; row < m_model.settings.size(); ++row)
        readSetting(row);
    for (std::size_t row = 0; row < m_model.lsta.size(); ++row)
        readLsta(row);
}

void Collector::readSetting(std::size_t row, bool afterWrite)
{
    ask<Setting::Reading>(
        "reading " + m_model.settings[row].command,
        [&](auto callback) { settings()[row].requestRead(m_modem, std::move(callback)); },
        [this, row, afterWrite](const Setting::Reading& reading) {
            const auto& [code, value] = reading;
            SettingRow& setting = m_model.settings[row];
            if (code == kNotAttempted || code == kCodeOfNoDaemon)
                return;  // no new information
            if (setting.value != value || !setting.problem.empty() != (code != 0))
                tellSetting(row, reading);
            m_model.readMs = code == 0 ? m_model.nowMs : m_model.readMs;
            setting.value = code == 0 ? value : std::nullopt;
            setting.problem = code != 0 ? "refused: " + refusal(code) : value ? "" : "not understood";
            if (afterWrite)
                m_model.setNotice(Style::good, setting.command + " is now " + setting.value.value_or("unknown"));
        });
}

void Collector::tellSetting(std::size_t row, const Setting::Reading& reading)
{
    const Setting& setting = settings()[row];
    const bool isKnown = reading.code == 0 && reading.value;
    Json json{{"type", "setting"},
              {"setting", setting.command},
              {"key", setting.key},
              {"value", isKnown ? setting.json(*reading.value) : Json(nullptr)}};
    if (reading.code != 0)
        json["error"] = troubleWith(reading.code, "reading " + setting.command).json();
    tell(json);
}

void Collector::readLsta(std::size_t row)
{
    ask<int, bool, int>(
        "reading the LSTA of " + m_model.lsta[row].system,
        [&](auto callback) { m_modem.getLstaGnss(kLstaSystems[row].tech, std::move(callback)); },
        [this, row](int code, bool status, int value) {
            LstaRow& lsta = m_model.lsta[row];
            lsta.problem = code == 0 ? "" : "refused: " + refusal(code);
            if (code != 0)
                return;
            if (!lsta.isKnown || (lsta.status != 0) != status || static_cast<int>(lsta.value) != value)
                setLsta(row, status ? 1 : 0, value, false);  // otherwise keep the report, which was more exact
        },
        true);
}

void Collector::write(std::size_t setting, const std::string& value)
{
    if (isOverburdened())
        return;
    const SettingRow& row = m_model.settings.at(setting);
    const std::string wanted = row.command + " " + value;
    m_model.setNotice(Style::plain, "writing " + wanted);
    ask<int>(
        "writing " + wanted,
        [&](auto callback) { settings()[setting].requestWrite(m_modem, value, std::move(callback)); },
        [this, setting, wanted](int code) {
            if (code != 0)
                m_model.setNotice(Style::bad, "the modem refused " + wanted + ": " + refusal(code));
            readSetting(setting, code == 0);
        });
}

}  // namespace kelarcctl
