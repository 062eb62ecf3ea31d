#include "seeds/Requests.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace seeds {
namespace {

using kelarc::KelArc;

const std::vector<TypedSetting> kTyped = {
    {"Power/Cpu", 461, {{1, "\"std\""}, {2, "\"max\""}}},
    {"Power/Psm", 511, {{1, "\"0\""}, {2, "\"1\""}}},
    {"Nmea/Data/Format", 680, {{1, "\"Nmea\""}, {2, "\"Raw\""}}},
    {"Nmea/DRSync", 732, {{1, "\"off\""}, {2, "\"on\""}}},
    {"Engine/Glonass", 797, {{1, "\"0\""}, {2, "\"1\""}}},
    {"Engine/Galileo", 797, {{1, "\"0\""}, {2, "\"1\""}}},
    {"Engine/Beidou", 797, {{1, "\"0\""}, {2, "\"1\""}}},
    {"Engine/Qzss", 797, {{1, "\"0\""}, {2, "\"1\""}}},
    {"Nmea/Sbas", 858, {{1, "\"off\""}, {2, "\"on\""}}},
    {"Nmea/FreqMs", 900, {{1, "\"1000\""}, {2, "\"500\""}, {3, "\"200\""}, {4, "\"100\""}}},
};

const contract::PublishedCall* kindOf(const char* name)
{
    for (const auto& call : contract::publishedCalls())
        if (std::strcmp(call.name, name) == 0)
            return &call;
    throw std::logic_error(std::string(name) + " is no kind of call");
}

Demand queued(const char* kind, const std::string& call, Ending ending)
{
    return {{{kindOf(kind), call, ending, "", "", 0}}, {}, {}};
}
Demand reading(const std::string& key, Ending ending, int number = 0)
{
    return {
        {{kindOf("GetModuleSetting"), "Get ARC_CheckModuleSetting(\"" + key + "\")", ending, key, "", number}}, {}, {}};
}
Demand writing(const std::string& key, const std::string& value, Ending ending = Ending::written, int number = 0)
{
    const std::string call = "Set ARC_CheckModuleSetting(\"" + key + "\", " + value + ")";
    return {{{kindOf("SetModuleSetting"), call, ending, key, value, number}}, {}, {}};
}
Demand refused(const std::string& line, const std::string& answer)
{
    return {{}, "4 KelArc::" + line, answer};
}
Demand writingTyped(const std::string& key, const Request& request, const std::string& refusal)
{
    for (const auto& [number, text] : typedSetting(key).texts)
        if (number == request.number)
            return writing(key, text);
    return refused(refusal, "(14, false)");
}
Demand switching(const std::string& key, const Request& request)
{
    return writing(key, typedSetting(key).texts[request.flag ? 1 : 0].second);
}
std::string quotedNumber(int number)
{
    return '"' + std::to_string(number) + '"';
}

const char* engineKey(int system)
{
    static const char* const keys[] = {nullptr, "Engine/Glonass", "Engine/Galileo", "Engine/Beidou", "Engine/Qzss"};
    return system >= 1 && system <= 4 ? keys[system] : nullptr;
}
Demand systemRead(const Request& request)
{
    if (const char* const key = engineKey(request.number))
        return reading(key, Ending::system, request.number);
    return {{}, "4 KelArc::getGnssStatus.775: Invalid SYSTEM parameter: '" + std::to_string(request.number) + "'", {}};
}
Demand systemSwitched(const Request& request)
{
    const char* const key = engineKey(request.number);
    if (key == nullptr)
        return {};
    return writing(key, request.flag ? "\"1\"" : "\"0\"", Ending::systemWritten, request.number);
}

/// The client library's number of an LSTA system; 0 for one that does not exist.
int technology(int tech)
{
    static const int ids[] = {0, 10, 11, 12, 13};
    return tech >= 1 && tech <= 4 ? ids[tech] : 0;
}
Demand lstaAsked(const Request& request)
{
    const int id = technology(request.number);
    if (id == 0)
        return refused("getLstaGnss.1021: Unknown/unsupported tech id " + std::to_string(request.number),
                       "(14, false, 0)");
    Demand demand = queued("CurrentLSTA", "ARC_CurrentLSTA(\"" + std::to_string(id) + "\")", Ending::lstaQuery);
    demand.tasks[0].number = id;
    return demand;
}
Demand lstaSwitched(const Request& request)
{
    const int id = technology(request.number);
    if (id == 0)
        return refused("setLstaGnssStatus.1129: Unknown/unsupported tech id " + std::to_string(request.number), "(14)");
    return queued("EnableLSTA",
                  "ARC_EnableLSTA(\"" + std::to_string(id) + "\", \"" + (request.flag ? "1" : "0") + "\", \"" +
                      request.text + "\")",
                  Ending::lstaSwitch);
}
Demand opening(const Request&)
{
    Demand demand =
        queued("SetNotificationMethod", "ARC_SetNotificationMethod(ARC_NOTIFY_METHOD_SINGLETHREAD)", Ending::method);
    demand.tasks.push_back(queued("Open", "ARC_Open()", Ending::open).tasks[0]);
    return demand;
}
Demand stopping(const Request&)
{
    Demand demand = queued("StopGNSS", "ARC_StopGNSS()", Ending::stop);
    demand.line = "2 KelArc::stopGNSS.600: stopGNSS called, cancelling current ARC tasks";
    return demand;
}

using Asked = void (*)(KelArc&, const Request&, Receipt, Listeners);

template <auto method>
Asked plain()
{
    return [](KelArc& kelarc, const Request&, Receipt receipt, Listeners) { (kelarc.*method)(receipt); };
}
template <auto method>
Asked withFlag()
{
    return [](KelArc& kelarc, const Request& r, Receipt receipt, Listeners) { (kelarc.*method)(r.flag, receipt); };
}
template <auto method, typename Value>
Asked withNumber()
{
    return [](KelArc& kelarc, const Request& r, Receipt receipt, Listeners) {
        (kelarc.*method)(static_cast<Value>(r.number), receipt);
    };
}
template <auto method>
Asked withText()
{
    return [](KelArc& kelarc, const Request& r, Receipt receipt, Listeners) { (kelarc.*method)(r.text, receipt); };
}

const std::vector<std::string> kKeys = {"Power/Cpu",          "Power/Psm",   "Nmea/Data/Format", "Nmea/Data/RawMask",
                                        "Nmea/FreqMs",        "Nmea/DRSync", "Nmea/Sbas",        "Engine/Qzss",
                                        "Sens/MinElevAngle",  "Raw/Version", "No/Such\nKey",     "",
                                        std::string(600, 'k')};
const std::vector<std::string> kValues = {"\"std\"", "\"max\"", "\"0\"",  "\"1\"", "\"on\"", "\"off\"",
                                          "\"500\"", "\"45\"",  "\"46\"", "7",     "",       "\"Raw\""};

const std::vector<std::string> kListeners = {kListener, kListener, kListener, kNoListener};

// clang-format off
const std::vector<Operation> kOperations = {
    {"open", {}, false, {}, {}, plain<&KelArc::open>(), opening},
    {"close", {}, false, {}, {}, plain<&KelArc::close>(), [](const Request&) { return queued("Close", "ARC_Close()", Ending::close); }},
    {"getArcVersion", {}, false, {}, {}, plain<&KelArc::getArcVersion>(), [](const Request&) { return queued("GetArcVersion", "ARC_GetArcVersion()", Ending::arcVersion); }},
    {"getRilVersion", {}, false, {}, {}, plain<&KelArc::getRilVersion>(), [](const Request&) { return queued("GetRilVersion", "ARC_GetRilVersion()", Ending::rilVersion); }},
    {"enableLogging", {0, 3, -1}, false, {"", "all", "a \"quoted\" text"}, {},
        [](KelArc& kelarc, const Request& r, Receipt receipt, Listeners) { kelarc.enableLogging(kelarc::LOGGING_ZONE{r.number}, r.text, receipt); },
        [](const Request& r) { return queued("EnableLogging", "ARC_EnableLogging(\"" + std::to_string(r.number) + "\", \"" + r.text + "\")", Ending::code); }},
    {"ATcmd", {}, false, {"AT", "at+csq", "AT+NONE", ""}, {}, withText<&KelArc::ATcmd>(),
        [](const Request& r) { return queued("AtcTunneling", "ARC_AtcTunneling(\"" + r.text + "\")", Ending::atCommand); }},
    {"getModuleSetting", {}, false, kKeys, {}, withText<&KelArc::getModuleSetting>(), [](const Request& r) { return reading(r.text, Ending::text); }},
    {"setModuleSetting", {}, false, kKeys, kValues,
        [](KelArc& kelarc, const Request& r, Receipt receipt, Listeners) { kelarc.setModuleSetting(r.text, r.value, receipt); },
        [](const Request& r) { return writing(r.text, r.value); }},
    {"getCpuPower", {}, false, {}, {}, plain<&KelArc::getCpuPower>(), [](const Request&) { return reading("Power/Cpu", Ending::typed); }},
    {"setCpuPower", {0, 1, 2, 3}, false, {}, {}, withNumber<&KelArc::setCpuPower, kelarc::CPU_POWER>(),
        [](const Request& r) { return writingTyped("Power/Cpu", r, "setCpuPower.484: Invalid CPU_POWER parameter '" + std::to_string(r.number) + "'"); }},
    {"getCpuPsm", {}, false, {}, {}, plain<&KelArc::getCpuPsm>(), [](const Request&) { return reading("Power/Psm", Ending::power); }},
    {"setCpuPsm", {}, true, {}, {}, withFlag<&KelArc::setCpuPsm>(), [](const Request& r) { return switching("Power/Psm", r); }},
    {"getGnssFormat", {}, false, {}, {}, plain<&KelArc::getGnssFormat>(), [](const Request&) { return reading("Nmea/Data/Format", Ending::typed); }},
    {"setGnssFormat", {0, 1, 2, 255}, false, {}, {}, withNumber<&KelArc::setGnssFormat, kelarc::gnss::FORMAT>(),
        [](const Request& r) { return writingTyped("Nmea/Data/Format", r, "setGnssFormat.703: Invalid FORMAT parameter: '" + std::to_string(r.number) + "'"); }},
    {"getDRSync", {}, false, {}, {}, plain<&KelArc::getDRSync>(), [](const Request&) { return reading("Nmea/DRSync", Ending::typed); }},
    {"setDRSync", {}, true, {}, {}, withFlag<&KelArc::setDRSync>(), [](const Request& r) { return switching("Nmea/DRSync", r); }},
    {"getGnssStatus", {0, 1, 2, 3, 4, 5}, false, {}, {}, withNumber<&KelArc::getGnssStatus, kelarc::gnss::SYSTEM>(), systemRead},
    {"setGnssStatus", {0, 1, 2, 3, 4, 5}, true, {}, {},
        [](KelArc& kelarc, const Request& r, Receipt receipt, Listeners) { kelarc.setGnssStatus(static_cast<kelarc::gnss::SYSTEM>(r.number), r.flag, receipt); }, systemSwitched},
    {"getSbasStatus", {}, false, {}, {}, plain<&KelArc::getSbasStatus>(), [](const Request&) { return reading("Nmea/Sbas", Ending::typed); }},
    {"setSbasStatus", {}, true, {}, {}, withFlag<&KelArc::setSbasStatus>(), [](const Request& r) { return switching("Nmea/Sbas", r); }},
    {"getGnssFrequency", {}, false, {}, {}, plain<&KelArc::getGnssFrequency>(), [](const Request&) { return reading("Nmea/FreqMs", Ending::typed); }},
    {"setGnssFrequency", {0, 1, 2, 3, 4, 5}, false, {}, {}, withNumber<&KelArc::setGnssFrequency, kelarc::gnss::FREQUENCY>(),
        [](const Request& r) { return writingTyped("Nmea/FreqMs", r, "setGnssFrequency.931: Invalid FREQUENCY parameter '" + std::to_string(r.number) + "'"); }},
    {"getMinElevation", {}, false, {}, {}, plain<&KelArc::getMinElevation>(), [](const Request&) { return reading("Sens/MinElevAngle", Ending::number); }},
    {"setMinElevation", {0, 4, 5, 30, 45, 46, 255}, false, {}, {}, withNumber<&KelArc::setMinElevation, unsigned char>(),
        [](const Request& r) { return r.number >= 5 && r.number <= 45 ? writing("Sens/MinElevAngle", quotedNumber(r.number)) : refused("setMinElevation.962: Invalid minimum elevation, out of bounds: " + std::to_string(r.number), "(14, false)"); }},
    {"getRawMask", {}, false, {}, {}, plain<&KelArc::getRawMask>(), [](const Request&) { return reading("Nmea/Data/RawMask", Ending::number); }},
    {"setRawMask", {0, 1, 128, 255}, false, {}, {}, withNumber<&KelArc::setRawMask, unsigned char>(), [](const Request& r) { return writing("Nmea/Data/RawMask", quotedNumber(r.number)); }},
    {"getGnssRawVersion", {}, false, {}, {}, plain<&KelArc::getGnssRawVersion>(), [](const Request&) { return reading("Raw/Version", Ending::text); }},
    {"startRawGNSS", {}, false, {}, {}, plain<&KelArc::startRawGNSS>(), [](const Request&) { return queued("StartGNSSraw", "ARC_StartGNSSraw()", Ending::rawStart); }},
    {"stopGNSS", {}, false, {}, {}, plain<&KelArc::stopGNSS>(), stopping},
    {"forceStopGNSS", {}, false, {}, {}, plain<&KelArc::forceStopGNSS>(), [](const Request&) { return queued("ForceStopGNSS", "ARC_ForceStopGNSS()", Ending::code); }},
    {"resetAGNSS", {}, false, {}, {}, plain<&KelArc::resetAGNSS>(), [](const Request&) { return queued("ResetAGNSS", "ARC_ResetAGNSS()", Ending::code); }},
    {"getLstaGnss", {0, 1, 2, 3, 4, 5}, false, {}, {}, withNumber<&KelArc::getLstaGnss, kelarc::lsta::TECH>(), lstaAsked},
    {"setLstaGnssStatus", {0, 1, 2, 3, 4, 5}, true, {"0", "1", "-7"}, kListeners,
        [](KelArc& kelarc, const Request& r, Receipt receipt, Listeners listeners) { kelarc.setLstaGnssStatus(static_cast<kelarc::lsta::TECH>(r.number), r.flag, std::stoi(r.text), std::move(listeners.lstaChanged), receipt); }, lstaSwitched},
    {"setNotificationCB", {}, false, {}, kListeners, [](KelArc& kelarc, const Request&, Receipt, Listeners listeners) { kelarc.setNotificationCB(std::move(listeners.notified)); },
        [](const Request&) { return queued("RegisterNotification", "ARC_RegisterNotification()", Ending::registration); }},
};
// clang-format on

}  // namespace

