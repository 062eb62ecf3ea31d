#include "support/KelArcTest.h"

namespace {

using support::Function;
using support::Kind;
using support::kPause;
using support::resultLine;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr const char* kSetMethod = "ARC_SetNotificationMethod(ARC_NOTIFY_METHOD_SINGLETHREAD)";

class Construction : public support::KelArcTest
{
};

TEST_F(Construction, TouchesNoModemAndLogsNothing)
{
    settle();
    EXPECT_FALSE(kelarc().isOpen());
    EXPECT_THAT(arcsim::calls(), IsEmpty());
    EXPECT_THAT(journal.texts(), IsEmpty());
}

TEST_F(Construction, TakesTheLogCallbackFromTheCaller)
{
    std::function<void(int, const char*)> log = journal.logCallback();
    const kelarc::KelArc other(std::move(log));
    EXPECT_FALSE(log);
}

TEST_F(Construction, StartsAWorkerNamedAfterTheQueue)
{
    std::string name;
    kelarc().getArcVersion([&](int, std::string&&) {
        char text[16] = {};
        pthread_getname_np(pthread_self(), text, sizeof text);
        name = text;
    });
    settle();
    EXPECT_THAT(name, ::testing::MatchesRegex("Task Queue : [0-9]"));
}

class Open : public support::KelArcTest
{
};

TEST_F(Open, SetsTheNotificationMethodThenOpensThenAnswers)
{
    kelarc().open(answer());
    settle();
    EXPECT_THAT(journal.texts(),
                ElementsAre(resultLine(15, kSetMethod, 0), resultLine(-1, "ARC_Open()", 0), "answer(0)"));
    EXPECT_THAT(support::KelArcTest::lastArguments(Function::SetNotificationMethod), ElementsAre("1"));
    EXPECT_TRUE(kelarc().isOpen());
}

TEST_F(Open, GoesOnWhenTheNotificationMethodCannotBeSet)
{
    failTimes(Function::SetNotificationMethod, 15, 13);
    kelarc().open(answer());
    settle();
    EXPECT_THAT(lines(), Contains(support::gaveUpLine(4, 135, kSetMethod)));
    EXPECT_THAT(answers(), ElementsAre("answer(0)"));
    EXPECT_TRUE(kelarc().isOpen());
}

TEST_F(Open, IsRepeatedUntilItSucceeds)
{
    failTimes(Function::Open, 40, 31);
    kelarc().open(answer());
    settle();
    EXPECT_EQ(callCount(Function::Open), 41U);
    EXPECT_THAT(answers(), ElementsAre("answer(0)"));
}

TEST_F(Open, IsNotOpenUntilAnAttemptHasSucceeded)
{
    failTimes(Function::Open, 1, 31);
    bool openInPause = true;
    duringPause(1, [&] { openInPause = kelarc().isOpen(); });
    bool openInAnswer = false;
    kelarc().open([&](int) { openInAnswer = kelarc().isOpen(); });
    settle();
    EXPECT_FALSE(openInPause);
    EXPECT_TRUE(openInAnswer);
}

TEST_F(Open, IsNotOpenWhileTheRequestWaits)
{
    const support::Gate gate = holdWorker();
    kelarc().open(answer());
    EXPECT_FALSE(kelarc().isOpen());
}

TEST_F(Open, IsActiveByTheTimeOfTheAnswer)
{
    kelarc().open([this](int) { kelarc().ATcmd("AT", answer()); });
    ASSERT_TRUE(journal.waitFor(Kind::answer, 1));
    EXPECT_THAT(answers(), ElementsAre("answer(0, '<UNKNOWN>')"));
}

TEST_F(Open, ACloseFromInsideTheAnswerIsNotUndone)
{
    kelarc().open([this](int) {
        cancel();
        kelarc().ATcmd("AT", answer());
    });
    ASSERT_TRUE(journal.waitFor(Kind::answer, 1));
    EXPECT_THAT(answers(), ElementsAre("answer(32, '<UNKNOWN>')"));
}

TEST_F(Open, IsNotActiveWhileTheOpenTaskRuns)
{
    failTimes(Function::Open, 1, 31);
    // A request that is accepted here is a second pair of tasks: an active object would refuse it.
    duringPause(1, [this] { kelarc().open(answer("second")); });
    kelarc().open(answer("first"));
    settle();
    EXPECT_THAT(answers(), ElementsAre("first(0)", "second(32)"));
}

TEST_F(Open, TwiceBeforeTheFirstRanAnswers0Then32)
{
    {
        const support::Gate gate = holdWorker();
        kelarc().open(answer("first"));
        kelarc().open(answer("second"));
        EXPECT_EQ(kelarc().getPendingTasks(), 4U);
    }
    settle();
    EXPECT_THAT(answers(), ElementsAre("first(0)", "second(32)"));
    EXPECT_EQ(callCount(Function::SetNotificationMethod), 2U);
    EXPECT_EQ(callCount(Function::Open), 1U);
    EXPECT_TRUE(kelarc().isOpen());
}

TEST_F(Open, TheSecondOpenTaskMakesTheObjectActiveAgain)
{
    {
        const support::Gate gate = holdWorker();
        kelarc().open([this](int) { cancel(); });  // inactive after the first pair; queues a close behind the second
        kelarc().open(answer());
        kelarc().ATcmd("AT", answer("command"));
    }
    settle();
    EXPECT_THAT(answers(), ElementsAre("answer(32)", "command(0, '<UNKNOWN>')"));
}

TEST_F(Open, DoesNothingWhenTheObjectIsOpen)
{
    open();
    kelarc().open(answer());
    EXPECT_EQ(kelarc().getPendingTasks(), 0U);
    settle();
    EXPECT_THAT(journal.texts(), IsEmpty());
    EXPECT_EQ(callCount(Function::Open), 1U);
}

TEST_F(Open, DoesNothingWhileTheObjectIsOpenButInactive)
{
    open();
    const support::Gate gate = holdWorker();
    kelarc().stopGNSS([](int) {});
    kelarc().open(answer());
    EXPECT_EQ(kelarc().getPendingTasks(), 1U);
}

TEST_F(Open, DoesNothingAfterAStopHasMadeAClosedObjectActive)
{
    activateWhileClosed();
    kelarc().open(answer());
    EXPECT_EQ(kelarc().getPendingTasks(), 0U);
    settle();
    EXPECT_THAT(answers(), IsEmpty());
    EXPECT_EQ(callCount(Function::Open), 0U);
}

TEST_F(Open, WorksAgainAfterCloseHasEndedThatActivity)
{
    activateWhileClosed();
    kelarc().close(answer("close"));
    kelarc().open(answer());
    settle();
    EXPECT_THAT(answers(), ElementsAre("answer(0)"));
}

TEST_F(Open, CopiesTheCallersFunctionAlsoWhenItRefuses)
{
    std::function<void(int)> callback = answer();
    kelarc().open(std::move(callback));
    EXPECT_TRUE(callback);
    settle();
    kelarc().open(std::move(callback));
    EXPECT_TRUE(callback);
}

TEST_F(Open, BothTasksOwnACopyOfTheCallback)
{
    const auto witness = std::make_shared<int>();
    const support::Gate gate = holdWorker();
    kelarc().open(answer().holding(witness));
    EXPECT_EQ(witness.use_count(), 3);
}

TEST_F(Open, AnswersOnTheWorkerThread)
{
    kelarc().open(answer());
    settle();
    EXPECT_EQ(journal.entries(Kind::answer).at(0).thread, workerThread());
    EXPECT_NE(workerThread(), std::this_thread::get_id());
}

class Close : public support::KelArcTest
{
};

TEST_F(Close, ClosesAndAnswers)
{
    open();
    kelarc().close(answer());
    settle();
    EXPECT_THAT(journal.texts(), ElementsAre(resultLine(15, "ARC_Close()", 0), "answer(0)"));
    EXPECT_FALSE(kelarc().isOpen());
    EXPECT_FALSE(arcsim::isOpen());
}

TEST_F(Close, DoesNothingOnANeverOpenedObject)
{
    kelarc().close(answer());
    EXPECT_EQ(kelarc().getPendingTasks(), 0U);
    settle();
    EXPECT_THAT(journal.texts(), IsEmpty());
    EXPECT_THAT(arcsim::calls(), IsEmpty());
}

TEST_F(Close, NeedsNoCallback)
{
    open();
    kelarc().close();
    settle();
    EXPECT_FALSE(kelarc().isOpen());
    EXPECT_THAT(journal.texts(), ElementsAre(resultLine(15, "ARC_Close()", 0)));
}

TEST_F(Close, StaysOpenUntilItsTaskHasRun)
{
    open();
    const support::Gate gate = holdWorker();
    kelarc().close(answer());
    EXPECT_TRUE(kelarc().isOpen());
}

TEST_F(Close, MakesTheObjectInactiveAtOnce)
{
    open();
    {
        const support::Gate gate = holdWorker();
        kelarc().ATcmd("AT", answer("command"));
        kelarc().close(answer("close"));
    }
    settle();
    EXPECT_THAT(answers(), ElementsAre("command(32, '<UNKNOWN>')", "close(0)"));
}

TEST_F(Close, IsClosedByTheTimeOfTheAnswer)
{
    open();
    bool openInAnswer = true;
    kelarc().close([&](int) { openInAnswer = kelarc().isOpen(); });
    settle();
    EXPECT_FALSE(openInAnswer);
}

TEST_F(Close, CountsAsClosedAfterFifteenFailuresWithoutAGiveUpLine)
{
    open();
    failTimes(Function::Close, 20, 2);
    bool openInLastPause = false;
    duringPause(15, [&] { openInLastPause = kelarc().isOpen(); });
    kelarc().close(answer());
    settle();
    EXPECT_TRUE(openInLastPause);
    EXPECT_FALSE(kelarc().isOpen());
    EXPECT_EQ(callCount(Function::Close), 15U);
    EXPECT_THAT(answers(), ElementsAre("answer(2)"));
    EXPECT_THAT(lines(), Not(Contains(::testing::HasSubstr("after 15 retries"))));
}

TEST_F(Close, TwiceBeforeTheFirstRanAnswers32TheSecondTime)
{
    open();
    {
        const support::Gate gate = holdWorker();
        kelarc().close(answer("first"));
        kelarc().close(answer("second"));
    }
    settle();
    EXPECT_THAT(answers(), ElementsAre("first(0)", "second(32)"));
    EXPECT_EQ(callCount(Function::Close), 1U);
}

TEST_F(Close, AllowsOpeningAgain)
{
    open();
    close();
    kelarc().open(answer());
    settle();
    EXPECT_THAT(answers(), ElementsAre("answer(0)"));
    EXPECT_TRUE(kelarc().isOpen());
    EXPECT_EQ(callCount(Function::Open), 2U);
}

TEST_F(Close, EndsARetryingCommandThenRuns)
{
    open();
    failTimes(Function::AtcTunneling, 15, 12);
    duringPause(3, [this] { kelarc().close(answer("close")); });
    kelarc().ATcmd("ATD", answer("command"));
    settle();
    const std::string call = "ARC_AtcTunneling(\"ATD\")";
    EXPECT_THAT(journal.texts(), ElementsAre(resultLine(14, call, 12), kPause, resultLine(13, call, 12), kPause,
                                             resultLine(12, call, 12), kPause, "command(12, '<UNKNOWN>')",
                                             resultLine(15, "ARC_Close()", 0), "close(0)"));
}

}  // namespace
