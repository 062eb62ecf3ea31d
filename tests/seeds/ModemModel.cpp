#include "seeds/ModemModel.h"

#include <algorithm>
#include <set>

namespace seeds {
namespace {

using Kind = Step::Kind;

const std::map<std::string, std::string> kFactory = {{"Power/Cpu", "\"std\""},
                                                     {"Power/Psm", "\"0\""},
                                                     {"Nmea/Data/Format", "\"Nmea\""},
                                                     {"Nmea/Data/RawMask", "\"0\""},
                                                     {"Nmea/DRSync", "\"off\""},
                                                     {"Nmea/Sbas", "\"on\""},
                                                     {"Nmea/FreqMs", "\"1000\""},
                                                     {"Engine/Glonass", "\"1\""},
                                                     {"Engine/Galileo", "\"1\""},
                                                     {"Engine/Beidou", "\"1\""},
                                                     {"Engine/Qzss", "\"0\""},
                                                     {"Sens/MinElevAngle", "\"5\""},
                                                     {"Raw/Version", "\"1.0 (simulated)\""}};

/// Of the values that the requests of this test write; numbers apart.
const std::map<std::string, std::set<std::string>> kAccepted = {
    {"Power/Cpu", {"\"std\"", "\"max\""}},         {"Power/Psm", {"\"0\"", "\"1\""}},
    {"Nmea/Data/Format", {"\"Nmea\"", "\"Raw\""}}, {"Nmea/DRSync", {"\"off\"", "\"on\""}},
    {"Nmea/Sbas", {"\"off\"", "\"on\""}},          {"Nmea/FreqMs", {"\"1000\"", "\"500\"", "\"200\"", "\"100\""}},
    {"Engine/Glonass", {"\"0\"", "\"1\""}},        {"Engine/Galileo", {"\"0\"", "\"1\""}},
    {"Engine/Beidou", {"\"0\"", "\"1\""}},         {"Engine/Qzss", {"\"0\"", "\"1\""}}};

bool isAccepted(const std::string& key, const std::string& value)
{
    const bool isMask = key == "Nmea/Data/RawMask";
    if (!isMask && key != "Sens/MinElevAngle")
        return kAccepted.at(key).count(value) != 0;
    if (value.size() < 3 || value.find_first_not_of("0123456789", 1) != value.size() - 1)
        return false;
    const int number = std::stoi(value.substr(1));
    return isMask ? number >= 0 && number <= 255 : number >= 5 && number <= 45;
}

std::string functionOf(const Task& task)
{
    return "ARC_" + std::string(task.ending == Ending::written || task.ending == Ending::systemWritten ||
                                        !task.key.empty() || task.ending == Ending::text
                                    ? "CheckModuleSetting"
                                    : task.kind->name);
}

int technologyOf(const std::string& system)
{
    return system == "gps" ? 10 : system == "glonass" ? 11 : system == "beidou" ? 12 : 13;
}

}  // namespace

void ModemModel::startAnew()
{
    m_settings = kFactory;
    m_faults.clear();
    m_outageMs = 0;
    m_lsta.clear();
}

void ModemModel::apply(const Step& step)
{
    switch (step.kind) {
    case Kind::kill:  // what outlives it are the settings
        m_isServing = false;
        m_faults.clear();
        m_outageMs = 0;
        m_lsta.clear();
        m_codeOfHang = 31;
        break;
    case Kind::fault:
        m_faults.push_front({&step, step.count});
        break;
    case Kind::hang:
        m_faults.push_front({&step, 1});
        break;
    case Kind::clear:
        m_faults.clear();
        m_codeOfHang = 32;
        break;
    case Kind::rescue:
        m_faults.clear();
        m_isOpen = true;
        break;
    case Kind::outage:
        m_outageMs = step.number;
        m_codeOfHang = 31;
        break;
    case Kind::reset:
        startAnew();
        m_codeOfHang = 32;
        break;
    case Kind::set:
        m_settings[step.text] = '"' + step.value + '"';
        break;
    case Kind::lsta:
        m_lsta[technologyOf(step.text)] = {step.number, step.count};
        break;
    case Kind::otherClient:
        if (step.number == 2 && m_outageMs <= 0)
            takeFaults("ARC_StartGNSSraw");
        break;
    default:
        break;
    }
}

ModemModel::Effect ModemModel::takeFaults(const std::string& function)
{
    Effect effect;
    for (Fault& fault : m_faults) {
        const Step& step = *fault.step;
        if (step.function != function || fault.left == 0)
            continue;
        --fault.left;
        effect.hangs = effect.hangs || step.kind == Kind::hang;
        effect.isUnquoted = effect.isUnquoted || step.fault.find("quotes") != std::string::npos;
        effect.isPadded = effect.isPadded || step.fault.find("replyLength") != std::string::npos;
        effect.isOtherSystem = effect.isOtherSystem || step.fault.find("indicator") != std::string::npos;
        if (step.kind == Kind::fault && step.fault.empty() && !effect.code)
            effect.code = step.number;
    }
    return effect;
}

ModemReply ModemModel::call(const Task& task)
{
    ModemReply reply;
    const bool isOwn = task.ending == Ending::arcVersion;  // the client library's own, whatever the modem does
    if (!isReachable() && !isOwn) {
        reply.code = 31;
        return reply;
    }
    const Effect effect = takeFaults(functionOf(task));
    reply.hangs = effect.hangs;
    if (effect.code) {
        reply.code = *effect.code;
        return reply;
    }
    const bool hangs = effect.hangs;
    reply = usual(task);
    reply.hangs = hangs;
    if (effect.isUnquoted)
        reply.text.erase(std::remove(reply.text.begin(), reply.text.end(), '"'), reply.text.end());
    if (effect.isPadded && !reply.text.empty() && reply.text.size() < 40)
        reply.text.insert(reply.text.size() - (reply.text.back() == '"' ? 1 : 0), 40 - reply.text.size(), 'x');
    if (effect.isOtherSystem)
        reply.indicator = 1003;
    return reply;
}

ModemReply ModemModel::usual(const Task& task) const
{
    ModemReply reply;
    switch (task.ending) {
    case Ending::method:
    case Ending::open:
    case Ending::registration:
    case Ending::arcVersion:
        return reply;
    default:
        break;
    }
    if (!m_isOpen) {
        reply.code = 1;
        return reply;
    }
    const std::string function = functionOf(task);
    reply.mayBeBusy = m_hasLatencies && (function == "ARC_StartGNSSraw" || function == "ARC_ResetAGNSS");
    if (task.ending == Ending::atCommand)
        reply.code = task.call == "ARC_AtcTunneling(\"AT\")" || task.call == "ARC_AtcTunneling(\"at+csq\")" ? 0 : 24;
    if (task.ending == Ending::lstaQuery) {
        reply.indicator = 990 + task.number;
        if (const auto known = m_lsta.find(task.number); known != m_lsta.end())
            reply.lsta = known->second;
    }
    if (function == "ARC_CheckModuleSetting")
        return task.kind->taskLine == 367 ? read(task) : write(task);
    return reply;
}

ModemReply ModemModel::read(const Task& task) const
{
    ModemReply reply;
    const auto found = m_settings.find(task.key);
    if (found == m_settings.end())
        reply.code = 16;
    else
        reply.text = found->second;
    return reply;
}

ModemReply ModemModel::write(const Task& task) const
{
    ModemReply reply;
    reply.mayBeBusy = m_hasLatencies;
    const auto found = m_settings.find(task.key);
    if (found == m_settings.end())
        reply.code = 16;
    else if (task.key == "Raw/Version")
        reply.code = 38;
    else if (!isAccepted(task.key, task.value))
        reply.code = 13;
    else
        reply.isChanged = found->second != task.value;
    return reply;
}

void ModemModel::called(const Task& task, const ModemReply&, int code)
{
    if (code != 0)
        return;
    if (task.ending == Ending::open)
        m_isOpen = true;
    else if (task.ending == Ending::close)
        m_isOpen = false;
    else if (task.ending == Ending::registration)
        m_hasHandler = true;
    else if (task.ending == Ending::written || task.ending == Ending::systemWritten)
        m_settings[task.key] = task.value;
}

}  // namespace seeds
