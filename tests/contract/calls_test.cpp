#include "contract/CallTest.h"

#include <algorithm>

namespace contract {
namespace {

using support::gaveUpLine;
using support::kPause;
using support::resultLine;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// GetArcVersion has no code of its own: a missing text is 32.
int failureOf(const PublishedCall& call)
{
    return call.function == arcsim::Function::GetArcVersion ? 32 : 2;
}

TEST_P(EveryCall, RunsUnderItsPublishedTaskName)
{
    prepare(GetParam());
    std::string running;
    arcsim::Answer answered = support::success();
    answered.during = [&] { running = kelarc().getRunningTaskName(); };
    arcsim::answerNext(GetParam().function, {answered});
    run(GetParam());
    EXPECT_EQ(running, taskName(GetParam()));
}

TEST_P(EveryCall, WaitsUnderItsPublishedTaskName)
{
    prepare(GetParam());
    const support::Gate gate = holdWorker();
    GetParam().request(kelarc(), answer());
    EXPECT_THAT(kelarc().tasksToString(),
                ::testing::HasSubstr(", name: '" + taskName(GetParam()) + "', isDelayed: false"));
}

TEST_P(EveryCall, LogsItsCallTextOnSuccess)
{
    prepare(GetParam());
    support::KelArcTest::script(GetParam().function, {0});
    run(GetParam());
    EXPECT_THAT(linesOf(GetParam()), ElementsAre(resultLine(GetParam().budget, GetParam().callText, 0)));
    EXPECT_EQ(support::pauses::count(), 0U);
}

TEST_P(EveryCall, AnswersSuccessOnceUnlessItIsPublishedToSayNothing)
{
    prepare(GetParam());
    script(GetParam().function, {0});
    run(GetParam());
    const bool answered = GetParam().answers == Answers::once || GetParam().answers == Answers::unlessCancelled;
    EXPECT_EQ(answers(), answered ? Strings{answerText(GetParam(), 0)} : Strings{});
}

TEST_P(EveryCall, GivesUpAfterFifteenFailuresUnlessItHasNoLimit)
{
    const PublishedCall& call = GetParam();
    prepare(call);
    const int failure = failureOf(call);
    failTimes(call.function, 20, failure);
    run(call);

    const bool bounded = call.budget == 15;
    Strings expected;
    if (bounded) {
        for (int left = 14; left >= 0; --left)
            expected.push_back(resultLine(left, call.callText, failure));
        if (call.tell != Tell::never)
            expected.push_back(gaveUpLine(call.giveUpLevel, call.giveUpLine, call.callText));
    } else {
        for (int attempt = 1; attempt <= 20; ++attempt)
            expected.push_back(resultLine(-1, call.callText, failure));
        expected.push_back(resultLine(-1, call.callText, 0));
    }
    EXPECT_EQ(linesOf(call), expected);
    EXPECT_EQ(support::pauses::count(), bounded ? 15U : 20U);
    const Strings answered{answerText(call, bounded ? failure : 0)};
    EXPECT_EQ(answers(), call.answers == Answers::nothing ? Strings{} : answered);
}

TEST_P(EveryCall, PausesAfterEachFailureAndBeforeItGivesUp)
{
    const PublishedCall& call = GetParam();
    prepare(call);
    const int failure = failureOf(call);
    failTimes(call.function, 15, failure);
    run(call);

    Strings expected;
    for (int attempt = 1; attempt <= 15; ++attempt) {
        expected.push_back(resultLine(call.budget == 15 ? 15 - attempt : -1, call.callText, failure));
        expected.push_back(kPause);
    }
    Strings happened = journal.texts();
    happened.erase(happened.begin(), std::find(happened.begin(), happened.end(), expected.front()));
    ASSERT_GE(happened.size(), expected.size());
    happened.resize(expected.size());
    EXPECT_EQ(happened, expected);
}

TEST_P(EveryCall, PausesOnTheWorkerForAQuarterOfASecondEachTime)
{
    prepare(GetParam());
    failTimes(GetParam().function, 3, failureOf(GetParam()));
    run(GetParam());
    const auto pauses = support::pauses::all();
    ASSERT_EQ(pauses.size(), 3U);
    for (const support::pauses::Pause& pause : pauses) {
        EXPECT_EQ(pause.seconds, 0);
        EXPECT_EQ(pause.nanoseconds, 250'000'000);
        EXPECT_EQ(pause.thread, workerThread());
    }
}

TEST_P(EveryCall, MakesNoAttemptOnAnInactiveObjectWhereThatIsPublished)
{
    const PublishedCall& call = GetParam();
    prepare(call);
    if (!needsClosedObject(call)) {
        // Inactive by the time the task runs, closed only after it.
        const support::Gate gate = holdWorker();
        call.request(kelarc(), answer());
        cancel();
        journal.clear();
        gate.open();
    } else {
        call.request(kelarc(), answer());
    }
    settle();
    if (!call.startTest) {
        EXPECT_THAT(linesOf(call), Contains(resultLine(call.budget, call.callText, 0)));
        return;
    }
    EXPECT_EQ(callCount(call.function), 0U);
    EXPECT_THAT(linesOf(call), IsEmpty());
    EXPECT_EQ(answers(), call.answers == Answers::once ? Strings{answerText(call, 32)} : Strings{});
}

TEST_P(EveryCall, StopsAfterThePauseInWhichTheObjectBecameInactiveWhereThatIsPublished)
{
    const PublishedCall& call = GetParam();
    prepare(call);
    const int failure = failureOf(call);
    failTimes(call.function, 16, failure);
    duringPause(1, [&] { cancel(); });
    run(call);

    if (call.loopTest) {
        EXPECT_THAT(linesOf(call), ElementsAre(resultLine(call.budget == 15 ? 14 : -1, call.callText, failure)));
        EXPECT_EQ(answers(), call.answers == Answers::once ? Strings{answerText(call, failure)} : Strings{});
        return;
    }
    // Goes on as if nothing had happened, and says that it gave up only where the gate is open.
    Strings expected;
    const bool bounded = call.budget == 15;
    for (int attempt = 1; attempt <= (bounded ? 15 : 16); ++attempt)
        expected.push_back(resultLine(bounded ? 15 - attempt : -1, call.callText, failure));
    if (!bounded)
        expected.push_back(resultLine(-1, call.callText, 0));
    if (call.tell == Tell::always)
        expected.push_back(gaveUpLine(call.giveUpLevel, call.giveUpLine, call.callText));
    EXPECT_EQ(linesOf(call), expected);
    const Strings answered{answerText(call, bounded ? failure : 0)};
    EXPECT_EQ(answers(), call.answers == Answers::once ? answered : Strings{});
}

TEST_P(EveryCall, SaysNothingOfGivingUpWhenTheObjectBecameInactiveInTheLastPauseWhereThatIsPublished)
{
    const PublishedCall& call = GetParam();
    prepare(call);
    const int failure = failureOf(call);
    failTimes(call.function, 15, failure);
    duringPause(15, [&] { cancel(); });
    run(call);

    const Strings found = linesOf(call);
    EXPECT_FALSE(found.empty());
    const auto gaveUp = [](const std::string& line) { return line.find("after 15 retries") != std::string::npos; };
    EXPECT_EQ(std::count_if(found.begin(), found.end(), gaveUp), call.tell == Tell::always ? 1 : 0);
    // An answer comes all the same, except from the LSTA tasks.
    EXPECT_EQ(answers().size(), call.answers == Answers::once ? 1U : 0U);
}

TEST_F(CallTest, GiveUpLinesDependOnBeingActiveNotOnBeingOpen)
{
    for (const PublishedCall& call : publishedCalls()) {
        if (call.tell != Tell::ifActive)
            continue;
        restart();
        activateWhileClosed();
        failTimes(call.function, 15, failureOf(call));
        run(call);
        EXPECT_THAT(linesOf(call), Contains(gaveUpLine(call.giveUpLevel, call.giveUpLine, call.callText))) << call;
    }
}

INSTANTIATE_TEST_SUITE_P(Published, EveryCall, ::testing::ValuesIn(publishedCalls()), support::ByName());

TEST(PublishedCalls, AreSixteen)
{
    EXPECT_EQ(publishedCalls().size(), 16U);
}

}  // namespace
}  // namespace contract
