#pragma once

#include <cstddef>
#include <cstring>

namespace kelarc {

/// One value of a typed setting and the modem's text for it, quote marks included. A null text ends a list.
struct SettingText
{
    unsigned char value;
    const char* text;
};

/// A setting with known texts of the modem.
struct Setting
{
    const char* key;
    std::size_t unknownReplyLine;  ///< published line of the log message for a reply that is not listed
    SettingText texts[5];
};

// Values of RESULT.
constexpr unsigned char kOff = 1;
constexpr unsigned char kOn = 2;

// clang-format off
constexpr Setting kCpuPower      {"Power/Cpu",        461, {{1, "\"std\""},  {2, "\"max\""}}};
constexpr Setting kCpuPsm        {"Power/Psm",        511, {{kOn, "\"1\""},  {kOff, "\"0\""}}};
constexpr Setting kGnssFormat    {"Nmea/Data/Format", 680, {{1, "\"Nmea\""}, {2, "\"Raw\""}}};
constexpr Setting kDrSync        {"Nmea/DRSync",      732, {{kOff, "\"off\""}, {kOn, "\"on\""}}};
constexpr Setting kEngineGlonass {"Engine/Glonass",   797, {{kOff, "\"0\""}, {kOn, "\"1\""}}};
constexpr Setting kEngineGalileo {"Engine/Galileo",   797, {{kOff, "\"0\""}, {kOn, "\"1\""}}};
constexpr Setting kEngineBeidou  {"Engine/Beidou",    797, {{kOff, "\"0\""}, {kOn, "\"1\""}}};
constexpr Setting kEngineQzss    {"Engine/Qzss",      797, {{kOff, "\"0\""}, {kOn, "\"1\""}}};
constexpr Setting kSbas          {"Nmea/Sbas",        858, {{kOff, "\"off\""}, {kOn, "\"on\""}}};
constexpr Setting kFrequency     {"Nmea/FreqMs",      900, {{1, "\"1000\""}, {2, "\"500\""}, {3, "\"200\""}, {4, "\"100\""}}};
// clang-format on

constexpr const char* kMinElevationKey = "Sens/MinElevAngle";
constexpr const char* kRawMaskKey = "Nmea/Data/RawMask";
constexpr const char* kRawVersionKey = "Raw/Version";

/// The text for a value; null when the setting has none for it.
inline const char* textFor(const Setting& setting, unsigned char value)
{
    const SettingText* entry = setting.texts;
    while (entry->text != nullptr && entry->value != value)
        ++entry;
    return entry->text;
}

/// The value for a reply, compared whole; 0 when it is not listed.
inline unsigned char valueFor(const Setting& setting, const char* reply)
{
    const SettingText* entry = setting.texts;
    while (entry->text != nullptr && std::strcmp(reply, entry->text) != 0)
        ++entry;
    return entry->value;
}

}  // namespace kelarc
