#pragma once

// What the public enumerations are called, for people, and which LSTA numbers belong together. Header only: what is
// here is compiled into the application.

#include "Types.h"

#include <optional>

namespace kelarc {

// The texts are of static duration. A value without a name of its own is "unknown", like the enumerators UNKNOWN.

constexpr const char* to_string(CPU_POWER power)
{
    return power == CPU_POWER::STANDARD ? "standard" : power == CPU_POWER::MAXIMUM ? "maximum" : "unknown";
}

constexpr const char* to_string(RESULT result)
{
    return result == RESULT::OFF ? "off" : result == RESULT::ON ? "on" : "unknown";
}

/// Of events by the modem's own number: "event 73", whatever the value of the enumerator.
constexpr const char* to_string(NOTIFY_ID id)
{
    switch (id) {
    case NOTIFY_ID::EVENT_22:
        return "event 22";
    case NOTIFY_ID::EVENT_72:
        return "event 72";
    case NOTIFY_ID::EVENT_73:
        return "event 73";
    case NOTIFY_ID::EVENT_74:
        return "event 74";
    case NOTIFY_ID::EVENT_75:
        return "event 75";
    case NOTIFY_ID::RAW_GNSS_START_ENDED:
        return "raw GNSS start ended";
    }
    return "unknown";
}

namespace gnss {

constexpr const char* to_string(SYSTEM system)
{
    switch (system) {
    case SYSTEM::GLONASS:
        return "GLONASS";
    case SYSTEM::GALILEO:
        return "Galileo";
    case SYSTEM::BEIDOU:
        return "BeiDou";
    case SYSTEM::QZSS:
        return "QZSS";
    }
    return "unknown";
}

constexpr const char* to_string(FORMAT format)
{
    return format == FORMAT::NMEA ? "NMEA" : format == FORMAT::RAW ? "raw" : "unknown";
}

constexpr const char* to_string(FREQUENCY frequency)
{
    switch (frequency) {
    case FREQUENCY::EVERY_1000_MS:
        return "1000 ms";
    case FREQUENCY::EVERY_500_MS:
        return "500 ms";
    case FREQUENCY::EVERY_200_MS:
        return "200 ms";
    case FREQUENCY::EVERY_100_MS:
        return "100 ms";
    case FREQUENCY::UNKNOWN:
        break;
    }
    return "unknown";
}

}  // namespace gnss

namespace lsta {

/// One satellite system: what requests call it, what notifications call it, and what people do.
struct System
{
    TECH tech;
    TYPE type;
    const char* name;
};

inline constexpr System kSystems[] = {
    {TECH::GPS, TYPE::GPS, "GPS"},
    {TECH::GLONASS, TYPE::GLONASS, "GLONASS"},
    {TECH::BEIDOU, TYPE::BEIDOU, "BeiDou"},
    {TECH::GALILEO, TYPE::GALILEO, "Galileo"},
};

/// Which TYPE the notifications of a system carry; empty for a value that is no system.
constexpr std::optional<TYPE> typeOf(TECH tech)
{
    for (const System& system : kSystems)
        if (system.tech == tech)
            return system.type;
    return std::nullopt;
}

/// Which TECH to ask for the system of a notification; empty for a value that is no system.
constexpr std::optional<TECH> techOf(TYPE type)
{
    for (const System& system : kSystems)
        if (system.type == type)
            return system.tech;
    return std::nullopt;
}

constexpr const char* to_string(TECH tech)
{
    for (const System& system : kSystems)
        if (system.tech == tech)
            return system.name;
    return "unknown";
}

constexpr const char* to_string(TYPE type)
{
    for (const System& system : kSystems)
        if (system.type == type)
            return system.name;
    return "unknown";
}

}  // namespace lsta
}  // namespace kelarc
