#include "support/KelArcTest.h"

namespace {

using support::Function;
using support::gaveUpLine;
using support::Kind;
using support::kPause;
using support::reply;
using support::resultLine;
using support::Strings;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr const char* kStart = "ARC_StartGNSSraw()";
constexpr const char* kStop = "ARC_StopGNSS()";
constexpr const char* kNotice = "2 KelArc::stopGNSS.600: stopGNSS called, cancelling current ARC tasks";

class StartRawGnss : public support::KelArcTest
{
protected:
    void notifyUser()
    {
        kelarc().setNotificationCB(event());
        settle();
        journal.clear();
    }

    void start()
    {
        kelarc().startRawGNSS(answer());
        settle();
    }
};

TEST_F(StartRawGnss, AnswersTheModemsText)
{
    open();
    arcsim::answerNext(Function::StartGNSSraw, {reply("/dev/pts/7")});
    start();
    EXPECT_THAT(journal.texts(), ElementsAre(resultLine(-1, kStart, 0), "answer(0, '/dev/pts/7')"));
    EXPECT_THAT(lastArguments(Function::StartGNSSraw), ElementsAre("set", "254"));
}

TEST_F(StartRawGnss, DeliversATextThatFillsTheBufferWhole)
{
    open();
    const std::string full(254, 't');
    arcsim::Answer unterminated = reply(full);
    unterminated.terminated = false;
    arcsim::answerNext(Function::StartGNSSraw, {unterminated});
    start();
    EXPECT_THAT(answers(), ElementsAre("answer(0, '" + full + "')"));
}

TEST_F(StartRawGnss, DoesNotClearTheTextBetweenAttempts)
{
    open();
    arcsim::Answer shorter = reply("xy");
    shorter.terminated = false;
    arcsim::answerNext(Function::StartGNSSraw, {reply("abcdef", 3), shorter});
    start();
    EXPECT_THAT(answers(), ElementsAre("answer(0, 'xycdef')"));
}

TEST_F(StartRawGnss, StartsEachRequestWithAnEmptyText)
{
    open();
    arcsim::answerNext(Function::StartGNSSraw, {reply("abcdef"), {}});
    start();
    start();
    EXPECT_THAT(answers(), ElementsAre("answer(0, 'abcdef')", "answer(0, '')"));
}

TEST_F(StartRawGnss, NotifiesTheEndBeforeTheAnswer)
{
    open();
    notifyUser();
    arcsim::answerNext(Function::StartGNSSraw, {reply("path")});
    start();
    EXPECT_THAT(journal.texts(), ElementsAre(resultLine(-1, kStart, 0), "event(7, null, 0)", "answer(0, 'path')"));
    EXPECT_EQ(journal.entries(Kind::event).at(0).thread, workerThread());
}

TEST_F(StartRawGnss, NotifiesTheEndAndAnswers32BeforeOpen)
{
    notifyUser();
    start();
    EXPECT_THAT(journal.texts(), ElementsAre("event(7, null, 0)", "answer(32, '')"));
    EXPECT_EQ(callCount(Function::StartGNSSraw), 0U);
}

TEST_F(StartRawGnss, Answers32BeforeOpenWithoutANotificationCallback)
{
    start();
    EXPECT_THAT(journal.texts(), ElementsAre("answer(32, '')"));
}

TEST_F(StartRawGnss, IsRepeatedWithoutLimit)
{
    open();
    failTimes(Function::StartGNSSraw, 50, 3);
    start();
    Strings expected(50, resultLine(-1, kStart, 3));
    expected.push_back(resultLine(-1, kStart, 0));
    EXPECT_EQ(lines(), expected);
    EXPECT_EQ(support::pauses::count(), 50U);
    EXPECT_THAT(answers(), ElementsAre("answer(0, '')"));
}

TEST_F(StartRawGnss, IsEndedByAStopAfterItsAttemptAndItsPause)
{
    open();
    notifyUser();
    arcsim::answerAlways(Function::StartGNSSraw, reply("partial", 3));
    duringPause(2, [this] { kelarc().stopGNSS(answer("stop")); });
    start();
    EXPECT_THAT(journal.texts(),
                ElementsAre(resultLine(-1, kStart, 3), kPause, resultLine(-1, kStart, 3), kPause, kNotice,
                            "event(7, null, 0)", "answer(3, 'partial')", resultLine(15, kStop, 0), "stop(0)"));
}

TEST_F(StartRawGnss, NotifiesTheCallbackThatIsSetByThen)
{
    open();
    failTimes(Function::StartGNSSraw, 1, 3);
    duringPause(1, [this] { kelarc().setNotificationCB(event("late")); });
    start();
    EXPECT_THAT(events(), ElementsAre("late(7, null, 0)"));
}

class StopGnss : public support::KelArcTest
{
};

TEST_F(StopGnss, AnnouncesItselfOnTheCallersThreadThenStops)
{
    open();
    kelarc().stopGNSS(answer());
    settle();
    EXPECT_THAT(journal.texts(), ElementsAre(kNotice, resultLine(15, kStop, 0), "answer(0)"));
    EXPECT_EQ(journal.entries(Kind::line).at(0).thread, std::this_thread::get_id());
    EXPECT_EQ(journal.entries(Kind::line).at(1).thread, workerThread());
}

TEST_F(StopGnss, IsAnnouncedWhileTheWorkerIsBusyAndBeforeItsTaskIsQueued)
{
    open();
    const support::Gate gate = holdWorker();
    std::uint32_t waitingAtNotice = 99;
    std::unique_ptr<kelarc::KelArc> object;
    object = std::make_unique<kelarc::KelArc>([&](int, const char* line) {
        if (std::string(line).find("stopGNSS.600") != std::string::npos)
            waitingAtNotice = object->getPendingTasks() + object->getRunningTaskId();
    });
    object->stopGNSS([](int) {});
    EXPECT_EQ(waitingAtNotice, 0U);
    object.reset();
}

TEST_F(StopGnss, GivesUpWithALevelFiveLineAfterFifteenFailures)
{
    open();
    failTimes(Function::StopGNSS, 15, 28);
    kelarc().stopGNSS(answer());
    settle();
    EXPECT_EQ(callCount(Function::StopGNSS), 15U);
    EXPECT_EQ(lines().back(), gaveUpLine(5, 625, kStop));
    EXPECT_THAT(answers(), ElementsAre("answer(28)"));
}

TEST_F(StopGnss, LetsRequestsThatNeedOpenAndWaitBeforeItGiveUp)
{
    open();
    {
        const support::Gate gate = holdWorker();
        kelarc().startRawGNSS(answer("raw"));
        kelarc().ATcmd("AT", answer("command"));
        kelarc().getSbasStatus(answer("sbas"));
        kelarc().setSbasStatus(true, answer("set"));
        kelarc().getLstaGnss(kelarc::lsta::TECH{1}, answer("query"));
        kelarc().setLstaGnssStatus(kelarc::lsta::TECH{1}, true, 0, nullptr, answer("enable"));
        kelarc().stopGNSS(answer("stop"));
        kelarc().ATcmd("AT", answer("after"));
    }
    settle();
    EXPECT_THAT(answers(), ElementsAre("raw(32, '')", "command(32, '<UNKNOWN>')", "sbas(32, 0)", "set(32, false)",
                                       "stop(0)", "after(0, '<UNKNOWN>')"));
}

TEST_F(StopGnss, LetsRequestsThatDoNotNeedOpenAndWaitBeforeItRun)
{
    open();
    script(Function::RegisterNotification, {0});
    {
        const support::Gate gate = holdWorker();
        kelarc().forceStopGNSS(answer("force"));
        kelarc().setNotificationCB(event());
        kelarc().getRilVersion(answer("versions"));
        kelarc().stopGNSS(answer("stop"));
    }
    settle();
    EXPECT_THAT(answers(), ElementsAre("force(0)", ::testing::StartsWith("versions(0"), "stop(0)"));
    EXPECT_EQ(callCount(Function::RegisterNotification), 1U);
}

TEST_F(StopGnss, IsActiveFromTheBeginningOfItsTask)
{
    open();
    failTimes(Function::StopGNSS, 2, 2);
    kelarc().stopGNSS(answer());
    settle();
    // An inactive task would have ended after the first failure.
    EXPECT_EQ(callCount(Function::StopGNSS), 3U);
    EXPECT_THAT(answers(), ElementsAre("answer(0)"));
}

TEST_F(StopGnss, EndsAfterTheCurrentAttemptWhenANewerStopIsRequested)
{
    open();
    failTimes(Function::StopGNSS, 2, 2);
    duringPause(2, [this] { kelarc().stopGNSS(answer("second")); });
    kelarc().stopGNSS(answer("first"));
    settle();
    EXPECT_THAT(journal.texts(), ElementsAre(kNotice, resultLine(14, kStop, 2), kPause, resultLine(13, kStop, 2),
                                             kPause, kNotice, "first(2)", resultLine(15, kStop, 0), "second(0)"));
}

TEST_F(StopGnss, GivesUpSilentlyWhenANewerStopFallsIntoTheLastPause)
{
    open();
    failTimes(Function::StopGNSS, 15, 2);
    duringPause(15, [this] { kelarc().stopGNSS(answer("second")); });
    kelarc().stopGNSS(answer("first"));
    settle();
    EXPECT_THAT(answers(), ElementsAre("first(2)", "second(0)"));
    EXPECT_THAT(lines(), Not(Contains(gaveUpLine(5, 625, kStop))));
}

class ForceStopGnss : public support::KelArcTest
{
};

TEST_F(ForceStopGnss, IsRepeatedUntilItSucceedsWhateverIsCancelled)
{
    open();
    failTimes(Function::ForceStopGNSS, 60, 31);
    duringPause(5, [this] { kelarc().stopGNSS(answer("stop")); });
    kelarc().forceStopGNSS(answer("force"));
    settle();
    EXPECT_EQ(callCount(Function::ForceStopGNSS), 61U);
    EXPECT_THAT(answers(), ElementsAre("force(0)", "stop(0)"));
}

TEST_F(ForceStopGnss, KeepsOtherRequestsWaiting)
{
    open();
    failTimes(Function::ForceStopGNSS, 10, 31);
    std::size_t answersMeanwhile = 99;
    duringPause(10, [&] { answersMeanwhile = answers().size(); });
    kelarc().forceStopGNSS(answer("force"));
    kelarc().getArcVersion(answer("version"));
    settle();
    EXPECT_EQ(answersMeanwhile, 0U);
    EXPECT_EQ(answers().size(), 2U);
}

class ResetAgnss : public support::KelArcTest
{
};

TEST_F(ResetAgnss, CountsDownFrom14To0ThenGivesUp)
{
    open();
    failTimes(Function::ResetAGNSS, 15, 2);
    kelarc().resetAGNSS(answer());
    settle();
    Strings expected;
    for (int left = 14; left >= 0; --left) {
        expected.push_back(resultLine(left, "ARC_ResetAGNSS()", 2));
        expected.push_back(kPause);
    }
    expected.push_back("4 KelArc::operator().653: Could not call successfully 'ARC_ResetAGNSS()' after 15 retries");
    expected.push_back("answer(2)");
    EXPECT_EQ(journal.texts(), expected);
}

TEST_F(ResetAgnss, GoesOnWhenCancelledAndGivesUpSilently)
{
    open();
    failTimes(Function::ResetAGNSS, 15, 2);
    duringPause(1, [this] { kelarc().stopGNSS(answer("stop")); });
    kelarc().resetAGNSS(answer("reset"));
    settle();
    EXPECT_EQ(callCount(Function::ResetAGNSS), 15U);
    EXPECT_THAT(answers(), ElementsAre("reset(2)", "stop(0)"));
    EXPECT_THAT(lines(), Not(Contains(gaveUpLine(4, 653, "ARC_ResetAGNSS()"))));
}

TEST_F(ResetAgnss, DoesNotNeedOpen)
{
    failTimes(Function::ResetAGNSS, 1, 2);
    kelarc().resetAGNSS(answer());
    settle();
    EXPECT_THAT(answers(), ElementsAre("answer(0)"));
}

TEST_F(ResetAgnss, NeverAnswersWhileTheModemIsTemporarilyNotAvailable)
{
    open();
    failTimes(Function::ResetAGNSS, 200, 15);
    std::size_t answersMeanwhile = 99;
    duringPause(200, [&] { answersMeanwhile = answers().size(); });
    kelarc().resetAGNSS(answer());
    settle();
    EXPECT_EQ(answersMeanwhile, 0U);
    Strings expected(200, resultLine(15, "ARC_ResetAGNSS()", 15));
    expected.push_back(resultLine(15, "ARC_ResetAGNSS()", 0));
    EXPECT_EQ(lines(), expected);
}

}  // namespace
