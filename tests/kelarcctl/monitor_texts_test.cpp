// What the monitor makes of texts: log lines, lists of tasks, the accepted values of settings.

#include "kelarcctl/monitor/Format.h"
#include "kelarcctl/monitor/ResultLine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kelarcctl {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(ResultLine, IsTakenApart)
{
    const auto line = resultLineOf("KelArc::logArcResult.1224: [14] Get ARC_CheckModuleSetting(\"Power/Cpu\") took 12 "
                                   "ms: Timeout while waiting for module response (2)");
    ASSERT_TRUE(line);
    EXPECT_EQ(line->retriesLeft, 14);
    EXPECT_EQ(line->call, "Get ARC_CheckModuleSetting(\"Power/Cpu\")");
    EXPECT_EQ(line->tookMs, 12);
    EXPECT_EQ(line->text, "Timeout while waiting for module response");
    EXPECT_EQ(line->code, 2);
}

TEST(ResultLine, KeepsWhatLooksLikeItsOwnPartsInsideOfTheCall)
{
    const auto line = resultLineOf(
        "KelArc::logArcResult.1224: [-1] ARC_AtcTunneling(\"] a took 1 ms: b (7)\") took 3 ms: Text (with this) (31)");
    ASSERT_TRUE(line);
    EXPECT_EQ(line->retriesLeft, -1);
    EXPECT_EQ(line->call, "ARC_AtcTunneling(\"] a took 1 ms: b (7)\")");
    EXPECT_EQ(line->tookMs, 3);
    EXPECT_EQ(line->text, "Text (with this)");
    EXPECT_EQ(line->code, 31);
}

TEST(ResultLine, IsNotMadeOfOtherLines)
{
    for (const char* const text :
         {"", "KelArc::stopGNSS.600: stopGNSS called, cancelling current ARC tasks",
          "KelArc::operator().625: Could not call successfully 'ARC_StopGNSS()' after 15 retries",
          "KelArc::logArcResult.1224: [x] ARC_Open() took 1 ms: Text (0)",
          "KelArc::logArcResult.1224: [15] ARC_Open() took long ms: Text (0)",
          "KelArc::logArcResult.1224: [15] ARC_Open() took 1 ms: Text (?)",
          "KelArc::logArcResult.1224: [15] ARC_Open() took 1 ms: Text"})
        EXPECT_FALSE(resultLineOf(text)) << text;
}

TEST(Attempts, CountTheFailuresOfTheRequestThatRuns)
{
    const std::string task = "kelarc/KelArc.526: ARC_StartGNSSraw()";
    Attempts attempts;
    EXPECT_EQ(attempts.failedOf(task), 0);
    attempts.add({-1, "ARC_StartGNSSraw()", 0, "Text", 31});
    attempts.add({-1, "ARC_StartGNSSraw()", 0, "Text", 31});
    EXPECT_EQ(attempts.failedOf(task), 2);
    EXPECT_EQ(attempts.failedOf("kelarc/KelArc.183: ARC_Close()"), 0);
    attempts.add({-1, "ARC_StartGNSSraw()", 0, "Text", 0});
    EXPECT_EQ(attempts.failedOf(task), 0);
}

TEST(Attempts, AreOfATaskWhoseNameLeavesOutTheArguments)
{
    Attempts attempts;
    attempts.add({14, "ARC_SetNotificationMethod(ARC_NOTIFY_METHOD_SINGLETHREAD)", 0, "Text", 31});
    EXPECT_EQ(attempts.failedOf("kelarc/KelArc.118: ARC_SetNotificationMethod()"), 1);
    EXPECT_EQ(attempts.failedOf("kelarc/KelArc.118: ARC_SetNotification()"), 0);
    EXPECT_EQ(attempts.failedOf("kelarc/KelArc.141: ARC_Open()"), 0);
    EXPECT_EQ(attempts.failedOf("No running task"), 0);
    EXPECT_EQ(attempts.failed(), 1);
}

TEST(Attempts, BeginAnewWithTheNextRequest)
{
    const std::string task = "kelarc/KelArc.300: ARC_GetRilVersion()";
    Attempts attempts;
    attempts.add({1, "ARC_GetRilVersion()", 0, "Text", 2});
    attempts.add({0, "ARC_GetRilVersion()", 0, "Text", 2});  // gives up
    EXPECT_EQ(attempts.failedOf(task), 0);
    attempts.add({14, "ARC_GetRilVersion()", 0, "Text", 2});
    EXPECT_EQ(attempts.failedOf(task), 1);
    attempts.add({13, "ARC_GetRilVersion()", 0, "Text", 2});
    attempts.add({14, "ARC_GetRilVersion()", 0, "Text", 2});  // the one before was cancelled
    EXPECT_EQ(attempts.failedOf(task), 1);
}

TEST(QueuedTasks, AreNamed)
{
    EXPECT_THAT(queuedTasksOf("All tasks (0):\n"), IsEmpty());
    EXPECT_THAT(
        queuedTasksOf("All tasks (2):\n"
                      "\tTask id: 7, name: 'kelarc/KelArc.601: ARC_StopGNSS()', isDelayed: false, execution was "
                      "planned in: 0 ms\n"
                      "\tTask id: 8, name: 'it's', isDelayed: false, execution was planned in: 0 ms\n"),
        ElementsAre("kelarc/KelArc.601: ARC_StopGNSS()", "it's"));
}

TEST(Format, OfAges)
{
    EXPECT_EQ(ageText(0), "0 s");
    EXPECT_EQ(ageText(119'999), "119 s");
    EXPECT_EQ(ageText(120'000), "2 min");
    EXPECT_EQ(ageText(7'199'999), "119 min");
    EXPECT_EQ(ageText(7'200'000), "2 h");
}

TEST(Format, ShowsThatATextWasCut)
{
    EXPECT_EQ(fitted("abcdef", 6), "abcdef");
    EXPECT_EQ(fitted("abcdef", 5), "abc..");
    EXPECT_EQ(fitted("abcdef", 2), "ab");
    EXPECT_EQ(fitted("abcdef", -1), "");
}

TEST(Format, FindsTheWordsThatAreAccepted)
{
    EXPECT_THAT(wordsOf("1000, 500, 200, 100"), ElementsAre("1000", "500", "200", "100"));
    EXPECT_THAT(wordsOf("on"), ElementsAre("on"));
    EXPECT_THAT(wordsOf(""), IsEmpty());
}

}  // namespace
}  // namespace kelarcctl
