#include "coroutine/CoroutineTest.h"

#include <future>

namespace {

namespace async = kelarc::async;
using async::Timer;
using kelarc::KelArc;
using std::chrono::milliseconds;
using support::Function;
using support::Gate;
using support::Kind;
using ::testing::ElementsAre;

class ALimitedCoroutine : public CoroutineTest
{
protected:
    /// Returns when the timer's thread has come to a late request that is still being made, and has fallen asleep over
    /// it. Nobody can see the latter: without it a test sees less, but does not fail.
    void awaitSleepingTimer()
    {
        while (timer->pending() != 0)
            std::this_thread::yield();
        std::promise<void> never;
        never.get_future().wait_for(milliseconds(30));
    }
};

TEST_F(ALimitedCoroutine, GoesOnOnTheTimersThread)
{
    open();
    start([this] { return async::answer(kelarc(), timer->within(kLong), &KelArc::resetAGNSS); });
    ASSERT_TRUE(journal.waitFor(Kind::event, 1));
    start([this] { return async::answer(kelarc(), timer->within(kLong), &KelArc::setMinElevation, 46); });
    ASSERT_TRUE(journal.waitFor(Kind::event, 2));
    start([this] { return async::answer(kelarc(), timer->within(kLong), &KelArc::open); });
    ASSERT_TRUE(journal.waitFor(Kind::event, 3));
    EXPECT_THAT(events(), ElementsAre("answer(0)", "answer(14, false)", "dropped"));
    EXPECT_NE(threadOfEvent(0), workerThread());
    EXPECT_NE(threadOfEvent(0), std::this_thread::get_id());
    EXPECT_EQ(threadOfEvent(1), threadOfEvent(0));
    EXPECT_EQ(threadOfEvent(2), threadOfEvent(0));
    EXPECT_EQ(timer->pending(), 0U);
}

TEST_F(ALimitedCoroutine, IsToldThatItsLimitHasPassed)
{
    const Gate gate = holdWorker();
    start([this] { return async::answer(kelarc(), timer->within(milliseconds(10)), &KelArc::resetAGNSS); });
    ASSERT_TRUE(journal.waitFor(Kind::event, 1));
    EXPECT_THAT(events(), ElementsAre("late"));
    EXPECT_NE(threadOfEvent(0), workerThread());
    EXPECT_NE(threadOfEvent(0), std::this_thread::get_id());
    gate.open();
    settle();
    EXPECT_EQ(events().size(), 1U);  // the late answer resumes nothing
}

TEST_F(ALimitedCoroutine, GoesOnOutsideTheDestructor)
{
    open();
    {
        const Gate gate = holdWorker();
        for (int i = 0; i < 100; ++i)
            start([this] { return async::answer(kelarc(), timer->within(kLong), &KelArc::resetAGNSS); });
    }
    destroyAsScripted();
    ASSERT_TRUE(journal.waitFor(Kind::event, 100));
    const auto entries = journal.entries(Kind::event);
    for (const auto& entry : entries)
        EXPECT_EQ(entry.thread, entries.front().thread);
    EXPECT_NE(entries.front().thread, std::this_thread::get_id());
}

Job ownAnObject(Timer& timer, support::Journal& journal)
{
    {
        KelArc modem(journal.logCallback());
        const Timer::Limit limit = timer.within(kLong);
        co_await async::answer(modem, limit, &KelArc::open);
        co_await async::answer(modem, limit, &KelArc::close);
    }
    journal.add(Kind::event, "destroyed");
}

TEST_F(ALimitedCoroutine, MayOwnTheObject)
{
    destroy();
    ownAnObject(*timer, journal);
    ASSERT_TRUE(journal.waitFor(Kind::event, 1));
    EXPECT_THAT(events(), ElementsAre("destroyed"));
}

Job reportWhatIsThrown(KelArc& modem, Timer::Limit limit, support::Journal& journal)
{
    try {
        co_await async::answer(modem, limit, &KelArc::stopGNSS);
    } catch (const std::runtime_error& error) {
        journal.add(Kind::event, error.what());
    }
}

TEST_F(ALimitedCoroutine, ReceivesWhatTheOperationThrowsAlthoughTheLimitHasPassed)
{
    KelArc loud([this](int, const char*) {
        awaitSleepingTimer();
        throw std::runtime_error("the log is full");
    });
    reportWhatIsThrown(loud, timer->within(milliseconds(0)), journal);
    EXPECT_THAT(events(), ElementsAre("the log is full"));
    timer.reset();  // whose thread was woken
}

TEST_F(ALimitedCoroutine, IsToldOfALimitThatPassesWhileTheRequestIsMade)
{
    KelArc slow([this](int, const char*) { awaitSleepingTimer(); });
    const Gate gate;
    arcsim::Answer held;
    held.during = gate.holder();  // so that only the limit can end the request
    arcsim::answerNext(Function::StopGNSS, {held});
    start([&] { return async::answer(slow, timer->within(milliseconds(0)), &KelArc::stopGNSS); });
    ASSERT_TRUE(journal.waitFor(Kind::event, 1));
    EXPECT_THAT(events(), ElementsAre("late"));
    EXPECT_NE(threadOfEvent(0), std::this_thread::get_id());
}

Job waitForAFuture(KelArc& modem, Timer& timer, support::Journal& journal)
{
    co_await async::answer(modem, timer.within(kLong), &KelArc::resetAGNSS);
    journal.add(Kind::event, outcome::of(kelarc::async::request(modem, &KelArc::resetAGNSS)));
}

TEST_F(ALimitedCoroutine, MayWaitForOtherRequests)
{
    open();
    waitForAFuture(kelarc(), *timer, journal);
    ASSERT_TRUE(journal.waitFor(Kind::event, 1));
    EXPECT_THAT(events(), ElementsAre("answer(0)"));
}

TEST_F(ALimitedCoroutine, GoesOnOnTheWorkersThreadWhenItsTimerIsGone)
{
    open();
    const Gate gate = holdWorker();
    const Timer::Limit limit = timer->within(milliseconds(1));
    start([this] { return async::answer(kelarc(), timer->within(kLong), &KelArc::resetAGNSS); });
    timer.reset();
    start([this, &limit] { return async::answer(kelarc(), limit, &KelArc::resetAGNSS); });
    start([this, &limit] { return async::answer(kelarc(), limit, &KelArc::open); });
    EXPECT_THAT(events(), ElementsAre("dropped"));
    gate.open();
    ASSERT_TRUE(journal.waitFor(Kind::event, 3));
    EXPECT_THAT(events(), ElementsAre("dropped", "answer(0)", "answer(0)"));
    EXPECT_EQ(threadOfEvent(1), workerThread());
}

TEST_F(ALimitedCoroutine, IsResumedOnceWhateverEndsItsRequestFirst)
{
    for (int round = 0; round < 60; ++round) {
        restart();
        open();
        arcsim::Answer slow;
        slow.latency = milliseconds(1);
        arcsim::answerAlways(Function::ResetAGNSS, slow);
        for (int i = 0; i < 8; ++i) {
            start([this] { return async::answer(kelarc(), &KelArc::resetAGNSS); });
            start([this, i] { return async::answer(kelarc(), timer->within(milliseconds(i)), &KelArc::resetAGNSS); });
        }
        // So that the destruction comes at different moments.
        ASSERT_TRUE(arcsim::waitForCalls(Function::ResetAGNSS, static_cast<unsigned>(round % 5)));
        destroyAsScripted();
        ASSERT_TRUE(journal.waitFor(Kind::event, 16)) << round;
        EXPECT_EQ(timer->pending(), 0U) << round;
        EXPECT_EQ(events().size(), 16U) << round;
    }
}

}  // namespace
