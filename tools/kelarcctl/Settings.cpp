#include "kelarcctl/Settings.h"

#include "support/NearestName.h"
#include "support/Words.h"

#include <algorithm>
#include <charconv>
#include <tuple>
#include <utility>

namespace kelarcctl {

namespace {

using kelarc::KelArc;
using Words = std::vector<std::string>;  // the words of the values 1, 2 and so on

const Words kOffOn{"off", "on"};

Setting::Reading readingOf(int code, int value, const Words& words)
{
    if (code != 0 || value < 1 || value > static_cast<int>(words.size()))
        return {code, std::nullopt};
    return {code, words[static_cast<std::size_t>(value - 1)]};
}

int numberOf(const Words& words, const std::string& word)
{
    return static_cast<int>(std::find(words.begin(), words.end(), word) - words.begin()) + 1;
}

Setting describe(const char* command, const char* key, const char* unit, const char* help)
{
    return {command, key, unit, help, Setting::Shape::word, "", {}, nullptr};
}

void acceptWords(Setting& setting, const Words& words)
{
    setting.accepted = support::joined(words);
    setting.words = words;
    setting.plain = [words](const std::string& given) -> std::optional<std::string> {
        const std::string word = support::lowerCase(given);
        return std::find(words.begin(), words.end(), word) == words.end() ? std::nullopt : std::optional(word);
    };
}

using Read = std::function<void(Setting::Reading)>;
using Written = std::function<void(int)>;

/// The setters' callback, whose second argument tells whether the value has changed.
std::function<void(int, bool)> codeOnly(Written&& written)
{
    return [written = std::move(written)](int code, bool) { written(code); };
}

/// A setting whose values are numbered from 1.
template <typename Value>
Setting listed(Setting setting, const Words& words, void (KelArc::*get)(std::function<void(int, Value)>&&),
               void (KelArc::*set)(Value, std::function<void(int, bool)>&&))
{
    acceptWords(setting, words);
    setting.requestRead = [get, words](KelArc& modem, Read read) {
        (modem.*get)([words, read = std::move(read)](int code, Value value) {
            read(readingOf(code, static_cast<int>(value), words));
        });
    };
    setting.requestWrite = [set, words](KelArc& modem, const std::string& word, Written written) {
        (modem.*set)(static_cast<Value>(numberOf(words, word)), codeOnly(std::move(written)));
    };
    return setting;
}

Setting switched(Setting setting, void (KelArc::*get)(std::function<void(int, kelarc::RESULT)>&&),
                 void (KelArc::*set)(bool, std::function<void(int, bool)>&&))
{
    acceptWords(setting, kOffOn);
    setting.shape = Setting::Shape::flag;
    setting.requestRead = [get](KelArc& modem, Read read) {
        (modem.*get)([read = std::move(read)](int code, kelarc::RESULT value) {
            read(readingOf(code, static_cast<int>(value), kOffOn));
        });
    };
    setting.requestWrite = [set](KelArc& modem, const std::string& word, Written written) {
        (modem.*set)(word == "on", codeOnly(std::move(written)));
    };
    return setting;
}

Setting satelliteSystem(const char* name, const char* key, kelarc::gnss::SYSTEM system)
{
    using kelarc::gnss::SYSTEM;
    Setting setting =
        describe(("system " + std::string(name)).c_str(), key, "", "Whether satellites of this system are used");
    acceptWords(setting, kOffOn);
    setting.shape = Setting::Shape::flag;
    setting.requestRead = [system](KelArc& modem, Read read) {
        modem.getGnssStatus(system, [read = std::move(read)](int code, SYSTEM, kelarc::RESULT value) {
            read(readingOf(code, static_cast<int>(value), kOffOn));
        });
    };
    setting.requestWrite = [system](KelArc& modem, const std::string& word, Written written) {
        modem.setGnssStatus(system, word == "on",
                            [written = std::move(written)](int code, SYSTEM, bool) { written(code); });
    };
    return setting;
}

Setting numbered(Setting setting, int lowest, int highest,
                 void (KelArc::*get)(std::function<void(int, unsigned char)>&&),
                 void (KelArc::*set)(unsigned char, std::function<void(int, bool)>&&))
{
    setting.shape = Setting::Shape::number;
    setting.accepted = "a whole number from " + std::to_string(lowest) + " to " + std::to_string(highest);
    setting.plain = [lowest, highest](const std::string& given) -> std::optional<std::string> {
        int value = 0;
        const auto [end, error] = std::from_chars(given.data(), given.data() + given.size(), value);
        if (error != std::errc() || end != given.data() + given.size() || value < lowest || value > highest)
            return std::nullopt;
        return std::to_string(value);
    };
    setting.requestRead = [get](KelArc& modem, Read read) {
        (modem.*get)([read = std::move(read)](int code, unsigned char value) {
            read({code, code == 0 ? std::optional(std::to_string(value)) : std::nullopt});
        });
    };
    setting.requestWrite = [set](KelArc& modem, const std::string& number, Written written) {
        (modem.*set)(static_cast<unsigned char>(std::stoi(number)), codeOnly(std::move(written)));
    };
    return setting;
}

Setting period()
{
    Setting setting = listed<kelarc::gnss::FREQUENCY>(
        describe("period", "Nmea/FreqMs", "ms", "Period of the NMEA output"), {"1000", "500", "200", "100"},
        &KelArc::getGnssFrequency, &KelArc::setGnssFrequency);
    setting.shape = Setting::Shape::number;
    return setting;
}

Setting rawVersion()
{
    Setting setting = describe("raw-version", "Raw/Version", "", "Version of the raw data");
    setting.requestRead = [](KelArc& modem, Read read) {
        modem.getGnssRawVersion([read = std::move(read)](int code, std::string&& text) {
            if (code != 0 || text.empty())
                return read({code, std::nullopt});
            const bool isQuoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
            read({code, isQuoted ? text.substr(1, text.size() - 2) : text});
        });
    };
    return setting;
}

}  // namespace

Setting::Reading Setting::read(Session& session) const
{
    return std::get<0>(session.ask<Reading>("reading " + command, [&](auto&& callback) {
        requestRead(session.modem(), std::forward<decltype(callback)>(callback));
    }));
}

int Setting::write(Session& session, const std::string& value) const
{
    return std::get<0>(session.ask<int>("writing " + command, [&](auto&& callback) {
        requestWrite(session.modem(), value, std::forward<decltype(callback)>(callback));
    }));
}

Json Setting::json(const std::string& value) const
{
    switch (shape) {
    case Shape::flag:
        return value == "on";
    case Shape::number:
        return std::stoi(value);
    case Shape::word:
        break;
    }
    return value;
}

const std::vector<Setting>& settings()
{
    using kelarc::gnss::SYSTEM;
    static const std::vector<Setting> all{
        listed<kelarc::CPU_POWER>(describe("cpu-power", "Power/Cpu", "", "CPU power mode of the modem"),
                                  {"standard", "max"}, &KelArc::getCpuPower, &KelArc::setCpuPower),
        switched(describe("cpu-psm", "Power/Psm", "", "CPU power saving of the modem"), &KelArc::getCpuPsm,
                 &KelArc::setCpuPsm),
        listed<kelarc::gnss::FORMAT>(describe("format", "Nmea/Data/Format", "", "What the receiver puts out"),
                                     {"nmea", "raw"}, &KelArc::getGnssFormat, &KelArc::setGnssFormat),
        switched(describe("dr-sync", "Nmea/DRSync", "", "Synchronisation of the output with dead reckoning"),
                 &KelArc::getDRSync, &KelArc::setDRSync),
        satelliteSystem("glonass", "Engine/Glonass", SYSTEM::GLONASS),
        satelliteSystem("galileo", "Engine/Galileo", SYSTEM::GALILEO),
        satelliteSystem("beidou", "Engine/Beidou", SYSTEM::BEIDOU),
        satelliteSystem("qzss", "Engine/Qzss", SYSTEM::QZSS),
        switched(describe("sbas", "Nmea/Sbas", "", "Corrections from geostationary satellites"), &KelArc::getSbasStatus,
                 &KelArc::setSbasStatus),
        period(),
        numbered(describe("min-elevation", "Sens/MinElevAngle", "", "Lowest elevation of satellites that are used"), 5,
                 45, &KelArc::getMinElevation, &KelArc::setMinElevation),
        numbered(describe("raw-mask", "Nmea/Data/RawMask", "", "Mask of the raw data"), 0, 255, &KelArc::getRawMask,
                 &KelArc::setRawMask),
        rawVersion(),
    };
    return all;
}

}  // namespace kelarcctl
