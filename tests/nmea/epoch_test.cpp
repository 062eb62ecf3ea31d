#include "nmea/Epoch.h"

#include <gtest/gtest.h>

namespace nmea {
namespace {

TEST(Epoch, ReadsNumbers)
{
    EXPECT_EQ(numberOf("12.5"), 12.5);
    EXPECT_EQ(numberOf("-0.5"), -0.5);
    for (const char* wrong : {"", "nan", "inf", "1e3", "1e300", "9999999999", "1 ", " 1", "0x1", "+1"})
        EXPECT_FALSE(numberOf(wrong)) << wrong;
}

TEST(Epoch, ReadsTimes)
{
    EXPECT_EQ(timeOf("000000"), 0);
    EXPECT_EQ(timeOf("235959.90"), 86'399'900);
    EXPECT_EQ(timeOf("235960.00"), 86'400'000) << "a leap second";
    EXPECT_EQ(timeOf("235959.9996"), 86'399'999) << "not yet the next second";
    for (const char* wrong :
         {"", "12", "240000", "126000", "120061", "-10000", "12:00:00", "120000x", "1e0000", "+120000"})
        EXPECT_FALSE(timeOf(wrong)) << wrong;
}

TEST(Epoch, ReadsDates)
{
    const auto date = dateOf("290224");
    ASSERT_TRUE(date);
    EXPECT_EQ(date->year, 2024);
    EXPECT_EQ(date->month, 2);
    EXPECT_EQ(date->day, 29);
    EXPECT_EQ(dateOf("060180")->year, 1980);
    for (const char* wrong : {"", "2902", "000124", "320124", "010024", "011324", "-10124", "29022024"})
        EXPECT_FALSE(dateOf(wrong)) << wrong;
}

TEST(Epoch, ReadsDatesInThreeFields)
{
    const auto date = dateOf("29", "02", "2024");
    ASSERT_TRUE(date);
    EXPECT_EQ(date->year, 2024);
    EXPECT_EQ(date->month, 2);
    EXPECT_EQ(date->day, 29);
    EXPECT_FALSE(dateOf("", "", ""));
    EXPECT_FALSE(dateOf("29", "02", "24"));
    EXPECT_FALSE(dateOf("32", "02", "2024"));
    EXPECT_FALSE(dateOf("29", "13", "2024"));
    EXPECT_FALSE(dateOf("29", "02", "0000"));
}

TEST(Epoch, ReadsAngles)
{
    EXPECT_DOUBLE_EQ(*angleOf("4807.5", "N"), 48.125);
    EXPECT_DOUBLE_EQ(*angleOf("4807.5", "S"), -48.125);
    EXPECT_DOUBLE_EQ(*angleOf("01131.0", "E"), 11 + 31.0 / 60);
    EXPECT_DOUBLE_EQ(*angleOf("18000.0", "W"), -180);
    EXPECT_FALSE(angleOf("", ""));
    EXPECT_FALSE(angleOf("4807.5", ""));
    EXPECT_FALSE(angleOf("4807.5", "X"));
    EXPECT_FALSE(angleOf("4860.0", "N")) << "minutes end at 59";
    EXPECT_FALSE(angleOf("9000.1", "N"));
    EXPECT_FALSE(angleOf("18000.1", "E"));
    EXPECT_FALSE(angleOf("-4807.5", "N"));
}

TEST(Epoch, KnowsTheSystemOfASatellite)
{
    struct Row
    {
        const char* talker;
        const char* systemId;
        int number;
        std::optional<System> system;
    };
    const Row rows[] = {
        {"GP", "", 1, System::gps},       {"GP", "", 32, System::gps},     {"GP", "", 33, System::sbas},
        {"GP", "", 120, System::sbas},    {"GP", "", 193, System::qzss},   {"GN", "1", 12, System::gps},
        {"GN", "1", 40, System::sbas},    {"GL", "", 65, System::glonass}, {"GN", "2", 70, System::glonass},
        {"GL", "", 5, System::glonass},   {"GA", "", 3, System::galileo},  {"GN", "3", 3, System::galileo},
        {"GB", "", 9, System::beidou},    {"BD", "", 9, System::beidou},   {"GN", "4", 9, System::beidou},
        {"GQ", "", 2, System::qzss},      {"GN", "5", 2, System::qzss},    {"GN", "", 7, System::gps},
        {"GN", "", 40, System::sbas},     {"GN", "", 70, System::glonass}, {"GN", "", 195, System::qzss},
        {"GN", "", 305, System::galileo}, {"GN", "", 405, System::beidou}, {"GN", "", 999, std::nullopt},
        {"GI", "", 3, std::nullopt},
    };
    for (const Row& row : rows)
        EXPECT_EQ(systemOf(row.talker, row.systemId, row.number), row.system)
            << row.talker << ' ' << row.systemId << ' ' << row.number;
}

TEST(Epoch, WritesTimeAndDate)
{
    Epoch epoch;
    EXPECT_EQ(timeText(epoch), "--:--:--");
    EXPECT_EQ(dateText(epoch), "");
    epoch.utcMs = 3'723'900;
    epoch.date = Date{2024, 2, 9};
    EXPECT_EQ(timeText(epoch), "01:02:03");
    Epoch leap;
    leap.utcMs = 86'400'500;
    EXPECT_EQ(timeText(leap), "23:59:60");
    EXPECT_EQ(dateText(epoch), "2024-02-09");
}

}  // namespace
}  // namespace nmea
