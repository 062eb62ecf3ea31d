#include "kelarc/Call.h"
#include "kelarc/KelArc.h"
#include "kelarc/ModuleSetting.h"
#include "kelarc/SettingTable.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace kelarc {
namespace {

const Setting* engineSetting(gnss::SYSTEM system)
{
    switch (system) {
    case gnss::SYSTEM::GLONASS:
        return &kEngineGlonass;
    case gnss::SYSTEM::GALILEO:
        return &kEngineGalileo;
    case gnss::SYSTEM::BEIDOU:
        return &kEngineBeidou;
    case gnss::SYSTEM::QZSS:
        return &kEngineQzss;
    }
    return nullptr;
}

template <typename Value>
const char* textOf(const Setting& setting, Value value)
{
    return textFor(setting, static_cast<unsigned char>(value));
}

const char* textOf(const Setting& setting, bool on)
{
    return textFor(setting, on ? kOn : kOff);
}

std::string quoted(unsigned char number)
{
    return '"' + std::to_string(int{number}) + '"';
}

}  // namespace

/// The value of a reply. A reply that is not listed is logged and becomes 0, unknown.
unsigned char KelArc::knownValue(const Setting& setting, const char* reply)
{
    const unsigned char value = valueFor(setting, reply);
    if (value == 0)
        log(4, kSource, "operator()", setting.unknownReplyLine,
            "Unknown return value from ARC_CheckModuleSetting(%s) -> '%s'", setting.key, reply);
    return value;
}

template <typename Value>
void KelArc::getTypedSetting(const Setting& setting, const std::function<void(int, Value)>& callback)
{
    addRead(setting.key, [this, &setting, callback = callback](task::ExecutionReason) {
        const SettingReply reply = readSetting(setting.key);
        callback(reply.code, reply.code == kSuccess ? Value{knownValue(setting, reply.text)} : Value{});
    });
}

void KelArc::getNumber(const char* key, const std::function<void(int, unsigned char)>& callback)
{
    addRead(key, [this, key, callback = callback](task::ExecutionReason) {
        SettingReply reply = readSetting(key);
        long number = 0;
        if (reply.code == kSuccess) {
            std::replace(reply.text, reply.text + std::strlen(reply.text), '"', ' ');
            number = std::strtol(reply.text, nullptr, 10);
        }
        callback(reply.code, static_cast<unsigned char>(number));  // the low 8 bits, whatever the number
    });
}

void KelArc::setTypedSetting(const char* key, const std::string& value, const std::function<void(int, bool)>& callback)
{
    addWrite(key, value, [this, key, value = value, callback = callback](task::ExecutionReason) {
        const SettingWritten written = writeSetting(key, value.c_str());
        callback(written.code, written.changed);
    });
}

void KelArc::getCpuPower(std::function<void(int, CPU_POWER)>&& callback)
{
    getTypedSetting(kCpuPower, callback);
}

void KelArc::setCpuPower(CPU_POWER power, std::function<void(int, bool)>&& callback)
{
    const char* const text = textOf(kCpuPower, power);
    if (text == nullptr) {
        log(4, kSource, "setCpuPower", 484, "Invalid CPU_POWER parameter '%u'", static_cast<unsigned>(power));
        callback(kRefusedArgument, false);
        return;
    }
    setTypedSetting(kCpuPower.key, text, callback);
}

void KelArc::getCpuPsm(std::function<void(int, RESULT)>&& callback)
{
    // Unlike the other getters it checks the reply whatever the code, so a failed read is logged as unknown: published.
    addRead(kCpuPsm.key, [this, callback](task::ExecutionReason) {
        const SettingReply reply = readSetting(kCpuPsm.key);
        const RESULT value{knownValue(kCpuPsm, reply.text)};
        callback(reply.code, value);
    });
}

void KelArc::setCpuPsm(bool on, std::function<void(int, bool)>&& callback)
{
    setTypedSetting(kCpuPsm.key, textOf(kCpuPsm, on), callback);
}

