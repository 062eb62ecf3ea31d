#include "modem/Settings.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using arcsim::modem::Settings;
using Write = arcsim::modem::Settings::Write;

struct FactoryValue
{
    const char* key;
    const char* quoted;
};

TEST(Settings, ComeOutOfTheFactoryWithTheseQuotedValues)
{
    const FactoryValue expected[] = {
        {"Power/Cpu", R"("std")"},
        {"Power/Psm", R"("0")"},
        {"Nmea/Data/Format", R"("Nmea")"},
        {"Nmea/Data/RawMask", R"("0")"},
        {"Nmea/DRSync", R"("off")"},
        {"Nmea/Sbas", R"("on")"},
        {"Nmea/FreqMs", R"("1000")"},
        {"Engine/Glonass", R"("1")"},
        {"Engine/Galileo", R"("1")"},
        {"Engine/Beidou", R"("1")"},
        {"Engine/Qzss", R"("0")"},
        {"Sens/MinElevAngle", R"("5")"},
        {"Raw/Version", "\"1.0 (simulated)\""},
    };
    const Settings settings;
    for (const FactoryValue& each : expected)
        EXPECT_EQ(settings.read(each.key), each.quoted) << each.key;
    EXPECT_EQ(Settings::keys().size(), std::size(expected));
}

TEST(Settings, AnUnknownKeyHasNoValue)
{
    EXPECT_EQ(Settings().read("Power/cpu"), std::nullopt);
    EXPECT_EQ(Settings().read(""), std::nullopt);
}

struct Written
{
    const char* key;
    const char* quoted;
    Write outcome;
};

const Written kWrites[] = {
    {"Power/Cpu", R"("max")", Write::changed},
    {"Power/Cpu", R"("std")", Write::same},
    {"Power/Cpu", R"("MAX")", Write::wrongValue},
    {"Power/Cpu", R"(max)", Write::wrongValue},
    {"Power/Cpu", R"("max)", Write::wrongValue},
    {"Power/Cpu", R"(")", Write::wrongValue},
    {"Power/Cpu", "", Write::wrongValue},
    {"Power/Cpu", R"("")", Write::wrongValue},
    {"Power/Psm", R"("1")", Write::changed},
    {"Power/Psm", R"("on")", Write::wrongValue},
    {"Nmea/Data/Format", R"("Raw")", Write::changed},
    {"Nmea/Data/Format", R"("nmea")", Write::wrongValue},
    {"Nmea/DRSync", R"("on")", Write::changed},
    {"Nmea/DRSync", R"("1")", Write::wrongValue},
    {"Nmea/Sbas", R"("off")", Write::changed},
    {"Nmea/FreqMs", R"("500")", Write::changed},
    {"Nmea/FreqMs", R"("200")", Write::changed},
    {"Nmea/FreqMs", R"("100")", Write::changed},
    {"Nmea/FreqMs", R"("1000")", Write::same},
    {"Nmea/FreqMs", R"("250")", Write::wrongValue},
    {"Engine/Glonass", R"("0")", Write::changed},
    {"Engine/Galileo", R"("0")", Write::changed},
    {"Engine/Beidou", R"("0")", Write::changed},
    {"Engine/Qzss", R"("1")", Write::changed},
    {"Engine/Qzss", R"("2")", Write::wrongValue},
    {"Engine/Gps", R"("1")", Write::unknownKey},
    {"Sens/MinElevAngle", R"("6")", Write::changed},
    {"Sens/MinElevAngle", R"("45")", Write::changed},
    {"Sens/MinElevAngle", R"("5")", Write::same},
    {"Sens/MinElevAngle", R"("4")", Write::wrongValue},
    {"Sens/MinElevAngle", R"("46")", Write::wrongValue},
    {"Sens/MinElevAngle", R"("05")", Write::wrongValue},
    {"Sens/MinElevAngle", R"("+9")", Write::wrongValue},
    {"Sens/MinElevAngle", R"("ten")", Write::wrongValue},
    {"Nmea/Data/RawMask", R"("255")", Write::changed},
    {"Nmea/Data/RawMask", R"("0")", Write::same},
    {"Nmea/Data/RawMask", R"("256")", Write::wrongValue},
    {"Nmea/Data/RawMask", R"("-1")", Write::wrongValue},
    {"Nmea/Data/RawMask", R"("99999999999999999999")", Write::wrongValue},
    {"Raw/Version", R"("2")", Write::readOnly},
    {"", R"("1")", Write::unknownKey},
};

TEST(Settings, TakeAWriteLikeThisAndStoreOnlyWhatChanged)
{
    for (const auto& [key, quoted, outcome] : kWrites) {
        Settings settings;
        const auto before = settings.read(key);
        EXPECT_EQ(settings.write(key, quoted), outcome) << key << " = " << quoted;
        EXPECT_EQ(settings.read(key), outcome == Write::changed ? quoted : before) << key << " = " << quoted;
    }
}

TEST(Settings, ForcingStoresAnyTextUnderAnyKey)
{
    Settings settings;
    settings.force("Power/Cpu", "nonsense");
    settings.force("New/Key", R"("7")");
    EXPECT_EQ(settings.read("Power/Cpu"), "nonsense");
    EXPECT_EQ(settings.read("New/Key"), R"("7")");
}

TEST(Settings, CountOnlyTheValuesThatWereStored)
{
    Settings settings;
    EXPECT_EQ(settings.changes(), 0U);
    settings.write("Power/Cpu", R"("std")");
    settings.write("Power/Cpu", R"("wrong")");
    EXPECT_EQ(settings.changes(), 0U);
    settings.write("Power/Cpu", R"("max")");
    settings.force("Power/Cpu", R"("std")");
    EXPECT_EQ(settings.changes(), 2U);
}

TEST(Settings, TellPeopleWhatTheyAccept)
{
    EXPECT_EQ(Settings::accepted("Power/Cpu"), "std or max");
    EXPECT_EQ(Settings::accepted("Nmea/FreqMs"), "1000, 500, 200 or 100");
    EXPECT_EQ(Settings::accepted("Sens/MinElevAngle"), "5 to 45");
    EXPECT_EQ(Settings::accepted("Raw/Version"), "nothing (read only)");
    EXPECT_EQ(Settings::accepted("No/Key"), "");
}

}  // namespace
