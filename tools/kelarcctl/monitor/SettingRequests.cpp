#include "kelarcctl/monitor/SettingRequests.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace kelarcctl {

namespace {

using kelarc::KelArc;
using Words = std::vector<std::string>;  // of the values 1, 2 and so on

std::optional<std::string> wordOf(const Words& words, int value)
{
    if (value < 1 || value > static_cast<int>(words.size()))
        return std::nullopt;
    return words[static_cast<std::size_t>(value - 1)];
}

int valueOf(const Words& words, const std::string& word)
{
    return static_cast<int>(std::find(words.begin(), words.end(), word) - words.begin()) + 1;
}

template <typename Value>
SettingRequest listedRequest(const char* command, void (KelArc::*get)(std::function<void(int, Value)>&&),
                             void (KelArc::*set)(Value, std::function<void(int, bool)>&&))
{
    return {command,
            [get](KelArc& modem, const Words& words, SettingRequest::Read read) {
                (modem.*get)([words, read = std::move(read)](int code, Value value) {
                    read(code, wordOf(words, static_cast<int>(value)));
                });
            },
            [set](KelArc& modem, const Words& words, const std::string& word, SettingRequest::Written written) {
                (modem.*set)(static_cast<Value>(valueOf(words, word)),
                             [written = std::move(written)](int code, bool) { written(code); });
            }};
}

SettingRequest switchedRequest(const char* command, void (KelArc::*get)(std::function<void(int, kelarc::RESULT)>&&),
                               void (KelArc::*set)(bool, std::function<void(int, bool)>&&))
{
    return {command,
            [get](KelArc& modem, const Words& words, SettingRequest::Read read) {
                (modem.*get)([words, read = std::move(read)](int code, kelarc::RESULT value) {
                    read(code, wordOf(words, static_cast<int>(value)));
                });
            },
            [set](KelArc& modem, const Words&, const std::string& word, SettingRequest::Written written) {
                (modem.*set)(word == "on", [written = std::move(written)](int code, bool) { written(code); });
            }};
}

SettingRequest systemRequest(const char* command, kelarc::gnss::SYSTEM system)
{
    using kelarc::gnss::SYSTEM;
    return {command,
            [system](KelArc& modem, const Words& words, SettingRequest::Read read) {
                modem.getGnssStatus(system, [words, read = std::move(read)](int code, SYSTEM, kelarc::RESULT value) {
                    read(code, wordOf(words, static_cast<int>(value)));
                });
            },
            [system](KelArc& modem, const Words&, const std::string& word, SettingRequest::Written written) {
                modem.setGnssStatus(system, word == "on",
                                    [written = std::move(written)](int code, SYSTEM, bool) { written(code); });
            }};
}

SettingRequest numberRequest(const char* command, void (KelArc::*get)(std::function<void(int, unsigned char)>&&),
                             void (KelArc::*set)(unsigned char, std::function<void(int, bool)>&&))
{
    return {command,
            [get](KelArc& modem, const Words&, SettingRequest::Read read) {
                (modem.*
                 get)([read = std::move(read)](int code, unsigned char value) { read(code, std::to_string(value)); });
            },
            [set](KelArc& modem, const Words&, const std::string& number, SettingRequest::Written written) {
                (modem.*set)(static_cast<unsigned char>(std::stoi(number)),
                             [written = std::move(written)](int code, bool) { written(code); });
            }};
}

SettingRequest rawVersionRequest()
{
    return {"raw-version", [](KelArc& modem, const Words&, SettingRequest::Read read) {
                modem.getGnssRawVersion([read = std::move(read)](int code, std::string&& text) {
                    const bool isQuoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
                    read(code, isQuoted ? text.substr(1, text.size() - 2) : text);
                });
            }};
}

}  // namespace

const SettingRequest& settingRequest(const std::string& command)
{
    using kelarc::gnss::SYSTEM;
    static const std::vector<SettingRequest> all{
        listedRequest<kelarc::CPU_POWER>("cpu-power", &KelArc::getCpuPower, &KelArc::setCpuPower),
        switchedRequest("cpu-psm", &KelArc::getCpuPsm, &KelArc::setCpuPsm),
        listedRequest<kelarc::gnss::FORMAT>("format", &KelArc::getGnssFormat, &KelArc::setGnssFormat),
        switchedRequest("dr-sync", &KelArc::getDRSync, &KelArc::setDRSync),
        systemRequest("system glonass", SYSTEM::GLONASS),
        systemRequest("system galileo", SYSTEM::GALILEO),
        systemRequest("system beidou", SYSTEM::BEIDOU),
        systemRequest("system qzss", SYSTEM::QZSS),
        switchedRequest("sbas", &KelArc::getSbasStatus, &KelArc::setSbasStatus),
        listedRequest<kelarc::gnss::FREQUENCY>("period", &KelArc::getGnssFrequency, &KelArc::setGnssFrequency),
        numberRequest("min-elevation", &KelArc::getMinElevation, &KelArc::setMinElevation),
        numberRequest("raw-mask", &KelArc::getRawMask, &KelArc::setRawMask),
        rawVersionRequest(),
    };
    const auto found = std::find_if(all.begin(), all.end(), [&](const auto& each) { return each.command == command; });
    if (found == all.end())
        throw std::out_of_range("no request for the setting '" + command + "'");
    return *found;
}

}  // namespace kelarcctl