void KelArc::getGnssFormat(std::function<void(int, gnss::FORMAT)>&& callback)
{
    getTypedSetting(kGnssFormat, callback);
}

void KelArc::setGnssFormat(gnss::FORMAT format, std::function<void(int, bool)>&& callback)
{
    const char* const text = textOf(kGnssFormat, format);
    if (text == nullptr) {
        log(4, kSource, "setGnssFormat", 703, "Invalid FORMAT parameter: '%u'", static_cast<unsigned>(format));
        callback(kRefusedArgument, false);
        return;
    }
    setTypedSetting(kGnssFormat.key, text, callback);
}

void KelArc::getDRSync(std::function<void(int, RESULT)>&& callback)
{
    getTypedSetting(kDrSync, callback);
}

void KelArc::setDRSync(bool on, std::function<void(int, bool)>&& callback)
{
    setTypedSetting(kDrSync.key, textOf(kDrSync, on), callback);
}

void KelArc::getGnssStatus(gnss::SYSTEM system, std::function<void(int, gnss::SYSTEM, RESULT)>&& callback)
{
    const Setting* const setting = engineSetting(system);
    if (setting == nullptr) {
        log(4, kSource, "getGnssStatus", 775, "Invalid SYSTEM parameter: '%u'", static_cast<unsigned>(system));
        return;
    }
    getTypedSetting<RESULT>(*setting, [system, callback](int code, RESULT value) { callback(code, system, value); });
}

void KelArc::setGnssStatus(gnss::SYSTEM system, bool on, std::function<void(int, gnss::SYSTEM, bool)>&& callback)
{
    const Setting* const setting = engineSetting(system);
    if (setting == nullptr)
        return;  // silently, unlike getGnssStatus: published
    const char* const value = textOf(*setting, on);
    addWrite(setting->key, value, [this, setting, value, system, callback](task::ExecutionReason) {
        const SettingWritten written = writeSetting(setting->key, value);
        callback(written.code, system, written.changed);
    });
}

void KelArc::getSbasStatus(std::function<void(int, RESULT)>&& callback)
{
    getTypedSetting(kSbas, callback);
}

void KelArc::setSbasStatus(bool on, std::function<void(int, bool)>&& callback)
{
    setTypedSetting(kSbas.key, textOf(kSbas, on), callback);
}

void KelArc::getGnssFrequency(std::function<void(int, gnss::FREQUENCY)>&& callback)
{
    getTypedSetting(kFrequency, callback);
}

void KelArc::setGnssFrequency(gnss::FREQUENCY frequency, std::function<void(int, bool)>&& callback)
{
    const char* const text = textOf(kFrequency, frequency);
    if (text == nullptr) {
        log(4, kSource, "setGnssFrequency", 931, "Invalid FREQUENCY parameter '%u'", static_cast<unsigned>(frequency));
        callback(kRefusedArgument, false);
        return;
    }
    setTypedSetting(kFrequency.key, text, callback);
}

void KelArc::getMinElevation(std::function<void(int, unsigned char)>&& callback)
{
    getNumber(kMinElevationKey, callback);
}

void KelArc::setMinElevation(unsigned char elevation, std::function<void(int, bool)>&& callback)
{
    if (elevation < 5 || elevation > 45) {
        log(4, kSource, "setMinElevation", 962, "Invalid minimum elevation, out of bounds: %u", unsigned{elevation});
        callback(kRefusedArgument, false);
        return;
    }
    setTypedSetting(kMinElevationKey, quoted(elevation), callback);
}

void KelArc::getRawMask(std::function<void(int, unsigned char)>&& callback)
{
    getNumber(kRawMaskKey, callback);
}

void KelArc::setRawMask(unsigned char mask, std::function<void(int, bool)>&& callback)
{
    setTypedSetting(kRawMaskKey, quoted(mask), callback);
}

void KelArc::getGnssRawVersion(std::function<void(int, std::string&&)>&& callback)
{
    getModuleSetting(kRawVersionKey, std::move(callback));
}

}  // namespace kelarc
