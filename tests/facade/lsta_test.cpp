#include "support/KelArcTest.h"

#include <limits>

namespace {

using kelarc::NOTIFY_ID;
using kelarc::lsta::TECH;
using kelarc::lsta::TYPE;
using support::Function;
using support::gaveUpLine;
using support::kPause;
using support::lstaInfo;
using support::resultLine;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::string kQuery = "ARC_CurrentLSTA(\"12\")";
const std::string kEnable = "ARC_EnableLSTA(\"12\", \"1\", \"5\")";

class GetLstaGnss : public support::KelArcTest
{
protected:
    static arcsim::Answer record(const LstaInfo& info, int code = 0)
    {
        arcsim::Answer answer;
        answer.code = code;
        answer.record = info;
        return answer;
    }

    void query()
    {
        kelarc().getLstaGnss(TECH{3}, answer());
        settle();
    }

    /// The answer to a query that the modem answers so.
    std::string answerFor(int status, double value)
    {
        journal.clear();
        arcsim::answerNext(Function::CurrentLSTA, {record(lstaInfo(1002, status, value))});
        query();
        return answers().size() == 1 ? answers().front() : "not one answer";
    }
};

TEST_F(GetLstaGnss, TruncatesTheValueTowardZero)
{
    open();
    EXPECT_EQ(answerFor(1, 2.9), "answer(0, true, 2)");
    EXPECT_EQ(answerFor(1, -2.9), "answer(0, true, -2)");
    EXPECT_EQ(answerFor(1, 0.999), "answer(0, true, 0)");
    EXPECT_EQ(answerFor(1, -0.999), "answer(0, true, 0)");
    EXPECT_EQ(answerFor(1, 2147483647.0), "answer(0, true, 2147483647)");
    EXPECT_EQ(answerFor(1, -2147483648.0), "answer(0, true, -2147483648)");
}

TEST_F(GetLstaGnss, AnswersSomethingForValuesThatNoIntHolds)
{
    open();
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(answerFor(0, 1e30), "answer(0, false, 2147483647)");
    EXPECT_EQ(answerFor(0, -kInfinity), "answer(0, false, -2147483648)");
    EXPECT_EQ(answerFor(0, std::numeric_limits<double>::quiet_NaN()), "answer(0, false, 0)");
}

TEST_F(GetLstaGnss, TakesEveryStatusButZeroAsTrue)
{
    open();
    EXPECT_EQ(answerFor(0, 1), "answer(0, false, 1)");
    EXPECT_EQ(answerFor(1, 1), "answer(0, true, 1)");
    EXPECT_EQ(answerFor(2, 1), "answer(0, true, 1)");
    EXPECT_EQ(answerFor(-1, 1), "answer(0, true, 1)");
    EXPECT_EQ(answerFor(256, 1), "answer(0, true, 1)");
}

TEST_F(GetLstaGnss, ReportsAWrongIndicatorAsASuccessfulCall)
{
    open();
    arcsim::answerNext(Function::CurrentLSTA, {record(lstaInfo(1000, 1, 5))});
    query();
    EXPECT_THAT(journal.texts(), ElementsAre(resultLine(15, kQuery, 0),
                                             "4 KelArc::operator().1093: Received wrong indicator 1000 from "
                                             "'ARC_CurrentLSTA(\"12\")', expected 12",
                                             "answer(0, false, 0)"));
}

TEST_F(GetLstaGnss, StartsWithAnEmptyRecord)
{
    open();
    arcsim::answerNext(Function::CurrentLSTA, {{}});
    query();
    EXPECT_THAT(journal.texts().at(1), ::testing::HasSubstr("Received wrong indicator 0 from"));
}

TEST_F(GetLstaGnss, KeepsWhatAFailedAttemptWrote)
{
    open();
    arcsim::answerNext(Function::CurrentLSTA, {record(lstaInfo(1002, 1, 9), 2), {}});
    query();
    EXPECT_THAT(answers(), ElementsAre("answer(0, true, 9)"));
}

TEST_F(GetLstaGnss, AnswersFalseAnd0WhenItGivesUpWhateverWasWritten)
{
    open();
    arcsim::answerAlways(Function::CurrentLSTA, record(lstaInfo(1002, 1, 9), 16));
    query();
    EXPECT_EQ(callCount(Function::CurrentLSTA), 15U);
    EXPECT_EQ(lines().back(), gaveUpLine(4, 1054, kQuery));
    EXPECT_THAT(answers(), ElementsAre("answer(16, false, 0)"));
}

TEST_F(GetLstaGnss, EndsSilentlyBeforeOpen)
{
    query();
    EXPECT_THAT(journal.texts(), IsEmpty());
    EXPECT_THAT(arcsim::calls(), IsEmpty());
}

TEST_F(GetLstaGnss, EndsSilentlyWhenCancelledBetweenAttempts)
{
    open();
    failTimes(Function::CurrentLSTA, 15, 2);
    duringPause(1, [this] { kelarc().stopGNSS([](int) {}); });
    query();
    EXPECT_EQ(callCount(Function::CurrentLSTA), 1U);
    EXPECT_THAT(answers(), IsEmpty());
}

TEST_F(GetLstaGnss, EndsSilentlyWhenCancelledDuringASuccessfulCall)
{
    open();
    arcsim::Answer cancelled = record(lstaInfo(1002, 1, 9));
    cancelled.during = [this] { cancel(); };
    arcsim::answerNext(Function::CurrentLSTA, {cancelled});
    query();
    EXPECT_THAT(journal.texts(), ElementsAre(resultLine(15, kQuery, 0), resultLine(15, "ARC_Close()", 0)));
}

TEST_F(GetLstaGnss, EndsWithoutTheWrongIndicatorLineWhenCancelledDuringTheCall)
{
    open();
    arcsim::Answer cancelled = record(lstaInfo(1000, 1, 9));
    cancelled.during = [this] { cancel(); };
    arcsim::answerNext(Function::CurrentLSTA, {cancelled});
    query();
    EXPECT_THAT(journal.texts(), ElementsAre(resultLine(15, kQuery, 0), resultLine(15, "ARC_Close()", 0)));
}

TEST_F(GetLstaGnss, RefusesAnUnknownTechnologyAndLeavesTheCallersFunction)
{
    std::function<void(int, bool, int)> callback = answer();
    kelarc().getLstaGnss(TECH{5}, std::move(callback));
    EXPECT_TRUE(callback);
    EXPECT_THAT(journal.texts(),
                ElementsAre("4 KelArc::getLstaGnss.1021: Unknown/unsupported tech id 5", "answer(14, false, 0)"));
    EXPECT_EQ(kelarc().getPendingTasks(), 0U);
}

class SetLstaGnssStatus : public support::KelArcTest
{
protected:
    void enable(std::function<void(TYPE, int, double)> lstaCallback)
    {
        kelarc().setLstaGnssStatus(TECH{3}, true, 5, std::move(lstaCallback), answer());
    }