const std::vector<Operation>& operations()
{
    return kOperations;
}

std::size_t operationNamed(const std::string& name)
{
    for (std::size_t i = 0; i < kOperations.size(); ++i)
        if (kOperations[i].name == name)
            return i;
    throw std::logic_error(name + " is no operation");
}

Request drawRequest(Random& random, std::size_t operation)
{
    const Operation& row = kOperations[operation];
    Request request;
    request.operation = operation;
    if (!row.numbers.empty())
        request.number = random.oneOf(row.numbers);
    request.flag = random.happens(70);
    if (!row.texts.empty())
        request.text = random.oneOf(row.texts);
    if (!row.values.empty())
        request.value = random.oneOf(row.values);
    return request;
}

std::string wordsOf(const Request& request)
{
    const Operation& row = kOperations[request.operation];
    std::string arguments;
    const auto add = [&](bool isTaken, const std::string& text) {
        if (isTaken)
            arguments += (arguments.empty() ? "" : ", ") + text;
    };
    add(!row.numbers.empty(), std::to_string(request.number));
    add(row.takesFlag, support::describe(request.flag));
    const bool isLong = request.text.size() > 60;
    add(!row.texts.empty(), isLong ? std::to_string(request.text.size()) + " characters" : "'" + request.text + "'");
    add(!row.values.empty(), "'" + request.value + "'");
    return std::string(row.name) + "(" + arguments + ")";
}

const TypedSetting& typedSetting(const std::string& key)
{
    return *std::find_if(kTyped.begin(), kTyped.end(), [&](const TypedSetting& each) { return each.key == key; });
}

}  // namespace seeds
