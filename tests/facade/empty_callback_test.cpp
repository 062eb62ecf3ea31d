#include "kelarc/idle.h"
#include "support/KelArcTest.h"

#include <chrono>
#include <functional>

namespace {

using kelarc::CPU_POWER;
using kelarc::KelArc;
using kelarc::gnss::FORMAT;
using kelarc::gnss::FREQUENCY;
using kelarc::gnss::SYSTEM;
using kelarc::lsta::TECH;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class EmptyCallback : public support::KelArcTest
{
};

TEST_F(EmptyCallback, OfARefusedSetterIsCalledAndThrowsAfterTheLine)
{
    EXPECT_THROW(kelarc().setCpuPower(CPU_POWER{0}, nullptr), std::bad_function_call);
    EXPECT_THROW(kelarc().setGnssFormat(FORMAT{3}, nullptr), std::bad_function_call);
    EXPECT_THROW(kelarc().setGnssFrequency(FREQUENCY{5}, nullptr), std::bad_function_call);
    EXPECT_THROW(kelarc().setMinElevation(46, nullptr), std::bad_function_call);
    EXPECT_EQ(lines().size(), 4U);
}

TEST_F(EmptyCallback, OfARefusedTechnologyIsCalledAndThrows)
{
    EXPECT_THROW(kelarc().getLstaGnss(TECH{0}, nullptr), std::bad_function_call);
    EXPECT_THROW(kelarc().setLstaGnssStatus(TECH{5}, true, 0, nullptr, nullptr), std::bad_function_call);
    EXPECT_EQ(lines().size(), 2U);
}

TEST_F(EmptyCallback, IsNotCalledWhereARefusalAnswersNothing)
{
    EXPECT_NO_THROW(kelarc().getGnssStatus(SYSTEM{0}, nullptr));
    EXPECT_NO_THROW(kelarc().setGnssStatus(SYSTEM{0}, true, nullptr));
    EXPECT_NO_THROW(kelarc().close(nullptr));
    EXPECT_EQ(kelarc().getPendingTasks(), 0U);
}

TEST_F(EmptyCallback, IsNotCalledByASuccessfulEnable)
{
    open();
    kelarc().setLstaGnssStatus(TECH{1}, true, 0, nullptr, nullptr);
    settle();
    EXPECT_EQ(lines().size(), 1U);
}

TEST_F(EmptyCallback, ForLogLinesThrowsFromTheFirstLine)
{
    KelArc silent(nullptr);
    EXPECT_THROW(silent.setCpuPower(CPU_POWER{0}, answer()), std::bad_function_call);
    EXPECT_THROW(silent.getGnssStatus(SYSTEM{0}, answer()), std::bad_function_call);
    EXPECT_THAT(answers(), IsEmpty());
}

TEST_F(EmptyCallback, ForLogLinesKeepsAStopFromBeingQueued)
{
    KelArc silent(nullptr);
    EXPECT_THROW(silent.stopGNSS(answer()), std::bad_function_call);
    EXPECT_EQ(silent.getPendingTasks(), 0U);
    EXPECT_THAT(arcsim::calls(), IsEmpty());
}

TEST_F(EmptyCallback, ForLogLinesIsNotCalledWhereNothingIsLogged)
{
    KelArc silent(nullptr);
    silent.ATcmd("AT", [&](int code, std::string&& text) { answer()(code, text); });
    ASSERT_TRUE(journal.waitFor(support::Kind::answer, 1));
    EXPECT_THAT(answers(), ElementsAre("answer(32, '<UNKNOWN>')"));
}

/// On the worker thread nobody catches what an empty callback throws: the process ends.
class EmptyCallbackDeathTest : public support::KelArcTest
{
protected:
    EmptyCallbackDeathTest() { ::testing::FLAGS_gtest_death_test_style = "threadsafe"; }
};

TEST_F(EmptyCallbackDeathTest, OfAQueuedRequestEndsTheProcess)
{
    EXPECT_DEATH(
        {
            kelarc().getArcVersion(nullptr);
            settle();
        },
        "bad_function_call");
}

TEST_F(EmptyCallbackDeathTest, OfAnOpenEndsTheProcess)
{
    EXPECT_DEATH(
        {
            kelarc().open(nullptr);
            settle();
        },
        "bad_function_call");
}

TEST_F(EmptyCallbackDeathTest, OfATypedGetterEndsTheProcess)
{
    EXPECT_DEATH(
        {
            kelarc().getMinElevation(nullptr);
            settle();
        },
        "bad_function_call");
}

TEST_F(EmptyCallbackDeathTest, OfAnAcceptedSetterEndsTheProcess)
{
    EXPECT_DEATH(
        {
            kelarc().setGnssStatus(SYSTEM{1}, true, nullptr);
            settle();
        },
        "bad_function_call");
}

TEST_F(EmptyCallbackDeathTest, ForLogLinesEndsTheProcessAtTheFirstResult)
{
    EXPECT_DEATH(
        {
            KelArc silent(nullptr);
            silent.getArcVersion(answer());
            kelarc::waitUntilIdle(silent, std::chrono::seconds(30));
        },
        "bad_function_call");
}

}  // namespace
