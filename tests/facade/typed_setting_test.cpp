#include "support/KelArcTest.h"

namespace {

using kelarc::CPU_POWER;
using kelarc::gnss::FORMAT;
using kelarc::gnss::FREQUENCY;
using kelarc::gnss::SYSTEM;
using support::Function;
using support::reply;
using support::Strings;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

class TypedSetting : public support::KelArcTest
{
protected:
    TypedSetting() { open(); }

    static void modemReplies(const std::string& text, int code = 0)
    {
        arcsim::clearAnswers(Function::CheckModuleSetting);
        arcsim::answerAlways(Function::CheckModuleSetting, reply(text, code));
    }
};

struct Number
{
    const char* reply;
    int value;
};

// Quote marks become blanks, then the longest decimal number from the front counts, of which 8 bits are kept.
const std::vector<Number> kNumbers = {
    {"\"30\"", 30},
    {"\"300\"", 44},
    {"\"-1\"", 255},
    {"\"  7\"", 7},
    {"\"+9\"", 9},
    {"\"12abc\"", 12},
    {"\"\"", 0},
    {"", 0},
    {"abc", 0},
    {"\"x5\"", 0},
    {"45", 45},
    {"\"0\"", 0},
    {"\"255\"", 255},
    {"\"256\"", 0},
    {"\"257\"", 1},
    {"\"-256\"", 0},
    {"\"-129\"", 127},
    {"\"0x10\"", 0},
    {"\"010\"", 10},
    {"\"5\"6\"", 5},
    {"\"5 6\"", 5},
    {"\t\"8", 8},
    {"\"1.9\"", 1},
    {"- 4", 0},
    {"-\"4", 0},
    {"\"99999999999999999999\"", 255},
    {"\"-99999999999999999999\"", 0},
};

TEST_F(TypedSetting, NumbersAreReadFromTheReplyAndCutTo8Bits)
{
    for (const Number& number : kNumbers) {
        SCOPED_TRACE(number.reply);
        modemReplies(number.reply);
        journal.clear();
        kelarc().getMinElevation(answer("elevation"));
        kelarc().getRawMask(answer("mask"));
        settle();
        const std::string value = std::to_string(number.value);
        EXPECT_THAT(answers(), ElementsAre("elevation(0, " + value + ")", "mask(0, " + value + ")"));
        EXPECT_EQ(lines().size(), 2U) << "more than the two result lines is logged";
    }
}

TEST_F(TypedSetting, NumbersBeyondALongAreTheNearestLongWhichDependsOnTheMachine)
{
    constexpr bool is32Bit = sizeof(long) == 4;
    const Number numbers[] = {
        {"\"2147483646\"", 254}, {"\"2147483648\"", is32Bit ? 255 : 0}, {"\"4294967300\"", is32Bit ? 255 : 4},
        {"\"-2147483647\"", 1},  {"\"-4294967295\"", is32Bit ? 0 : 1},
    };
    for (const Number& number : numbers) {
        SCOPED_TRACE(number.reply);
        modemReplies(number.reply);
        journal.clear();
        kelarc().getMinElevation(answer());
        kelarc().getRawMask(answer());
        settle();
        const std::string value = "answer(0, " + std::to_string(number.value) + ")";
        EXPECT_THAT(answers(), ElementsAre(value, value));
    }
}

TEST_F(TypedSetting, NumbersAre0WhenTheReadFailed)
{
    modemReplies("\"30\"", 33);
    kelarc().getMinElevation(answer("elevation"));
    kelarc().getRawMask(answer("mask"));
    settle();
    EXPECT_THAT(answers(), ElementsAre("elevation(33, 0)", "mask(33, 0)"));
}

TEST_F(TypedSetting, NumbersAreReadFromTheirKeys)
{
    modemReplies("\"30\"");
    kelarc().getMinElevation(answer());
    settle();
    EXPECT_THAT(lastArguments(Function::CheckModuleSetting),
                ElementsAre("Sens/MinElevAngle", "null", "set", "255", "null"));
    kelarc().getRawMask(answer());
    settle();
    EXPECT_THAT(lastArguments(Function::CheckModuleSetting),
                ElementsAre("Nmea/Data/RawMask", "null", "set", "255", "null"));
}

TEST_F(TypedSetting, MinimumElevationIsWrittenInDecimal)
{
    for (int elevation = 5; elevation <= 45; ++elevation) {
        kelarc().setMinElevation(static_cast<unsigned char>(elevation), answer());
        settle();
        EXPECT_THAT(lastArguments(Function::CheckModuleSetting),
                    ElementsAre("Sens/MinElevAngle", "\"" + std::to_string(elevation) + "\"", "null", "0", "set"));
    }
}

TEST_F(TypedSetting, RawMaskIsWrittenInDecimal)
{
    for (int mask = 0; mask <= 255; ++mask) {
        kelarc().setRawMask(static_cast<unsigned char>(mask), answer());
        settle();
        EXPECT_THAT(lastArguments(Function::CheckModuleSetting),
                    ElementsAre("Nmea/Data/RawMask", "\"" + std::to_string(mask) + "\"", "null", "0", "set"));
    }
    EXPECT_THAT(lines(), Not(::testing::Contains(::testing::HasSubstr("Invalid"))));
}

TEST_F(TypedSetting, NumbersWrittenAnswerTheOutcome)
{
    arcsim::Answer changed;
    changed.indicator = 1;
    arcsim::answerAlways(Function::CheckModuleSetting, changed);
    kelarc().setMinElevation(15, answer("elevation"));
    kelarc().setRawMask(129, answer("mask"));
    settle();
    EXPECT_THAT(answers(), ElementsAre("elevation(0, true)", "mask(0, true)"));
}

TEST_F(TypedSetting, RawVersionIsDeliveredVerbatim)
{
    modemReplies(" \"V1.\"2 ");
    kelarc().getGnssRawVersion(answer());
    settle();
    EXPECT_THAT(answers(), ElementsAre("answer(0, ' \"V1.\"2 ')"));
    EXPECT_THAT(lastArguments(Function::CheckModuleSetting), ElementsAre("Raw/Version", "null", "set", "255", "null"));
}

TEST_F(TypedSetting, RawVersionIsDeliveredAlsoWhenTheReadFailed)
{
    modemReplies("\"V1\"", 33);
    kelarc().getGnssRawVersion(answer());
    settle();
    EXPECT_THAT(answers(), ElementsAre("answer(33, '\"V1\"')"));
}

TEST_F(TypedSetting, CpuPsmLogsAFailedReadAsUnknownWhereDRSyncDoesNot)
{
    modemReplies("", 2);
    kelarc().getCpuPsm(answer("psm"));
    settle();
    const std::string unknown = "Unknown return value from ARC_CheckModuleSetting(";
    EXPECT_EQ(lines().back(), "4 KelArc::operator().511: " + unknown + "Power/Psm) -> ''");
    journal.clear();
    kelarc().getDRSync(answer("sync"));
    settle();
    EXPECT_THAT(lines(), Not(::testing::Contains(::testing::HasSubstr(unknown))));
    EXPECT_THAT(answers(), ElementsAre("sync(2, 0)"));
}

TEST_F(TypedSetting, GettersReadWhatSettersWrote)
{
    kelarc().setCpuPower(CPU_POWER{2}, [](int, bool) {});
    kelarc().getCpuPower(answer("power"));
    kelarc().setCpuPsm(true, [](int, bool) {});
    kelarc().getCpuPsm(answer("psm"));
    kelarc().setGnssFormat(FORMAT{2}, [](int, bool) {});
    kelarc().getGnssFormat(answer("format"));
    kelarc().setDRSync(true, [](int, bool) {});
    kelarc().getDRSync(answer("sync"));
    kelarc().setGnssStatus(SYSTEM{3}, true, [](int, SYSTEM, bool) {});
    kelarc().getGnssStatus(SYSTEM{3}, answer("beidou"));
    kelarc().setSbasStatus(false, [](int, bool) {});
    kelarc().getSbasStatus(answer("sbas"));
    kelarc().setGnssFrequency(FREQUENCY{4}, [](int, bool) {});
    kelarc().getGnssFrequency(answer("frequency"));
    kelarc().setMinElevation(20, [](int, bool) {});
    kelarc().getMinElevation(answer("elevation"));
    kelarc().setRawMask(129, [](int, bool) {});
    kelarc().getRawMask(answer("mask"));
    settle();
    EXPECT_THAT(answers(), ElementsAre("power(0, 2)", "psm(0, 2)", "format(0, 2)", "sync(0, 2)", "beidou(0, 3, 2)",
                                       "sbas(0, 1)", "frequency(0, 4)", "elevation(0, 20)", "mask(0, 129)"));
}

TEST_F(TypedSetting, RefusedSettersLeaveTheCallersFunction)
{
    std::function<void(int, bool)> callback = answer();
    kelarc().setCpuPower(CPU_POWER{0}, std::move(callback));
    EXPECT_TRUE(callback);
    kelarc().setGnssFormat(FORMAT{3}, std::move(callback));
    EXPECT_TRUE(callback);
    kelarc().setGnssFrequency(FREQUENCY{5}, std::move(callback));
    EXPECT_TRUE(callback);
    kelarc().setMinElevation(4, std::move(callback));
    EXPECT_TRUE(callback);
    EXPECT_EQ(answers().size(), 4U);
}

TEST_F(TypedSetting, RefusedSystemsLeaveTheCallersFunctionUncalled)
{
    std::function<void(int, SYSTEM, kelarc::RESULT)> getter = answer();
    kelarc().getGnssStatus(SYSTEM{5}, std::move(getter));
    EXPECT_TRUE(getter);
    std::function<void(int, SYSTEM, bool)> setter = answer();
    kelarc().setGnssStatus(SYSTEM{5}, true, std::move(setter));
    EXPECT_TRUE(setter);
    settle();
    EXPECT_THAT(answers(), IsEmpty());
}

TEST_F(TypedSetting, RefusalsNeedNoOpenObject)
{
    close();
    kelarc().setMinElevation(46, answer());
    EXPECT_THAT(journal.texts(),
                ElementsAre("4 KelArc::setMinElevation.962: Invalid minimum elevation, out of bounds: 46",
                            "answer(14, false)"));
}

}  // namespace
