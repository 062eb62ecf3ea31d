#include "async/SlowClock.h"
#include "kelarc/async.h"
#include "kelarc/idle.h"
#include "support/KelArcTest.h"

#include <chrono>

namespace {

using kelarc::async::Opening;
using slow::SlowClock;
using std::chrono::milliseconds;
using std::chrono::seconds;
using support::Function;
using support::Gate;

class AnOpening : public support::KelArcTest
{
};

TEST_F(AnOpening, OpensTheObject)
{
    Opening opening(kelarc());
    EXPECT_TRUE(opening.waitFor(seconds(30)));
    EXPECT_TRUE(kelarc().isOpen());
    EXPECT_TRUE(opening.waitFor(seconds(0))) << "it is open already";
    EXPECT_EQ(callCount(Function::Open), 1U);
}

TEST_F(AnOpening, AsksOnceWhileTheCallHangs)
{
    const Gate gate;
    arcsim::Answer held;
    held.during = gate.holder();
    arcsim::answerNext(Function::Open, {held});
    Opening opening(kelarc());
    for (int limit = 0; limit < 100; ++limit) {
        ASSERT_FALSE(opening.waitFor(milliseconds(1)));
        ASSERT_LE(kelarc().getPendingTasks(), 2U);
    }
    ASSERT_TRUE(gate.waitUntilEntered());
    EXPECT_EQ(kelarc().getPendingTasks(), 0U) << "its two tasks have begun";
    gate.open();
    EXPECT_TRUE(opening.waitFor(seconds(30)));
    close();
    EXPECT_FALSE(kelarc().isOpen());
    EXPECT_EQ(callCount(Function::Open), 1U);
}

TEST_F(AnOpening, AsksOnceWhileTheModemRefuses)
{
    support::pauses::takeTime();
    arcsim::Answer refused;
    refused.code = 31;
    arcsim::answerAlways(Function::Open, refused);
    Opening opening(kelarc());
    for (int limit = 0; limit < 100; ++limit) {
        ASSERT_FALSE(opening.waitFor(milliseconds(1)));
        ASSERT_LE(kelarc().getPendingTasks(), 2U);
    }
    arcsim::answerAlways(Function::Open, {});
    EXPECT_TRUE(opening.waitFor(seconds(30)));
    close();
    EXPECT_FALSE(kelarc().isOpen());
    EXPECT_EQ(callCount(Function::SetNotificationMethod), 1U);
}

TEST_F(AnOpening, AsksAnewAfterTheObjectWasClosed)
{
    Opening opening(kelarc());
    ASSERT_TRUE(opening.waitFor(seconds(30)));
    close();
    EXPECT_TRUE(opening.waitFor(seconds(30)));
    EXPECT_EQ(callCount(Function::Open), 2U);
}

TEST_F(AnOpening, WaitsAsLongAsTheLimitSaysWhereNothingIsAnswered)
{
    activateWhileClosed();  // open() then does nothing
    Opening opening(kelarc());
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_FALSE(opening.waitFor(milliseconds(50)));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, milliseconds(50));
    EXPECT_FALSE(opening.waitFor(milliseconds(-1)));
    kelarc().close();  // makes it possible again
    EXPECT_TRUE(opening.waitFor(milliseconds::max()));
}

TEST_F(AnOpening, PausesBetweenItsLooksWhereNothingIsAnswered)
{
    activateWhileClosed();
    Opening opening(kelarc());
    support::pauses::reset();
    support::pauses::takeTime();
    EXPECT_FALSE(opening.waitFor(milliseconds(50)));
    EXPECT_GE(support::pauses::count(), 1U);
}

TEST_F(AnOpening, WaitsOnAfterADayWhenTheLimitIsLonger)
{
    const Gate gate = holdWorker();
    Opening opening(kelarc());
    EXPECT_FALSE(opening.waitFor(milliseconds(0)));  // the request is planned by the right clock
    const SlowClock clock([&gate, reads = 0]() mutable {
        if (++reads == 100)
            gate.open();
    });
    EXPECT_TRUE(opening.waitFor(std::chrono::hours(48)));
}

TEST_F(AnOpening, MayBeGivenUp)
{
    const Gate gate = holdWorker();
    {
        Opening opening(kelarc());
        EXPECT_FALSE(opening.waitFor(milliseconds::min()));
    }
    gate.open();
    settle();
    EXPECT_TRUE(kelarc().isOpen()) << "nothing takes the request back";
}

}  // namespace
