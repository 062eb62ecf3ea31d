#include "kelarc/names.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace kelarc;

// At compile time as well.
static_assert(lsta::typeOf(lsta::TECH::BEIDOU) == lsta::TYPE::BEIDOU);
static_assert(lsta::techOf(lsta::TYPE::GALILEO) == lsta::TECH::GALILEO);
static_assert(to_string(RESULT::ON)[0] == 'o');

TEST(Names, OfEveryEnumeratorAreForPeople)
{
    const std::pair<std::string, const char*> names[] = {
        {to_string(CPU_POWER::UNKNOWN), "unknown"},
        {to_string(CPU_POWER::STANDARD), "standard"},
        {to_string(CPU_POWER::MAXIMUM), "maximum"},
        {to_string(RESULT::UNKNOWN), "unknown"},
        {to_string(RESULT::OFF), "off"},
        {to_string(RESULT::ON), "on"},
        {to_string(NOTIFY_ID::EVENT_22), "event 22"},
        {to_string(NOTIFY_ID::EVENT_72), "event 72"},
        {to_string(NOTIFY_ID::EVENT_73), "event 73"},
        {to_string(NOTIFY_ID::EVENT_74), "event 74"},
        {to_string(NOTIFY_ID::EVENT_75), "event 75"},
        {to_string(NOTIFY_ID::RAW_GNSS_START_ENDED), "raw GNSS start ended"},
        {to_string(gnss::SYSTEM::GLONASS), "GLONASS"},
        {to_string(gnss::SYSTEM::GALILEO), "Galileo"},
        {to_string(gnss::SYSTEM::BEIDOU), "BeiDou"},
        {to_string(gnss::SYSTEM::QZSS), "QZSS"},
        {to_string(gnss::FORMAT::UNKNOWN), "unknown"},
        {to_string(gnss::FORMAT::NMEA), "NMEA"},
        {to_string(gnss::FORMAT::RAW), "raw"},
        {to_string(gnss::FREQUENCY::UNKNOWN), "unknown"},
        {to_string(gnss::FREQUENCY::EVERY_1000_MS), "1000 ms"},
        {to_string(gnss::FREQUENCY::EVERY_500_MS), "500 ms"},
        {to_string(gnss::FREQUENCY::EVERY_200_MS), "200 ms"},
        {to_string(gnss::FREQUENCY::EVERY_100_MS), "100 ms"},
        {to_string(lsta::TECH::GPS), "GPS"},
        {to_string(lsta::TECH::GLONASS), "GLONASS"},
        {to_string(lsta::TECH::BEIDOU), "BeiDou"},
        {to_string(lsta::TECH::GALILEO), "Galileo"},
        {to_string(lsta::TYPE::GPS), "GPS"},
        {to_string(lsta::TYPE::GLONASS), "GLONASS"},
        {to_string(lsta::TYPE::BEIDOU), "BeiDou"},
        {to_string(lsta::TYPE::GALILEO), "Galileo"},
    };
    for (const auto& [name, expected] : names)
        EXPECT_EQ(name, expected);
}

TEST(Names, OfValuesThatAreNoEnumeratorAreUnknown)
{
    for (const char* name : {to_string(CPU_POWER{9}), to_string(RESULT{9}), to_string(NOTIFY_ID{2}),
                             to_string(gnss::SYSTEM{0}), to_string(gnss::FORMAT{9}), to_string(gnss::FREQUENCY{9}),
                             to_string(lsta::TECH{0}), to_string(lsta::TYPE{1})})
        EXPECT_STREQ(name, "unknown");
}

TEST(Names, TechAndTypeAreConvertedByTheirPublishedNumbers)
{
    const std::pair<int, int> pairs[] = {{1, 7}, {2, 8}, {3, 9}, {4, 10}};
    for (const auto& [tech, type] : pairs) {
        EXPECT_EQ(lsta::typeOf(lsta::TECH{tech}), lsta::TYPE{type});
        EXPECT_EQ(lsta::techOf(lsta::TYPE{type}), lsta::TECH{tech});
    }
    EXPECT_FALSE(lsta::typeOf(lsta::TECH{0}) || lsta::typeOf(lsta::TECH{5}) || lsta::typeOf(lsta::TECH{7}));
    EXPECT_FALSE(lsta::techOf(lsta::TYPE{1}) || lsta::techOf(lsta::TYPE{6}) || lsta::techOf(lsta::TYPE{11}));
}

}  // namespace
