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

/// At run time, which the compiler cannot do beforehand.
template <typename Value>
std::string nameOf(Value value)
{
    return to_string(value);
}

TEST(Names, OfValuesThatAreNoEnumeratorAreUnknown)
{
    EXPECT_EQ(nameOf(CPU_POWER{9}), "unknown");
    EXPECT_EQ(nameOf(RESULT{9}), "unknown");
    EXPECT_EQ(nameOf(NOTIFY_ID{2}), "unknown");
    EXPECT_EQ(nameOf(gnss::SYSTEM{0}), "unknown");
    EXPECT_EQ(nameOf(gnss::FORMAT{9}), "unknown");
    EXPECT_EQ(nameOf(gnss::FREQUENCY{9}), "unknown");
    EXPECT_EQ(nameOf(lsta::TECH{0}), "unknown");
    EXPECT_EQ(nameOf(lsta::TYPE{1}), "unknown");
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

TEST(Names, OfResultCodesAreTheConstantsThatApplicationsCompareWith)
{
    struct Row
    {
        int constant;
        int code;
        const char* name;
    };
    const Row rows[] = {
        {result::SUCCESS, 0, "SUCCESS"},
        {result::NOT_OPENED, 1, "NOT_OPENED"},
        {result::TIMEOUT, 2, "TIMEOUT"},
        {result::MODULE_OFF, 3, "MODULE_OFF"},
        {result::SIM_MISSING, 4, "SIM_MISSING"},
        {result::SIM_PIN_REQUIRED, 5, "SIM_PIN_REQUIRED"},
        {result::SIM_PUK_REQUIRED, 6, "SIM_PUK_REQUIRED"},
        {result::SIM_PIN2_REQUIRED, 7, "SIM_PIN2_REQUIRED"},
        {result::SIM_PUK2_REQUIRED, 8, "SIM_PUK2_REQUIRED"},
        {result::SIM_BUSY, 9, "SIM_BUSY"},
        {result::SIM_ACCESS_FAILED, 10, "SIM_ACCESS_FAILED"},
        {result::WRONG_PIN, 11, "WRONG_PIN"},
        {result::NO_NETWORK, 12, "NO_NETWORK"},
        {result::WRONG_PARAMETER, 13, "WRONG_PARAMETER"},
        {result::MISSING_PARAMETER, 14, "MISSING_PARAMETER"},
        {result::TEMPORARILY_UNAVAILABLE, 15, "TEMPORARILY_UNAVAILABLE"},
        {result::NOT_FOUND, 16, "NOT_FOUND"},
        {result::NO_PDP_CONTEXT, 17, "NO_PDP_CONTEXT"},
        {result::DATA_SERVICE_CLOSED, 18, "DATA_SERVICE_CLOSED"},
        {result::WRONG_SERVICE, 19, "WRONG_SERVICE"},
        {result::TEXT_TOO_LONG, 20, "TEXT_TOO_LONG"},
        {result::DENIED, 21, "DENIED"},
        {result::UNSUPPORTED_CHARACTERS, 22, "UNSUPPORTED_CHARACTERS"},
        {result::GNSS_INACTIVE, 23, "GNSS_INACTIVE"},
        {result::NOT_SUPPORTED, 24, "NOT_SUPPORTED"},
        {result::OUT_OF_MEMORY, 25, "OUT_OF_MEMORY"},
        {result::CANCELLED, 26, "CANCELLED"},
        {result::CALL_BARRED, 27, "CALL_BARRED"},
        {result::NETWORK_REJECTED, 28, "NETWORK_REJECTED"},
        {result::MEMORY_FULL, 29, "MEMORY_FULL"},
        {result::USER_BUSY, 30, "USER_BUSY"},
        {result::NO_CONNECTION, 31, "NO_CONNECTION"},
        {result::GENERIC_ERROR, 32, "GENERIC_ERROR"},
        {result::ANSWER_CUT, 33, "ANSWER_CUT"},
        {result::VERSION_MISMATCH, 34, "VERSION_MISMATCH"},
        {result::DATA_CONNECTION_PENDING, 35, "DATA_CONNECTION_PENDING"},
        {result::APN_ACTIVE, 36, "APN_ACTIVE"},
        {result::ILLEGAL_MOBILE, 37, "ILLEGAL_MOBILE"},
        {result::NOT_ALLOWED, 38, "NOT_ALLOWED"},
        {result::DAEMON_BUSY, 39, "DAEMON_BUSY"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.constant, row.code);
        EXPECT_STREQ(result::nameOf(row.code), row.name);
    }
    for (const int code : {-1, 40, 1 << 30})
        EXPECT_STREQ(result::nameOf(code), "UNKNOWN") << code;
}

TEST(Names, AResultCodeHasTheTextThatTheLogShows)
{
    static_assert(result::textOf(31) == "Error in connection between library and RIL daemon or RIL daemon not running");
    EXPECT_EQ(result::textOf(0), "Command has been executed successfully");
    EXPECT_EQ(result::textOf(39), "Daemon busy");
    for (const int code : {40, 41, -1, -5, 1 << 30, -2147483647 - 1})
        EXPECT_EQ(result::textOf(code), "Unknown result") << code;
}

}  // namespace
