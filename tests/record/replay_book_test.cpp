#include "arcsim/ReplayBook.h"

#include "arcsim/CallShape.h"
#include "record/recording_text.h"

#include <gtest/gtest.h>

namespace {

using arcsim::callText;
using arcsim::ReplayBook;
using arcsim::textOf;
using nlohmann::ordered_json;
using record_test::RecordingText;
using std::chrono::microseconds;

const ordered_json kNone = ordered_json::object();

ordered_json zone(int number)
{
    return {{"zone", number}, {"text", "t"}};
}

std::string zoneText(int number)
{
    return R"({"zone":)" + std::to_string(number) + R"(,"text":"t"})";
}

std::string numbers(const std::vector<ReplayBook::DueEvent>& due)
{
    std::string text;
    for (const auto& each : due)
        text += std::to_string(each.index) + "+" + std::to_string(each.delay.count()) + " ";
    return text;
}

TEST(CallTexts, AreThoseOfAProgram)
{
    EXPECT_EQ(callText("ARC_CheckModuleSetting", {{"key", "Power/Cpu"},
                                                  {"value", nullptr},
                                                  {"reply", "set"},
                                                  {"replySize", 255},
                                                  {"writeIndicator", nullptr}}),
              "ARC_CheckModuleSetting(\"Power/Cpu\", null, set, 255, null)");
    EXPECT_EQ(callText("ARC_Open", kNone), "ARC_Open()");
    EXPECT_EQ(callText("ARC_EnableLSTA", {{"parameter", -1}, {"enable", true}, {"arcTechnologyId", 10}}),
              "ARC_EnableLSTA(10, true, -1)");
    EXPECT_EQ(callText("ARC_EnableLogging", {{"zone", 1}, {"text", "set"}}), "ARC_EnableLogging(1, \"set\")");
    EXPECT_EQ(callText("ARC_EnableLogging", {{"zone", 1}}), "ARC_EnableLogging(1, missing)");
    EXPECT_EQ(callText("ARC_Unknown", {{"a", "x"}, {"b", 2}}), "ARC_Unknown(\"x\", 2)");
}

TEST(AReplay, AnswersAsRecordedAndFindsNoDifference)
{
    ReplayBook book(RecordingText()
                        .begin("ARC_Open")
                        .end(31, "{}", 120)
                        .begin("ARC_StartGNSSraw", R"({"text":"set","size":255})")
                        .end(0, R"({"text":"/dev/pts/3"})", 7)
                        .recording());
    const ReplayBook::Answer open = book.next(5, "ARC_Open", kNone);
    EXPECT_EQ(open.number, 1U);
    EXPECT_FALSE(open.hangs);
    EXPECT_EQ(open.code, 31);
    EXPECT_EQ(open.outputs, kNone);
    EXPECT_EQ(open.took, microseconds(120));
    const ReplayBook::Answer start = book.next(5, "ARC_StartGNSSraw", {{"size", 255}, {"text", "set"}});
    EXPECT_EQ(start.number, 2U);
    EXPECT_EQ(start.code, 0);
    EXPECT_EQ(start.outputs.dump(), R"({"text":"/dev/pts/3"})");
    EXPECT_EQ(textOf(book.difference()), "no difference");
    EXPECT_EQ(textOf(book.finish()), "no difference");
}

TEST(AReplay, HangsWhereTheRecordedCallDid)
{
    ReplayBook book(RecordingText().call("ARC_Open").begin("ARC_StopGNSS").recording());
    EXPECT_FALSE(book.next(1, "ARC_Open", kNone).hangs);
    EXPECT_TRUE(book.next(1, "ARC_StopGNSS", kNone).hangs);
    EXPECT_EQ(textOf(book.finish()), "no difference");
}

TEST(AReplay, RemembersTheFirstDifferenceOnly)
{
    ReplayBook book(
        RecordingText().call("ARC_Open").begin("ARC_EnableLogging", zoneText(1)).end().call("ARC_Close").recording());
    book.next(1, "ARC_Open", kNone);
    book.next(1, "ARC_EnableLogging", zone(2));
    book.next(1, "ARC_StopGNSS", kNone);
    ASSERT_TRUE(book.difference());
    EXPECT_EQ(book.difference()->call, 2U);
    EXPECT_EQ(book.difference()->expected, "ARC_EnableLogging(1, \"t\")");
    EXPECT_EQ(book.difference()->got, "ARC_EnableLogging(2, \"t\")");
    EXPECT_EQ(textOf(book.finish()), "call 2: expected ARC_EnableLogging(1, \"t\"), got ARC_EnableLogging(2, \"t\")");
}

/// Looking through all that is left for each of them would take longer than a test may.
TEST(AReplay, OfManyCallsStandsAnApplicationThatMakesOthers)
{
    RecordingText text;
    constexpr int kCalls = 20000;
    for (int n = 0; n < kCalls; ++n)
        text.begin("ARC_EnableLogging", zoneText(1)).end(n);
    ReplayBook book(text.recording());
    for (int n = 0; n < kCalls; ++n)
        EXPECT_EQ(book.next(1, "ARC_EnableLogging", zone(2)).code, 0);
    EXPECT_EQ(textOf(book.difference()),
              "call 1: expected ARC_EnableLogging(1, \"t\"), got ARC_EnableLogging(2, \"t\")");
    EXPECT_EQ(book.next(1, "ARC_EnableLogging", zone(1)).number, 1U);
}

TEST(AReplay, GoesOnWithTheNextCallThatIsTheSame)
{
    ReplayBook book(RecordingText()
                        .call("ARC_Open")
                        .call("ARC_StopGNSS", 1)
                        .call("ARC_ResetAGNSS", 2)
                        .call("ARC_StopGNSS", 3)
                        .recording());
    book.next(1, "ARC_Open", kNone);
    EXPECT_EQ(book.next(1, "ARC_ResetAGNSS", kNone).number, 3U);
    EXPECT_EQ(book.next(1, "ARC_StopGNSS", kNone).code, 3);
    EXPECT_EQ(textOf(book.finish()), "call 2: expected ARC_StopGNSS(), got ARC_ResetAGNSS()");
}

TEST(AReplay, AnswersAFurtherCallAsTheLatestOrNextOfItsFunction)
{
    ReplayBook book(RecordingText()
                        .begin("ARC_EnableLogging", zoneText(1))
                        .end(11)
                        .begin("ARC_EnableLogging", zoneText(2))
                        .end(12)
                        .begin("ARC_EnableLogging", zoneText(3))
                        .recording());
    EXPECT_EQ(book.next(1, "ARC_EnableLogging", zone(7)).code, 11) << "the next, since there is none before";
    EXPECT_EQ(textOf(book.difference()),
              "call 1: expected ARC_EnableLogging(1, \"t\"), got ARC_EnableLogging(7, \"t\")");
    EXPECT_EQ(book.next(1, "ARC_EnableLogging", zone(1)).number, 1U);
    EXPECT_EQ(book.next(1, "ARC_EnableLogging", zone(2)).number, 2U);
    const ReplayBook::Answer further = book.next(1, "ARC_EnableLogging", zone(8));
    EXPECT_EQ(further.code, 12) << "the latest, and not the one that hung";
    EXPECT_EQ(further.number, 0U);
    EXPECT_FALSE(further.hangs);
    EXPECT_EQ(book.next(1, "ARC_Close", kNone).code, 32) << "never recorded";
    EXPECT_TRUE(book.next(1, "ARC_EnableLogging", zone(3)).hangs);
}

TEST(AReplay, FindsACallBeyondTheRecordedOnes)
{
    ReplayBook book(RecordingText().call("ARC_Open").recording());
    book.next(1, "ARC_Open", kNone);
    EXPECT_EQ(book.next(1, "ARC_Open", kNone).number, 0U);
    EXPECT_EQ(textOf(book.finish()), "call 2: expected no further call of this thread, got ARC_Open()");
}

TEST(AReplay, FindsAThreadBeyondTheRecordedOnes)
{
    ReplayBook book(RecordingText().call("ARC_Open", 7).recording());
    book.next(1, "ARC_Open", kNone);
    EXPECT_EQ(book.next(2, "ARC_Open", kNone).code, 7) << "from another thread";
    EXPECT_EQ(book.next(2, "ARC_Close", kNone).code, 32);
    EXPECT_EQ(textOf(book.finish()), "call 2: expected no further thread, got ARC_Open()");
}

TEST(AReplay, WithoutAnyRecordedCallStillAnswers)
{
    ReplayBook book(RecordingText().event(1).recording());
    EXPECT_EQ(book.next(1, "ARC_Open", kNone).code, 32);
    EXPECT_EQ(textOf(book.finish()), "call 1: expected no further thread, got ARC_Open()");
}

TEST(AReplay, FindsTheFirstCallThatWasNotMade)
{
    ReplayBook book(
        RecordingText().call("ARC_Open").begin("ARC_StopGNSS", "{}", 2).end().call("ARC_Close").recording());
    book.next(1, "ARC_Open", kNone);
    EXPECT_EQ(textOf(book.difference()), "no difference");
    EXPECT_EQ(textOf(book.finish()), "call 2: expected ARC_StopGNSS(), got no call");
}

/// Three threads; the calls of the third are like those of the first except for the later ones.
ReplayBook ofThreeThreads()
{
    RecordingText text;
    text.begin("ARC_Open", "{}", 1).end(1);
    text.begin("ARC_StopGNSS", "{}", 2).end(2);
    text.begin("ARC_ResetAGNSS", "{}", 3).end(3);
    text.begin("ARC_Close", "{}", 1).end(4);
    text.begin("ARC_Close", "{}", 2).end(5);
    text.begin("ARC_Close", "{}", 3).end(6);
    return ReplayBook(text.recording());
}

TEST(AReplay, TakesThreadsByTheirFirstCallAndLetsThemInterleave)
{
    ReplayBook book = ofThreeThreads();
    EXPECT_EQ(book.next(30, "ARC_ResetAGNSS", kNone).code, 3);
    EXPECT_EQ(book.next(30, "ARC_Close", kNone).code, 6);
    EXPECT_EQ(book.next(20, "ARC_StopGNSS", kNone).code, 2);
    EXPECT_EQ(book.next(10, "ARC_Open", kNone).code, 1);
    EXPECT_EQ(book.next(20, "ARC_Close", kNone).code, 5);
    EXPECT_EQ(book.next(10, "ARC_Close", kNone).code, 4);
    EXPECT_EQ(textOf(book.finish()), "no difference");
}

TEST(AReplay, TakesTheFirstFreeThreadForOneThatBeginsOtherwise)
{
    ReplayBook book = ofThreeThreads();
    EXPECT_EQ(book.next(10, "ARC_Open", kNone).code, 1);
    EXPECT_EQ(book.next(20, "ARC_Close", kNone).code, 5);
    EXPECT_EQ(textOf(book.difference()), "call 2: expected ARC_StopGNSS(), got ARC_Close()");
    EXPECT_EQ(book.next(30, "ARC_ResetAGNSS", kNone).code, 3);
}

TEST(EventsOfAReplay, BecomeDueWhenTheCallsBeforeThemHaveBegunAndEnded)
{
    ReplayBook book(RecordingText()
                        .event(1, "", 3)
                        .begin("ARC_Open")
                        .event(2, "", 40)
                        .end(0, "{}", 60)
                        .event(3, "", 25)
                        .event(4, "", 5)
                        .call("ARC_Close")
                        .event(5, "", 1)
                        .recording());
    EXPECT_EQ(numbers(book.dueEvents()), "0+3 ");
    EXPECT_EQ(numbers(book.dueEvents()), "") << "each once";
    const ReplayBook::Answer open = book.next(1, "ARC_Open", kNone);
    EXPECT_EQ(numbers(book.dueEvents()), "1+40 ");
    book.answered(open.number);
    EXPECT_EQ(numbers(book.dueEvents()), "2+25 3+30 ");
    const ReplayBook::Answer close = book.next(1, "ARC_Close", kNone);
    EXPECT_EQ(numbers(book.dueEvents()), "");
    book.answered(0);
    EXPECT_EQ(numbers(book.dueEvents()), "");
    book.answered(close.number);
    EXPECT_EQ(numbers(book.dueEvents()), "4+1 ");
}

TEST(EventsOfAReplay, WaitForTheCallsOfAllThreads)
{
    RecordingText text;
    text.begin("ARC_Open", "{}", 1).begin("ARC_StopGNSS", "{}", 2);
    text.end(0, "{}", 10, 2, 2).event(1).end(0, "{}", 10, 1, 1);
    ReplayBook book(text.recording());
    book.answered(book.next(1, "ARC_Open", kNone).number);
    EXPECT_EQ(numbers(book.dueEvents()), "");
    const unsigned stop = book.next(2, "ARC_StopGNSS", kNone).number;
    EXPECT_EQ(numbers(book.dueEvents()), "");
    book.answered(stop);
    EXPECT_EQ(numbers(book.dueEvents()), "0+10 ");
}

TEST(EventsOfAReplay, DoNotWaitForCallsThatWerePassedOver)
{
    ReplayBook book(RecordingText().call("ARC_Open").call("ARC_StopGNSS").event(1).call("ARC_Close").recording());
    book.answered(book.next(1, "ARC_Close", kNone).number);
    EXPECT_EQ(numbers(book.dueEvents()), "0+10 ");
}

}  // namespace