    /// Lets LSTA notifications through.
    void acceptEvents()
    {
        kelarc().setNotificationCB([](NOTIFY_ID, void*, int) {});
        settle();
        journal.clear();
    }

    static void notify(int indicator)
    {
        LstaInfo info = lstaInfo(indicator, 1, 0.5);
        ASSERT_TRUE(arcsim::deliverEvent(34, &info, sizeof info));
    }
};

TEST_F(SetLstaGnssStatus, AnswersNothingOnSuccess)
{
    open();
    acceptEvents();
    script(Function::EnableLSTA, {0});
    enable(event());
    settle();
    EXPECT_THAT(journal.texts(), ElementsAre(resultLine(15, kEnable, 0)));
    notify(1002);
    EXPECT_THAT(events(), ElementsAre("event(9, 1, 0.500000)"));
}

TEST_F(SetLstaGnssStatus, AnswersTheLastCodeAfterFifteenFailures)
{
    open();
    failTimes(Function::EnableLSTA, 15, 24);
    enable(event());
    settle();
    EXPECT_EQ(callCount(Function::EnableLSTA), 15U);
    EXPECT_EQ(lines().back(), gaveUpLine(4, 1157, kEnable));
    EXPECT_THAT(answers(), ElementsAre("answer(24)"));
    EXPECT_EQ(journal.entries(support::Kind::answer).at(0).thread, workerThread());
}

TEST_F(SetLstaGnssStatus, AnswersNothingWhenAnAttemptAfterFailuresSucceeds)
{
    open();
    failTimes(Function::EnableLSTA, 14, 24);
    enable(event());
    settle();
    EXPECT_EQ(callCount(Function::EnableLSTA), 15U);
    EXPECT_THAT(answers(), IsEmpty());
}

TEST_F(SetLstaGnssStatus, EndsSilentlyBeforeOpenButInstallsTheCallback)
{
    acceptEvents();
    enable(event());
    settle();
    EXPECT_THAT(journal.texts(), IsEmpty());
    EXPECT_EQ(callCount(Function::EnableLSTA), 0U);
    notify(1002);
    EXPECT_THAT(events(), ElementsAre("event(9, 1, 0.500000)"));
}

TEST_F(SetLstaGnssStatus, EndsSilentlyWhenCancelled)
{
    open();
    failTimes(Function::EnableLSTA, 15, 2);
    duringPause(3, [this] { kelarc().stopGNSS([](int) {}); });
    enable(event());
    settle();
    EXPECT_EQ(callCount(Function::EnableLSTA), 3U);
    EXPECT_THAT(answers(), IsEmpty());
}

TEST_F(SetLstaGnssStatus, EndsSilentlyWhenCancelledInTheLastPause)
{
    open();
    failTimes(Function::EnableLSTA, 15, 2);
    duringPause(15, [this] { cancel(); });
    enable(event());
    settle();
    EXPECT_THAT(answers(), IsEmpty());
    EXPECT_EQ(lines().back(), resultLine(15, "ARC_Close()", 0));
    EXPECT_EQ(lines().at(lines().size() - 2), resultLine(0, kEnable, 2));
}

TEST_F(SetLstaGnssStatus, InstallsTheCallbackBeforeItsTaskRuns)
{
    open();
    acceptEvents();
    const support::Gate gate = holdWorker();
    enable(event());
    notify(1002);
    EXPECT_THAT(events(), ElementsAre("event(9, 1, 0.500000)"));
}

TEST_F(SetLstaGnssStatus, ReplacesTheCallbackAlsoWhenItDisables)
{
    open();
    acceptEvents();
    enable(event("old"));
    kelarc().setLstaGnssStatus(TECH{3}, false, 0, event("new"), answer());
    settle();
    notify(1002);
    EXPECT_THAT(events(), ElementsAre("new(9, 1, 0.500000)"));
}

TEST_F(SetLstaGnssStatus, KeepsTheCallbackWhenItFails)
{
    open();
    acceptEvents();
    failTimes(Function::EnableLSTA, 15, 2);
    enable(event());
    settle();
    notify(1002);
    EXPECT_THAT(events(), ElementsAre("event(9, 1, 0.500000)"));
}

TEST_F(SetLstaGnssStatus, RemovesTheCallbackWithAnEmptyOne)
{
    open();
    acceptEvents();
    enable(event());
    enable(nullptr);
    settle();
    journal.clear();
    notify(1002);
    EXPECT_THAT(journal.texts(),
                ElementsAre("4 KelArc::notifyLsta.1302: No callback defined for BeiDou LSTA notifications!"));
}

TEST_F(SetLstaGnssStatus, TakesBothFunctionsFromTheCaller)
{
    open();
    std::function<void(TYPE, int, double)> lstaCallback = event();
    std::function<void(int)> resultCallback = answer();
    kelarc().setLstaGnssStatus(TECH{1}, true, 0, std::move(lstaCallback), std::move(resultCallback));
    EXPECT_FALSE(lstaCallback);
    EXPECT_FALSE(resultCallback);
    settle();
}

TEST_F(SetLstaGnssStatus, RefusesAnUnknownTechnologyAndTouchesNoCallback)
{
    open();
    acceptEvents();
    for (const int tech : {1, 2, 3, 4})
        kelarc().setLstaGnssStatus(TECH{tech}, true, 0, event("old"), answer());
    settle();
    journal.clear();
    std::function<void(TYPE, int, double)> lstaCallback = event("new");
    std::function<void(int)> resultCallback = answer();
    for (const int tech : {0, 5})
        kelarc().setLstaGnssStatus(TECH{tech}, true, 0, std::move(lstaCallback), std::move(resultCallback));
    EXPECT_TRUE(lstaCallback);
    EXPECT_TRUE(resultCallback);
    EXPECT_THAT(journal.texts(),
                ElementsAre("4 KelArc::setLstaGnssStatus.1129: Unknown/unsupported tech id 0", "answer(14)",
                            "4 KelArc::setLstaGnssStatus.1129: Unknown/unsupported tech id 5", "answer(14)"));
    for (const int indicator : {1000, 1001, 1002, 1003})
        notify(indicator);
    EXPECT_THAT(events(), ElementsAre("old(7, 1, 0.500000)", "old(8, 1, 0.500000)", "old(9, 1, 0.500000)",
                                      "old(10, 1, 0.500000)"));
}

}  // namespace
